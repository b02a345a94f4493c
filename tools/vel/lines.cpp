// Text line by line, in bounded memory.
#include "lines.h"

#include "failure.h"

#include <algorithm>
#include <cstring>

namespace vel {
namespace {

constexpr size_t piece = size_t{256} << 10;

void must_read(SizedSource &in, char *to, size_t n) {
    if (!in.read(to, n)) throw Failure(Exit::io, "the file became shorter while it was read");
}

} // namespace

// Moves at_ behind the next line end, or to the end of the text. What begins at start_ moves to the
// front of the buffer when more has to be read; a line longer than that makes it grow.
bool Lines::find_end(std::string_view &line) {
    if (left() == 0) return false;
    for (size_t from = at_;;) {
        const void *end = std::memchr(buffer_.data() + from, '\n', buffer_.size() - from);
        if (end || in_.left() == 0) {
            at_ = end ? static_cast<size_t>(static_cast<const char *>(end) - buffer_.data()) + 1
                      : buffer_.size();
            break;
        }
        buffer_.erase(0, start_);
        start_ = 0;
        from = buffer_.size();
        const size_t more = std::min<uint64_t>(std::max(piece, from), in_.left());
        buffer_.resize(from + more);
        must_read(in_, buffer_.data() + from, more);
    }
    ++number_;
    line = std::string_view(buffer_).substr(start_, at_ - start_);
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

bool Lines::next(std::string_view &line) {
    start_ = at_;
    return find_end(line);
}

bool Lines::extend(std::string_view &line) { return find_end(line); }

size_t count_lines(SizedSource &in) {
    std::string bytes(piece, '\0');
    size_t lines = 0;
    char last = '\n';
    while (in.left() > 0) {
        const size_t n = std::min<uint64_t>(bytes.size(), in.left());
        must_read(in, bytes.data(), n);
        lines += static_cast<size_t>(std::count(bytes.data(), bytes.data() + n, '\n'));
        last = bytes[n - 1];
    }
    in.rewind();
    return lines + (last != '\n');
}

} // namespace vel
