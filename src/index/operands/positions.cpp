// Kernels that turn the values of a subscript, or the bytes of a mask, into zero-based positions.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "index/operands/positions.cpp"
#include <hwy/foreach_target.h>
// (the first include repeats this file once for every target)
#include <hwy/highway.h>

#include <core/dispatch.h>
#include <core/position.h>
#include <core/tuning.h>
#include <index/operands/positions.h>

#include <bit>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Adding 2^52 to a double in 0 .. 2^52 leaves its integer value in the low bits, so that all lanes
// convert without an instruction for it. Handles whole vectors and returns how many elements that
// is, or n + 1 when a value is not a whole number; *low and *high cover what was handled.
kwSize double_positions(const double *x, kwSize n, kwIndex *out, double *low, double *high) {
    const hn::ScalableTag<double> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const kwSize lanes = hn::Lanes(d);
    const auto magic = hn::Set(d, 4503599627370496.0);
    const auto bias = hn::Set(du, uint64_t{0x4330000000000001});
    auto least = hn::Set(d, 1.0), most = hn::Set(d, 1.0);
    auto whole = hn::Eq(least, least);
    kwSize k = 0;
    for (; k + lanes <= n; k += lanes) {
        const auto v = hn::LoadU(d, x + k), shifted = hn::Add(v, magic);
        whole = hn::And(whole, hn::Eq(hn::Sub(shifted, magic), v)); // false for NaN
        least = hn::Min(least, v);
        most = hn::Max(most, v);
        hn::StoreU(hn::Sub(hn::BitCast(du, shifted), bias), du,
                   reinterpret_cast<uint64_t *>(out) + k);
    }
    *low = hn::GetLane(hn::MinOfLanes(d, least));
    *high = hn::GetLane(hn::MaxOfLanes(d, most));
    return hn::AllTrue(d, whole) ? k : n + 1;
}

} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(double_positions);

namespace {

// Eight bytes, the first one lowest.
uint64_t load8(const uint8_t *p) {
    uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return std::endian::native == std::endian::big ? __builtin_bswap64(w) : w;
}

// 0x01 in each byte of w that is not zero.
uint64_t true_bytes(uint64_t w) {
    constexpr uint64_t low7 = 0x7f7f7f7f7f7f7f7f;
    return ((((w & low7) + low7) | w) >> 7) & 0x0101010101010101;
}

} // namespace

bool positions_from_double(const double *x, kwSize n, kwIndex *out, kwSize *max) {
    constexpr auto limit = static_cast<double>(max_size);
    double low = 1, high = 1;
    kwSize k = 0;
    if (n >= tuning::simd_min_elements) {
        k = HWY_DYNAMIC_DISPATCH(double_positions)(x, n, out, &low, &high);
        if (k > n || !(low >= 1 && high <= limit)) return false;
    }
    for (; k < n; ++k) {
        const double v = x[k];
        if (!(v >= 1 && v <= limit)) return false;
        const auto position = static_cast<kwSize>(v);
        if (static_cast<double>(position) != v) return false;
        high = v > high ? v : high;
        out[k] = position - 1;
    }
    *max = static_cast<kwSize>(high);
    return true;
}

bool positions_from_single(const float *x, kwSize n, kwIndex *out, kwSize *max) {
    kwSize high = 0;
    for (kwSize k = 0; k < n; ++k) {
        const float v = x[k];
        if (!(v >= 1 && v < 18446744073709551616.0F)) return false;
        const auto position = static_cast<kwSize>(v);
        if (static_cast<float>(position) != v) return false;
        high = position > high ? position : high;
        out[k] = position - 1;
    }
    *max = high;
    return true;
}

bool positions_from_bits(const void *x, kwSize width, kwSize n, kwIndex *out, kwSize *max) {
    bool zero = false;
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        if constexpr (!std::is_same_v<T, Bytes32>) {
            const T *values = static_cast<const T *>(x);
            T high = 0;
            for (kwSize k = 0; k < n; ++k) {
                zero |= values[k] == 0;
                high = values[k] > high ? values[k] : high;
                out[k] = kwIndex{values[k]} - 1;
            }
            *max = high;
        }
    });
    return !zero;
}

kwSize count_true(const uint8_t *mask, kwSize n) {
    kwSize count = 0, k = 0;
    while (k + 8 <= n) { // byte-wise sums of up to 255 words, before they could overflow
        const kwSize words = (n - k) / 8 < 255 ? (n - k) / 8 : 255;
        uint64_t sums = 0;
        for (kwSize w = 0; w < words; ++w) sums += true_bytes(load8(mask + k + 8 * w));
        k += 8 * words;
        constexpr uint64_t even = 0x00ff00ff00ff00ff;
        count += (((sums & even) + ((sums >> 8) & even)) * 0x0001000100010001) >> 48;
    }
    for (; k < n; ++k) count += mask[k] != 0;
    return count;
}

void positions_from_mask(const uint8_t *mask, kwSize n, kwIndex *out) {
    kwSize k = 0;
    for (; k + 8 <= n; k += 8)
        for (uint64_t bits = true_bytes(load8(mask + k)); bits; bits &= bits - 1)
            *out++ = k + static_cast<kwIndex>(std::countr_zero(bits)) / 8;
    for (; k < n; ++k)
        if (mask[k]) *out++ = k;
}

} // namespace ox
#endif
