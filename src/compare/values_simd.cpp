// The vector kernels of comparison, compiled once for each instruction set and chosen at run time.
#include <compare/values.h>
#include <core/dispatch.h>
#include <core/simd_targets.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "compare/values_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// A vector of values that the lanes of d hold exactly.
template<class D, class T, class V = hn::Vec<D>> HWY_INLINE V load(D d, const T *p) {
    const auto x = hn::LoadU(hn::Rebind<T, D>(), p);
    const hn::Rebind<int32_t, D> di;
    if constexpr (std::is_same_v<T, hn::TFromD<D>>) {
        return x;
    } else if constexpr (sizeof(T) < 4) {
        return hn::PromoteTo(d, hn::PromoteTo(di, x));
    } else if constexpr (std::is_same_v<T, uint32_t>) {
        const auto lowered = hn::Xor(hn::BitCast(di, x), hn::Set(di, INT32_MIN)); // x - 2^31
        return hn::Add(hn::PromoteTo(d, lowered), hn::Set(d, 0x1p31));
    } else {
        return hn::PromoteTo(d, x);
    }
}

template<bool nan_equal, class D, class V = hn::Vec<D>> HWY_INLINE hn::Mask<D> same(D, V x, V y) {
    const auto equal = hn::Eq(x, y);
    if constexpr (nan_equal) return hn::Or(equal, hn::And(hn::IsNaN(x), hn::IsNaN(y)));
    return equal;
}

// Four vectors at a time, and one branch for all of them.
template<bool nan_equal, class A, class B> bool equal_run(const A *a, const B *b, kwSize n) {
    const hn::ScalableTag<A> d;
    const kwSize lanes = hn::Lanes(d);
    const auto at = [&](kwSize i)
                        HWY_ATTR { return same<nan_equal>(d, load(d, a + i), load(d, b + i)); };
    kwSize i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        const auto first = hn::And(at(i), at(i + lanes));
        const auto second = hn::And(at(i + 2 * lanes), at(i + 3 * lanes));
        if (!hn::AllTrue(d, hn::And(first, second))) return false;
    }
    for (; i + lanes <= n; i += lanes)
        if (!hn::AllTrue(d, at(i))) return false;
    for (; i < n; ++i) {
        const A x = a[i], y = static_cast<A>(b[i]);
        if (!(x == y || (nan_equal && x != x && y != y))) return false;
    }
    return true;
}

template<class A, class B> bool equal_values(const void *a, const void *b, kwSize n, bool nan) {
    const auto *x = static_cast<const A *>(a);
    const auto *y = static_cast<const B *>(b);
    return nan ? equal_run<true>(x, y, n) : equal_run<false>(x, y, n);
}

EqualKernel find_kernel(int class_b) {
    return visit_class<EqualKernel>(class_b, nullptr,
                                    []<class T>(std::type_identity<T>) -> EqualKernel {
                                        if constexpr (std::is_integral_v<T> && sizeof(T) == 8)
                                            return nullptr;
                                        else if constexpr (std::is_same_v<T, char16_t>)
                                            return equal_values<double, uint16_t>;
                                        else
                                            return equal_values<double, Stored<T>>;
                                    });
}

EqualKernel find_single_kernel() { return equal_values<float, float>; }

} // namespace
} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(find_kernel);
HWY_EXPORT(find_single_kernel);

EqualKernel equal_to_doubles(int class_b) { return HWY_DYNAMIC_DISPATCH(find_kernel)(class_b); }
EqualKernel equal_singles() { return HWY_DYNAMIC_DISPATCH(find_single_kernel)(); }

} // namespace ox
#endif
