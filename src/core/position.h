// Limits of counts and bytes, arithmetic that saturates at them, and doubles turned into sizes.
#pragma once
#include <ox/types.h>

namespace ox {

// The most elements, and the most bytes, of one array; also the largest position.
inline constexpr kwSize max_size = (kwSize{1} << 48) - 1;

constexpr kwSize saturating_multiply(kwSize a, kwSize b) {
    return a != 0 && b > max_size / a ? max_size : a * b;
}

// Cut towards zero; negative is 0, NaN and anything above the limit is the limit.
constexpr kwSize double_to_size(double x) {
    if (x < 0) return 0;
    return x <= static_cast<double>(max_size) ? static_cast<kwSize>(x) : max_size;
}

} // namespace ox
