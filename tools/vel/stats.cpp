// What can be said of all elements together.
#include "stats.h"

#include "elements.h"

#include <algorithm>
#include <cmath>

namespace vel {
namespace {

class Sum {
public:
    void add(double re, double im) {
        s_.nonzeros += re != 0 || im != 0;
        s_.infinities += std::isinf(re) || std::isinf(im);
        if (std::isnan(re) || std::isnan(im)) {
            ++s_.nans;
            return;
        }
        count(re, 1);
    }
    // Elements that a sparse array does not store.
    void add_zeros(size_t n) {
        s_.zeros = n;
        if (n > 0) count(0, n);
    }
    Stats result(size_t elements) {
        s_.elements = elements;
        s_.zeros = elements - s_.nonzeros;
        s_.mean = sum_ / static_cast<double>(counted_);
        if (counted_ == 0) s_.least = s_.most = oxGetNaN();
        return s_;
    }

private:
    void count(double x, size_t times) {
        s_.least = counted_ ? std::min(s_.least, x) : x;
        s_.most = counted_ ? std::max(s_.most, x) : x;
        counted_ += times;
        sum_ += x * static_cast<double>(times);
    }
    Stats s_;
    size_t counted_ = 0;
    double sum_ = 0;
};

} // namespace

Stats stats_of(const oxArray *a) {
    Sum sum;
    const size_t n = oxGetNumberOfElements(a);
    const size_t stored = oxIsSparse(a) ? oxGetNumNonZeroEl(a) : n;
    visit_elements(a, [&](auto e) {
        for (size_t k = 0; k < stored; ++k)
            sum.add(static_cast<double>(e.re[k]), e.im ? static_cast<double>(e.im[k]) : 0);
    });
    sum.add_zeros(n - stored);
    return sum.result(n);
}

Json json_stats(const Stats &s) {
    return {{"elements", json_integer(s.elements)}, {"zeros", json_integer(s.zeros)},
            {"nnz", json_integer(s.nonzeros)},      {"nan", json_integer(s.nans)},
            {"inf", json_integer(s.infinities)},    {"min", json_number(s.least)},
            {"max", json_number(s.most)},           {"mean", json_number(s.mean)}};
}

} // namespace vel
