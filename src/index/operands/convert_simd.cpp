// The vector conversion kernels, compiled once for each instruction set and chosen at run time.
#include <core/dispatch.h>
#include <core/simd_targets.h>
#include <index/operands/convert_rules.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "index/operands/convert_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

ConvertKernel find_kernel(int dst_class, int src_class) {
    return scalar_kernel(dst_class, src_class);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;
using Vec = hn::Vec<Doubles>;
constexpr Doubles dd;
constexpr kwSize lanes = hn::MaxLanes(dd);

HWY_INLINE Vec load(const double *s) { return hn::LoadU(dd, s); }
HWY_INLINE Vec load(const float *s) {
    return hn::PromoteTo(dd, hn::LoadU(hn::Rebind<float, Doubles>(), s));
}

// The rest of a run that fills no whole step.
template<class D, class S> uint32_t finish(D *d, const S *s, kwSize i, kwSize n) {
    uint32_t kinds = 0;
    for (; i < n; ++i) d[i] = convert_value<D, S>(s[i], kinds);
    return kinds;
}

// --- double and single to int8 .. uint32 ------------------------------------------------------

// x + 0.5 or x - 0.5, to be cut.
HWY_INLINE Vec add_half(Vec x) { return hn::Add(x, hn::CopySign(hn::Set(dd, 0.5), x)); }

// Two vectors of rounded values inside the destination's range, cut and stored.
#if HWY_TARGET == HWY_AVX3
template<class D> HWY_INLINE void store_cut(Vec v, Vec w, D *d) {
    constexpr bool wide = std::is_same_v<D, uint32_t>;
    const __m256i a = wide ? _mm512_cvttpd_epu32(v.raw) : _mm512_cvttpd_epi32(v.raw);
    const __m256i b = wide ? _mm512_cvttpd_epu32(w.raw) : _mm512_cvttpd_epi32(w.raw);
    auto *to = reinterpret_cast<__m256i *>(d);
    if constexpr (sizeof(D) == 4) {
        _mm256_storeu_si256(to, a);
        _mm256_storeu_si256(to + 1, b);
    } else {
        const __m512i x = _mm512_inserti64x4(_mm512_castsi256_si512(a), b, 1);
        if constexpr (sizeof(D) == 2)
            _mm256_storeu_si256(to, _mm512_cvtepi32_epi16(x));
        else
            _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm512_cvtepi32_epi8(x));
    }
}
#else
template<class D> HWY_INLINE void store_cut(Vec v, Vec w, D *d) {
    const hn::Rebind<int32_t, Doubles> half;
    const hn::Repartition<int32_t, Doubles> di; // two vectors' worth
    if constexpr (std::is_same_v<D, uint32_t>) {
        const hn::RebindToUnsigned<decltype(di)> du;
        const Vec shift = hn::Set(dd, 0x1p31);
        const auto x = hn::Combine(di, hn::DemoteTo(half, hn::Sub(hn::Trunc(w), shift)),
                                   hn::DemoteTo(half, hn::Sub(hn::Trunc(v), shift)));
        hn::StoreU(hn::Xor(hn::BitCast(du, x), hn::Set(du, 0x80000000u)), du, d);
    } else {
        const auto x = hn::Combine(di, hn::DemoteTo(half, w), hn::DemoteTo(half, v));
        const hn::Rebind<D, decltype(di)> narrow;
        if constexpr (sizeof(D) == 4)
            hn::StoreU(x, di, d);
        else
            hn::StoreU(hn::DemoteTo(narrow, x), narrow, d);
    }
}
#endif

