// Numbers as people write them, whatever the locale.
#include "numbers.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace vel {
namespace {

constexpr std::ptrdiff_t short_size = 15; // characters; 10^15 < 2^53
constexpr double power_of_ten[short_size] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};

// Appends digits to w; the first character that is none.
const char *take_digits(const char *p, const char *end, uint64_t &w) {
    for (; p < end && *p >= '0' && *p <= '9'; ++p) w = 10 * w + static_cast<uint64_t>(*p - '0');
    return p;
}

} // namespace

// The digits as a whole number and the power of ten are exact as doubles, so their quotient is
// rounded once, which makes it the nearest. What is longer, or more than digits and a point
// between them, is left to the standard library.
std::from_chars_result read_short_number(const char *p, const char *end, double &x) {
    if (FLT_EVAL_METHOD != 0) return std::from_chars(p, end, x); // it would be rounded twice
    const char *const first = p + (p < end && *p == '-');
    const char *const stop = first + std::min(end - first, short_size);
    uint64_t w = 0;
    const char *const point = take_digits(first, stop, w), *last = point;
    if (point < stop && *point == '.') last = take_digits(point + 1, stop, w);
    const bool cut = last == stop && stop < end;
    if (point == first || last == point + 1 || cut || (last < end && (*last | 0x20) == 'e'))
        return std::from_chars(p, end, x);
    const double size = static_cast<double>(w) / power_of_ten[last == point ? 0 : last - point - 1];
    x = first == p ? size : -size;
    return {last, std::errc()};
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool parse_number(std::string_view text, double &x) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || text.front() == '+') return false;
    const auto [end, error] = read_number(text.data(), text.data() + text.size(), x);
    if (error == std::errc::result_out_of_range) // from_chars leaves x alone
        x = std::strtod(std::string(text).c_str(), nullptr);
    else if (error != std::errc())
        return false;
    return end == text.data() + text.size();
}

std::string format_number(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x < 0 ? "-Inf" : "Inf";
    char digits[32];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, x, std::chars_format::general, 6);
    return std::string(digits, error == std::errc() ? end : digits);
}

} // namespace vel
