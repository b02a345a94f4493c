// The arithmetic of first:step:last: how many elements, and which.
#include <core/position.h>
#include <errors/warn.h>
#include <index/operands/colon_range.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ox {

namespace {

constexpr double exact_integers = 9007199254740992.0; // 2^53

bool is_whole(double x) { return x == std::trunc(x) && std::isfinite(x); }
bool is_exact(double x) { return x == std::trunc(x) && std::fabs(x) <= exact_integers; }
bool is_backward(double first, double step, double last) {
    return step == 0 || (step > 0 && first > last) || (step < 0 && first < last);
}

// The worst error of last - (first + n step) when first, step and last are each off by one
// rounding, at the precision of the class.
double tolerance(double first, double last, bool single) {
    const double eps = single ? double{std::numeric_limits<float>::epsilon()}
                              : std::numeric_limits<double>::epsilon();
    return 2 * eps * std::max(std::fabs(first), std::fabs(last));
}

// How many steps fit between finite first and last, as a real number.
double steps_between(double first, double step, double last) {
    const double distance = last - first;
    return std::isfinite(distance) ? distance / step : last / step - first / step;
}

} // namespace

double colon_count(double first, double step, double last, bool single) {
    if (std::isnan(first) || std::isnan(step) || std::isnan(last))
        return std::numeric_limits<double>::quiet_NaN();
    if (is_backward(first, step, last)) return 0;
    if (is_exact(first) && is_exact(step) && is_exact(last))
        return static_cast<double>((static_cast<int64_t>(last) - static_cast<int64_t>(first)) /
                                       static_cast<int64_t>(step) +
                                   1);
    if (std::isinf(first)) return std::numeric_limits<double>::quiet_NaN();
    if (std::isinf(step)) return 1;
    if (std::isinf(last)) return std::numeric_limits<double>::infinity();
    const double q = steps_between(first, step, last), r = std::nearbyint(q);
    if (std::fabs(std::fma(r, step, first) - last) <= tolerance(first, last, single)) return r + 1;
    return std::floor(q) + 1;
}

double colon_end(double first, double step, double last, kwSize n, bool single) {
    if (n <= 1) return first;
    const double end = std::fma(static_cast<double>(n - 1), step, first);
    if (std::fabs(end - last) <= tolerance(first, last, single)) return last;
    return step > 0 ? std::min(end, last) : std::max(end, last); // never past last
}

IndexRange colon_index_range(double first, double step, double last) {
    if (!std::isfinite(first) || !std::isfinite(step) || !std::isfinite(last))
        oxErrMsgIdAndTxt("VELTRO:colon:nonFiniteEndpoint",
                         "Non-finite endpoints or increment for colon operator in index");
    if (!is_whole(first) || !is_whole(step) || !is_whole(last)) {
        oxWarningMsgIdAndTxt("VELTRO:colon:nonIntegerIndex",
                             "Integer operands are required for colon operator when used as index");
        return {double_to_size(colon_count(first, step, last, false)), false, 0, 0};
    }
    if (is_backward(first, step, last)) return {0, true, 0, 0};
    constexpr double top = static_cast<double>(max_size), far = 1152921504606846976.0; // 2^60
    const auto f = static_cast<int64_t>(std::clamp(first, -far, top));
    const auto s = static_cast<int64_t>(std::clamp(step, -far, far));
    const auto l = static_cast<int64_t>(std::clamp(last, -far, top));
    const auto count = static_cast<kwSize>((l - f) / s) + 1;
    return {std::min(count, max_size), true, f, s};
}

int64_t colon_index_floor(double first, double step, kwSize k) {
    const double position = std::floor(first + static_cast<double>(k) * step);
    return static_cast<int64_t>(
        std::clamp(position, -1152921504606846976.0, static_cast<double>(max_size)));
}

} // namespace ox