// Rounding to D with vectors of values.
template<class D> struct Rounding {
    Vec lo = hn::Set(dd, std::numeric_limits<D>::min());
    Vec hi = hn::Set(dd, std::numeric_limits<D>::max());
    uint32_t wanted; // kinds to look for

    // On the assumption that all values are in range; false, nothing written, when one is not or is
    // NaN. Of two operands, the minimum and the maximum give the second where one is NaN, or give
    // NaN, so that each vector's NaN reaches one of the comparisons.
    HWY_INLINE bool in_range(Vec v, Vec w, D *d) {
        if (HWY_UNLIKELY(
                !hn::AllTrue(dd, hn::And(hn::Ge(hn::Min(w, v), lo), hn::Le(hn::Max(v, w), hi)))))
            return false;
        const Vec y = add_half(v), z = add_half(w);
        if (wanted & kind_rounded) {
            const auto rounded = hn::Or(hn::Ne(hn::Trunc(y), v), hn::Ne(hn::Trunc(z), w));
            if (!hn::AllFalse(dd, rounded)) wanted &= ~kind_rounded;
        }
        store_cut<D>(y, z, d);
        return true;
    }

    // Rounded inside the range, bounds outside, 0 for NaN; ready to be cut.
    HWY_INLINE Vec bounded(Vec x) {
        const auto number = hn::Eq(x, x);
        const Vec y = add_half(hn::Min(hn::Max(hn::IfThenElseZero(number, x), lo), hi));
        if (wanted) {
            const auto inside = hn::And(hn::Ge(x, lo), hn::Le(x, hi));
            if (!hn::AllTrue(dd, number)) wanted &= ~kind_nan;
            if (!hn::AllFalse(dd, hn::AndNot(inside, number))) wanted &= ~kind_overflow;
            if (!hn::AllFalse(dd, hn::And(inside, hn::Ne(hn::Trunc(y), x))))
                wanted &= ~kind_rounded;
        }
        return y;
    }
};

// Steps of two vectors: as if all were in range until one is not, then a while by the full rule,
// still with vectors, since odd values seldom stand alone.
template<class D, class S>
uint32_t round_run(void *dst, const void *src, kwSize n, uint32_t wanted) {
    auto *d = static_cast<D *>(dst);
    auto *s = static_cast<const S *>(src);
    constexpr kwSize step = 2 * lanes, while_odd = 16 * step;
    Rounding<D> rule{.wanted = wanted};
    kwSize i = 0;
    while (i + step <= n) {
        while (i + step <= n && rule.in_range(load(s + i), load(s + i + lanes), d + i)) i += step;
        for (const kwSize end = i + while_odd; i + step <= n && i < end; i += step)
            store_cut<D>(rule.bounded(load(s + i)), rule.bounded(load(s + i + lanes)), d + i);
    }
    return (wanted & ~rule.wanted) | finish<D, S>(d, s, i, n);
}

// --- double and single to int64 and uint64 -----------------------------------------------------

template<class D> HWY_INLINE hn::Vec<hn::Rebind<D, Doubles>> wide_bounded(Vec x, uint32_t &kinds) {
    HWY_ALIGN double in[lanes];
    HWY_ALIGN D out[lanes];
    hn::Store(x, dd, in);
    kinds |= finish<D, double>(out, in, 0, lanes);
    return hn::Load(hn::Rebind<D, Doubles>(), out);
}

// Values of magnitude below 2^63 (not negative for uint64) are rounded below 2^52 and cut; the rest
// are rare.
template<class D, class S>
uint32_t round_wide_run(void *dst, const void *src, kwSize n, uint32_t wanted) {
    auto *d = static_cast<D *>(dst);
    auto *s = static_cast<const S *>(src);
    const hn::Rebind<D, Doubles> dw;
    const hn::Rebind<int64_t, Doubles> di;
    const Vec lo = hn::Set(dd, std::is_signed_v<D> ? -0x1p63 : 0.0), end = hn::Set(dd, 0x1p63);
    const Vec integral = hn::Set(dd, 0x1p52);
    uint32_t kinds = 0;
    kwSize i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Vec v = load(s + i);
        if (HWY_UNLIKELY(!hn::AllTrue(dd, hn::And(hn::Ge(v, lo), hn::Lt(v, end))))) {
            hn::StoreU(wide_bounded<D>(v, kinds), dw, d + i);
            continue;
        }
        const Vec y = hn::Trunc(hn::IfThenElse(hn::Lt(hn::Abs(v), integral), add_half(v), v));
        if ((wanted & ~kinds & kind_rounded) && !hn::AllFalse(dd, hn::Ne(y, v)))
            kinds |= kind_rounded;
        hn::StoreU(hn::BitCast(dw, hn::ConvertTo(di, y)), dw, d + i);
    }
    return kinds | finish<D, S>(d, s, i, n);
}

