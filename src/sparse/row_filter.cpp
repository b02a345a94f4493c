// Looking for rows that a filter lets through, a vector of them at a time.
#include <core/simd_targets.h>
#include <sparse/row_filter.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "sparse/row_filter.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace {

// Passes over vectors without a row whose bit is set.
kwIndex skip(const kwIndex *ir, kwIndex k, kwIndex end, const uint64_t *table, int bits) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2 // the others have no instruction for gathering
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::ScalableTag<uint64_t> d;
    const hn::RebindToSigned<decltype(d)> di;
    const kwSize lanes = hn::Lanes(d);
    const auto low = hn::Set(d, (kwIndex{1} << bits) - 1), in_word = hn::Set(d, 63);
    const auto found = [&](kwIndex at) HWY_ATTR {
        const auto row = hn::LoadU(d, ir + at);
        const auto slot = hn::And(hn::Xor(row, hn::ShiftRightSame(row, bits)), low);
        const auto word = hn::GatherIndex(d, table, hn::BitCast(di, hn::ShiftRight<6>(slot)));
        return hn::Shr(word, hn::And(slot, in_word));
    };
    for (; k + 2 * lanes <= end; k += 2 * lanes) {
        const auto any = hn::Or(found(k), found(k + lanes));
        if (!hn::AllFalse(d, hn::TestBit(any, hn::Set(d, 1)))) break;
    }
#else
    (void)ir, (void)end, (void)table, (void)bits;
#endif
    return k;
}

} // namespace
} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(skip);

kwIndex RowFilter::skip_vectors(const kwIndex *ir, kwIndex k, kwIndex end) const {
    return HWY_DYNAMIC_DISPATCH(skip)(ir, k, end, table_.get(), bits_);
}

} // namespace ox
#endif
