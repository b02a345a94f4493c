// The arithmetic of first:step:last: how many elements, and which.
#pragma once
#include <ox/types.h>

namespace ox {

// The number of elements as a real number, NaN when an operand is (or first is infinite). A last
// element that misses `last` by no more than the rounding of the operands can explain counts.
double colon_count(double first, double step, double last, bool single);

// The last of n >= 1 elements: `last` itself when the range reaches it within rounding.
double colon_end(double first, double step, double last, kwSize n, bool single);

// Elements from both ends towards the middle, so that reversing the operands mirrors the values:
// x[k] = first + k step, x[n-1-k] = end - k step. Without accumulation; n may be 0.
template<class T> void colon_fill(T *x, kwSize n, double first, double step, double end) {
    if (n == 0) return;
    const kwSize last = n - 1;
    for (kwSize k = 1; k < (last + 1) / 2; ++k) {
        const double offset = static_cast<double>(k) * step;
        x[k] = static_cast<T>(first + offset);
        x[last - k] = static_cast<T>(end - offset);
    }
    if (last % 2 == 0) x[last / 2] = static_cast<T>(first / 2 + end / 2);
    x[last] = static_cast<T>(end);
    x[0] = static_cast<T>(first);
}

// A range of one-based positions. Whole operands make an arithmetic progression; fractional ones
// are cut to the position below each value, which is no progression, and are given as a count.
struct IndexRange {
    kwSize count;  // at most 2^48 - 1
    bool whole;    // first and step describe the positions
    int64_t first; // saturates at 2^48 - 1 above, so that a bounds check finds it
    int64_t step;
};
// Raises for operands that are not finite, warns for fractional ones.
IndexRange colon_index_range(double first, double step, double last);
// The k-th position of a range that is not whole.
int64_t colon_index_floor(double first, double step, kwSize k);

// Reads a colon object.
struct ColonRecord {
    double first, step, last;
};
ColonRecord read_colon_object(const oxArray *a);

// The array that a colon object stands for, not handed over; null without memory. Raises error 19
// above the size limits.
oxArray *expand_colon(const oxArray *a);
// The same for given operands; null also for a class that has no ranges.
oxArray *make_colon(double first, double step, double last, int id);

} // namespace ox