// --- Plain loops that the compiler vectorises for the instruction set at hand --------------------

template<class D, class S> uint32_t cast_run(void *dst, const void *src, kwSize n, uint32_t) {
    auto *HWY_RESTRICT d = static_cast<D *>(dst);
    auto *HWY_RESTRICT s = static_cast<const S *>(src);
    for (kwSize i = 0; i < n; ++i) d[i] = static_cast<D>(s[i]);
    return 0;
}

template<class D, class S> uint32_t saturate_run(void *dst, const void *src, kwSize n, uint32_t) {
    constexpr S lo = saturation_low<D, S>, hi = saturation_high<D, S>;
    auto *HWY_RESTRICT d = static_cast<D *>(dst);
    auto *HWY_RESTRICT s = static_cast<const S *>(src);
    S changed = 0; // the bits that saturation changed
    for (kwSize i = 0; i < n; ++i) {
        const S x = s[i];
        S y = x < lo ? lo : x;
        y = y > hi ? hi : y;
        changed = static_cast<S>(changed | (x ^ y));
        d[i] = static_cast<D>(y);
    }
    return changed ? kind_overflow : 0;
}

template<class S> uint32_t char_run(void *dst, const void *src, kwSize n, uint32_t) {
    auto *HWY_RESTRICT d = static_cast<uint16_t *>(dst);
    auto *HWY_RESTRICT s = static_cast<const S *>(src);
    for (kwSize i = 0; i < n; ++i) {
        S x = s[i] > 0 ? s[i] : 0; // NaN is not
        x = x < 65535 ? x : 65535;
        d[i] = static_cast<uint16_t>(static_cast<int32_t>(x));
    }
    return 0;
}

template<class S> uint32_t logical_run(void *dst, const void *src, kwSize n, uint32_t) {
    auto *HWY_RESTRICT d = static_cast<uint8_t *>(dst);
    auto *HWY_RESTRICT s = static_cast<const S *>(src);
    kwSize end = n;
    if constexpr (std::is_floating_point_v<S>) {
        int nan = 0;
        for (kwSize i = 0; i < n; ++i) nan |= s[i] != s[i];
        if (nan)
            for (end = 0; s[end] == s[end];) ++end;
    }
    for (kwSize i = 0; i < end; ++i) d[i] = s[i] != 0;
    return end < n ? kind_nan_logical : 0;
}

// ------------------------------------------------------------------------------------------------

template<class D, class S> constexpr ConvertKernel kernel_for() {
    if constexpr (std::is_same_v<D, bool>)
        return logical_run<S>;
    else if constexpr (std::is_floating_point_v<D>)
        return cast_run<D, S>;
    else if constexpr (std::is_same_v<D, char16_t> && std::is_floating_point_v<S>)
        return char_run<S>;
    else if constexpr (std::is_floating_point_v<S> && sizeof(D) == 8)
        return round_wide_run<D, S>;
    else if constexpr (std::is_floating_point_v<S>)
        return round_run<D, S>;
    else if constexpr (every_value_fits<Stored<D>, S>)
        return cast_run<Stored<D>, S>;
    else
        return saturate_run<Stored<D>, S>;
}

ConvertKernel find_kernel(int dst_class, int src_class) {
    return visit_class<ConvertKernel>(dst_class, nullptr, [&]<class D>(std::type_identity<D>) {
        return visit_class<ConvertKernel>(src_class, nullptr,
                                          []<class S>(std::type_identity<S>) -> ConvertKernel {
                                              if constexpr (has_conversion<D, S>)
                                                  return kernel_for<D, Stored<S>>();
                                              else
                                                  return nullptr;
                                          });
    });
}

#endif

} // namespace
} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(find_kernel);

ConvertKernel vector_kernel(int dst_class, int src_class) {
    return HWY_DYNAMIC_DISPATCH(find_kernel)(dst_class, src_class);
}

} // namespace ox
#endif
