// Vector kernels of the value tests, with the scalar twin that serves short runs and tails.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "containers/value_tests.cpp"
#include <hwy/foreach_target.h>

#include <containers/value_tests.h>
#include <core/tuning.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#ifndef OX_VALUE_TESTS_RULES
#define OX_VALUE_TESTS_RULES
namespace ox {

// Each rule as a scalar and, below, as a vector test. Code of a vector target calls only the
// latter: what it instantiates elsewhere could reach machines without the target.
struct Finite {
    template<class T> bool operator()(T x) const { return std::isfinite(x); }
};
struct NotNaN {
    bool operator()(double x) const { return x == x; }
};
struct WholeWithin { // bounds inside the range of int64_t
    double low, high;
    bool operator()(double x) const {
        return x >= low && x <= high && x == static_cast<double>(static_cast<int64_t>(x));
    }
};

} // namespace ox
#endif

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template<class D, class V = hn::Vec<D>> hn::Mask<D> passes(D, V x, const Finite &) {
    return hn::IsFinite(x);
}
template<class D, class V = hn::Vec<D>> hn::Mask<D> passes(D, V x, const NotNaN &) {
    return hn::Eq(x, x);
}
template<class D, class V = hn::Vec<D>> hn::Mask<D> passes(D d, V x, const WholeWithin &r) {
    const auto inside = hn::And(hn::Ge(x, hn::Set(d, r.low)), hn::Le(x, hn::Set(d, r.high)));
    return hn::And(inside, hn::Eq(x, hn::Trunc(x)));
}

// Four vectors at a time, and one branch for all of them; zeros, which pass every rule, fill up
// the last one.
template<class T, class Rule> bool all_pass(const T *x, kwSize n, const Rule &rule) {
    const hn::ScalableTag<T> d;
    const kwSize lanes = hn::Lanes(d);
    kwSize i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        const auto p = passes(d, hn::LoadU(d, x + i), rule);
        const auto q = passes(d, hn::LoadU(d, x + i + lanes), rule);
        const auto r = passes(d, hn::LoadU(d, x + i + 2 * lanes), rule);
        const auto s = passes(d, hn::LoadU(d, x + i + 3 * lanes), rule);
        if (!hn::AllTrue(d, hn::And(hn::And(p, q), hn::And(r, s)))) return false;
    }
    for (; i + lanes <= n; i += lanes)
        if (!hn::AllTrue(d, passes(d, hn::LoadU(d, x + i), rule))) return false;
    T rest[HWY_MAX_BYTES / sizeof(T)] = {};
    std::memcpy(rest, x + i, (n - i) * sizeof(T));
    return hn::AllTrue(d, passes(d, hn::LoadU(d, rest), rule));
}

bool finite_doubles(const double *x, kwSize n) { return all_pass(x, n, Finite{}); }
bool finite_floats(const float *x, kwSize n) { return all_pass(x, n, Finite{}); }
bool no_nan(const double *x, kwSize n) { return all_pass(x, n, NotNaN{}); }
bool whole_within(const double *x, kwSize n, double low, double high) {
    return all_pass(x, n, WholeWithin{low, high});
}

} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(finite_doubles);
HWY_EXPORT(finite_floats);
HWY_EXPORT(no_nan);
HWY_EXPORT(whole_within);

bool all_finite(const double *x, kwSize n) {
    if (n < tuning::simd_min_elements) return std::all_of(x, x + n, Finite{});
    return HWY_DYNAMIC_DISPATCH(finite_doubles)(x, n);
}

bool all_finite(const float *x, kwSize n) {
    if (n < tuning::simd_min_elements) return std::all_of(x, x + n, Finite{});
    return HWY_DYNAMIC_DISPATCH(finite_floats)(x, n);
}

bool any_nan(const double *x, kwSize n) {
    if (n < tuning::simd_min_elements) return !std::all_of(x, x + n, NotNaN{});
    return !HWY_DYNAMIC_DISPATCH(no_nan)(x, n);
}

bool all_whole_within(const double *x, kwSize n, double low, double high) {
    if (n < tuning::simd_min_elements) return std::all_of(x, x + n, WholeWithin{low, high});
    return HWY_DYNAMIC_DISPATCH(whole_within)(x, n, low, high);
}

} // namespace ox
#endif
