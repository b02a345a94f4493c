// Numbers as people write them, whatever the locale.
#pragma once
#include <string>
#include <string_view>

namespace vel {

// Without blanks at both ends.
std::string_view trimmed(std::string_view text);

// Reads a whole text as a decimal number, inf or nan (any case, optional sign); false otherwise.
bool parse_number(std::string_view text, double &x);

// Six significant digits at most, "NaN", "Inf", "-Inf".
std::string format_number(double x);

} // namespace vel
