// UTF-8 text and char arrays, whatever the locale.
#pragma once
#include <ox.h>

#include <string>
#include <string_view>
#include <vector>

namespace vel {

// A char row, a temporary of the current context; what is no UTF-8 becomes U+FFFD.
oxArray *make_text(std::string_view utf8);

// Units of a char array as UTF-8, NULs included: all of them column by column, or count of them
// from first on, step apart (a row of a matrix).
std::string text_of(const oxArray *a);
std::string text_of(const oxArray *a, size_t first, size_t count, size_t step);

// Without control characters, which a hostile file could steer a terminal with.
std::string printable(std::string text);

// For sentences: "a, b", or "none".
std::string listed(const std::vector<std::string> &names);

} // namespace vel
