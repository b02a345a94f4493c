// Text line by line, in bounded memory.
#pragma once
#include "source.h"

#include <string_view>
#include <vector>

namespace vel {

class Lines {
public:
    explicit Lines(SizedSource &in) : in_(in) {}

    // The next line without its end, LF or CR LF; false at the end of the text. The view holds
    // until the next call.
    bool next(std::string_view &line);
    // The same line with the one after it and the end between them; false when there is none.
    bool extend(std::string_view &line);

    // Whole lines with their ends, as many as are in memory: for readers that go over them in place
    // and say what they took. Empty when the next line has no end, or is a very long one.
    std::string_view ahead();
    void pass(size_t bytes, size_t lines) { at_ += bytes, number_ += lines; }

    size_t number() const { return number_; } // of the line, or of the last that extended it
    uint64_t left() const { return in_.left() + filled_ - at_; } // bytes after it

private:
    bool find_end(std::string_view &line);
    void fill();

    SizedSource &in_;
    std::vector<char> buffer_;
    // The line begins at start_, the rest at at_; the last line end that is in memory is at whole_.
    size_t start_ = 0, at_ = 0, whole_ = 0, filled_ = 0, number_ = 0;
};

} // namespace vel
