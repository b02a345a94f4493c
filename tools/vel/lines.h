// Text line by line, in bounded memory.
#pragma once
#include "source.h"

#include <string>
#include <string_view>

namespace vel {

class Lines {
public:
    explicit Lines(SizedSource &in) : in_(in) {}

    // The next line without its end, LF or CR LF; false at the end of the text. The view holds
    // until the next call.
    bool next(std::string_view &line);
    // The same line with the one after it and the end between them; false when there is none.
    bool extend(std::string_view &line);

    size_t number() const { return number_; } // of the line, or of the last that extended it
    uint64_t left() const { return in_.left() + buffer_.size() - at_; } // bytes after it

private:
    bool find_end(std::string_view &line);

    SizedSource &in_;
    std::string buffer_;
    size_t start_ = 0, at_ = 0, number_ = 0; // the line begins at start_, the rest at at_
};

// Lines in all of the text; back at its front afterwards.
size_t count_lines(SizedSource &in);

} // namespace vel
