// Numbers as people write them, whatever the locale.
#pragma once
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace vel {

// Without blanks at both ends.
std::string_view trimmed(std::string_view text);

// What std::from_chars does, sooner for short decimals.
std::from_chars_result read_short_number(const char *p, const char *end, double &x);
inline std::from_chars_result read_number(const char *p, const char *end, double &x) {
    // Neither points nor separators have this bit: it says that eight digits begin at the ninth
    // character, which makes the number long.
    constexpr uint64_t digits = 0x1010101010101010;
    uint64_t v = 0;
    if (end - p > 16) std::memcpy(&v, p + 8, sizeof v);
    return (v & digits) == digits ? std::from_chars(p, end, x) : read_short_number(p, end, x);
}

// Reads a whole text as a decimal number, inf or nan (any case, optional sign); false otherwise.
bool parse_number(std::string_view text, double &x);

// Six significant digits at most, "NaN", "Inf", "-Inf".
std::string format_number(double x);

} // namespace vel
