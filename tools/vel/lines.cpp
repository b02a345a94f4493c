// Text line by line, in bounded memory.
#include "lines.h"

#include "failure.h"

#include <algorithm>
#include <cstring>

namespace vel {
namespace {

constexpr size_t piece = size_t{256} << 10;

} // namespace

// Reads more. What begins at start_ moves to the front; the buffer grows for a line that fills half
// of it.
void Lines::fill() {
    filled_ -= start_, at_ -= start_;
    if (filled_ > 0) std::memmove(buffer_.data(), buffer_.data() + start_, filled_);
    start_ = 0;
    if (buffer_.size() < std::max(piece, 2 * filled_)) buffer_.resize(std::max(piece, 2 * filled_));
    char *to = buffer_.data() + filled_;
    const size_t more = std::min<uint64_t>(buffer_.size() - filled_, in_.left());
    if (!in_.read(to, more)) throw Failure(Exit::io, "the file became shorter while it was read");
    const size_t end = std::string_view(to, more).rfind('\n');
    whole_ = end == std::string_view::npos ? 0 : filled_ + end + 1;
    filled_ += more;
}

// Moves at_ behind the next line end, or to the end of the text.
bool Lines::find_end(std::string_view &line) {
    if (left() == 0) return false;
    const void *end = nullptr;
    for (size_t seen = 0;; fill()) {
        const size_t from = at_ + seen;
        if (filled_ > from) end = std::memchr(buffer_.data() + from, '\n', filled_ - from);
        if (end || in_.left() == 0) break;
        seen = filled_ - at_;
    }
    at_ = end ? static_cast<size_t>(static_cast<const char *>(end) - buffer_.data()) + 1 : filled_;
    ++number_;
    line = std::string_view(buffer_.data() + start_, at_ - start_);
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

bool Lines::next(std::string_view &line) {
    start_ = at_;
    return find_end(line);
}

bool Lines::extend(std::string_view &line) { return find_end(line); }

std::string_view Lines::ahead() {
    start_ = at_;
    if (whole_ <= at_ && in_.left() > 0) fill();
    return {buffer_.data() + at_, std::max(whole_, at_) - at_};
}

} // namespace vel
