// Numbers as people write them, whatever the locale.
#include "numbers.h"

#include <charconv>
#include <cmath>

namespace vel {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool parse_number(std::string_view text, double &x) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || text.front() == '+') return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), x);
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
