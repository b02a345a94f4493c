// Vector kernels of gather: masks straight from their bytes, and every second element.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "index/kernels.cpp"
#include <hwy/foreach_target.h>
// (the first include repeats this file once for every target)
#include <hwy/highway.h>

#include <core/tuning.h>
#include <index/kernels.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The selected lanes first. Packing within a register and storing all of it beats the storing
// instruction, which some processors run as a program; the library's own form for 64-bit lanes
// copies a table for every vector.
template<class V, class M> V packed(V v, M some) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
    if constexpr (sizeof(hn::TFromV<V>) == 8)
        return V{_mm512_maskz_compress_epi64(some.raw, v.raw)};
    else
#endif
        return hn::Compress(v, some);
}

// Whole vectors are stored, so the last ones are written element by element.
template<class T> void compress(T *dst, const T *src, const uint8_t *mask, kwSize n, kwSize count) {
    const hn::ScalableTag<T> d;
    const hn::ScalableTag<uint8_t> db;
    const kwSize lanes = hn::Lanes(d), bytes = hn::Lanes(db);
    T *const end = dst + count;
    kwSize i = 0;
    uint8_t bits[HWY_MAX_BYTES / 8 + 8] = {};
    for (; i + bytes <= n && static_cast<kwSize>(end - dst) >= bytes; i += bytes) {
        const auto set = hn::Ne(hn::LoadU(db, mask + i), hn::Zero(db));
        hn::StoreMaskBits(db, set, bits);
        for (kwSize k = 0; k < bytes; k += lanes) {
            const unsigned used = lanes < 8 ? (1U << lanes) - 1 : 255;
            const uint8_t group[8] = {static_cast<uint8_t>(bits[k / 8] >> k % 8 & used),
                                      bits[k / 8 + 1]};
            const auto some = hn::LoadMaskBits(d, group);
            hn::StoreU(packed(hn::LoadU(d, src + i + k), some), d, dst);
            dst += hn::CountTrue(d, some);
        }
    }
    for (; i < n; ++i)
        if (mask[i]) *dst++ = src[i];
}

void compress64(uint64_t *dst, const uint64_t *src, const uint8_t *mask, kwSize n, kwSize count) {
    compress(dst, src, mask, n, count);
}
void compress32(uint32_t *dst, const uint32_t *src, const uint8_t *mask, kwSize n, kwSize count) {
    compress(dst, src, mask, n, count);
}

void take_every_second64(uint64_t *dst, const uint64_t *src, kwSize n) {
    kwSize k = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<uint64_t> d;
    const kwSize lanes = hn::Lanes(d);
    for (; k + lanes < n; k += lanes) { // the last element's right neighbour may not exist
        hn::Vec<decltype(d)> even, odd;
        hn::LoadInterleaved2(d, src + 2 * k, even, odd);
        hn::StoreU(even, d, dst + k);
    }
#endif
    for (; k < n; ++k) dst[k] = src[2 * k];
}

} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(compress64);
HWY_EXPORT(compress32);
HWY_EXPORT(take_every_second64);

void compress64(uint64_t *dst, const uint64_t *src, const uint8_t *mask, kwSize n, kwSize count) {
    HWY_DYNAMIC_DISPATCH(compress64)(dst, src, mask, n, count);
}

void compress32(uint32_t *dst, const uint32_t *src, const uint8_t *mask, kwSize n, kwSize count) {
    HWY_DYNAMIC_DISPATCH(compress32)(dst, src, mask, n, count);
}

void take_every_second64(uint64_t *dst, const uint64_t *src, kwSize n) {
    HWY_DYNAMIC_DISPATCH(take_every_second64)(dst, src, n);
}

} // namespace ox
#endif
