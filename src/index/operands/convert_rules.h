// One element converted, for every pair of element types; the vector kernels must agree with it.
#pragma once
#include <core/dispatch.h>
#include <ox/types.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace ox {

// What a conversion noticed, as bits; one element shows at most one kind.
inline constexpr uint32_t kind_nan = 1;         // NaN became 0
inline constexpr uint32_t kind_overflow = 2;    // saturated
inline constexpr uint32_t kind_rounded = 4;     // not an integer
inline constexpr uint32_t kind_nan_logical = 8; // NaN to logical, where the kernel stopped
inline constexpr uint32_t kinds_warned = kind_nan | kind_overflow | kind_rounded;

// Converts n elements. Answers the kinds that it met; of those outside `wanted` it may leave out
// some. Stops at a NaN on its way to logical.
using ConvertKernel = uint32_t (*)(void *dst, const void *src, kwSize n, uint32_t wanted);

// The kernel for a pair of classes, scalar or vector; null where there is no conversion.
ConvertKernel scalar_kernel(int dst_class, int src_class);
ConvertKernel vector_kernel(int dst_class, int src_class);

// Half away from zero by adding half and cutting, literally: 0.49999999999999994 becomes 1.
// Deliberate: the range comes before the rounding, so 127.4 to int8 overflows, and so does -0.3 to
// an unsigned class.
template<class D> D float_to_int(double x, uint32_t &kinds) {
    constexpr double lo = std::numeric_limits<D>::min(), hi = std::numeric_limits<D>::max();
    if (x != x) {
        kinds |= kind_nan;
        return 0;
    }
    if (x < lo || x > hi) {
        kinds |= kind_overflow;
        return x < lo ? std::numeric_limits<D>::min() : std::numeric_limits<D>::max();
    }
    const D y = static_cast<D>(x >= 0 ? x + 0.5 : x - 0.5);
    if (static_cast<double>(y) != x) kinds |= kind_rounded;
    return y;
}

// From 2^52 on every double is an integer. The upper bounds 2^63 and 2^64 are no values of the
// destination and overflow themselves.
template<class D> D float_to_int64(double x, uint32_t &kinds) {
    constexpr bool is_signed = std::is_signed_v<D>;
    constexpr double lo = is_signed ? -0x1p63 : 0.0, end = is_signed ? 0x1p63 : 0x1p64;
    if (x != x) {
        kinds |= kind_nan;
        return 0;
    }
    if (x < lo || x >= end) {
        kinds |= kind_overflow;
        return x < lo ? std::numeric_limits<D>::min() : std::numeric_limits<D>::max();
    }
    if (std::fabs(x) >= 0x1p52) return static_cast<D>(x);
    const D y = static_cast<D>(x >= 0 ? x + 0.5 : x - 0.5);
    if (static_cast<double>(y) != x) kinds |= kind_rounded;
    return y;
}

// Bounds of D as values of S: what S cannot reach is bounded by S itself.
template<class D, class S> inline constexpr S
    saturation_low = std::cmp_less(std::numeric_limits<S>::min(), std::numeric_limits<D>::min())
                         ? static_cast<S>(std::numeric_limits<D>::min())
                         : std::numeric_limits<S>::min();
template<class D, class S> inline constexpr S
    saturation_high = std::cmp_greater(std::numeric_limits<S>::max(), std::numeric_limits<D>::max())
                          ? static_cast<S>(std::numeric_limits<D>::max())
                          : std::numeric_limits<S>::max();

template<class D, class S>
inline constexpr bool every_value_fits = saturation_low<D, S> == std::numeric_limits<S>::min() &&
                                         saturation_high<D, S> == std::numeric_limits<S>::max();

template<class D, class S> D saturate(S x, uint32_t &kinds) {
    constexpr S lo = saturation_low<D, S>, hi = saturation_high<D, S>;
    const S y = x < lo ? lo : x > hi ? hi : x;
    if (y != x) kinds |= kind_overflow;
    return static_cast<D>(y);
}

// NaN and negative values give 0, large ones 65535; cut, not rounded, and no kind is noticed.
inline char16_t float_to_char(double x) {
    return !(x > 0) ? u'\0' : x < 65535 ? static_cast<char16_t>(x) : u'\uffff';
}

// D is the type of the destination's class (bool, char16_t or a number), S a stored type.
template<class D, class S> Stored<D> convert_value(S x, uint32_t &kinds) {
    if constexpr (std::is_same_v<D, bool>)
        return x != 0;
    else if constexpr (std::is_floating_point_v<D>)
        return static_cast<D>(x);
    else if constexpr (std::is_same_v<D, char16_t> && std::is_floating_point_v<S>)
        return float_to_char(x);
    else if constexpr (!std::is_floating_point_v<S>)
        return saturate<Stored<D>>(x, kinds);
    else if constexpr (sizeof(D) == 8)
        return float_to_int64<D>(x, kinds);
    else
        return float_to_int<D>(x, kinds);
}

// Logical to logical is left to whoever copies, and logical to char is no conversion.
template<class D, class S> inline constexpr bool has_conversion =
    !std::is_same_v<S, bool> || !(std::is_same_v<D, bool> || std::is_same_v<D, char16_t>);

} // namespace ox
