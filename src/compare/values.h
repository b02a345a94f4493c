// Comparing runs of elements by value: within a class, across classes, and against zero.
#pragma once
#include <ox/types.h>

#include <cstdint>

namespace ox {

// The element rule: without NaN, x == y; with one, only NaN == NaN and only under nan_equal.
inline bool equal_elements(double x, double y, bool nan_equal) {
    return x == y || (nan_equal && x != x && y != y);
}

// One element read for comparison. Two 64-bit integers compare exactly; against anything else the
// value rounded to double counts, unless rounding took it out of its class's range.
struct Element {
    double value;
    uint64_t bits; // of a 64-bit integer
    bool wide;     // class is int64 or uint64
    bool negative; // and below zero
    bool beyond;   // reads as 2^63 (int64) or 2^64 (uint64): equals nothing of another class
};
inline constexpr Element zero_element{0.0, 0, false, false, false};

using ReadElement = Element (*)(const void *values, kwSize k);
// The reader for a class that holds numbers, characters or truth values.
ReadElement element_reader(int id);
bool equal_elements(const Element &x, const Element &y, bool nan_equal);

// Whether n elements of two runs are equal, the first of doubles and the second of a class whose
// values a double holds exactly (null for others), or both of singles.
using EqualKernel = bool (*)(const void *a, const void *b, kwSize n, bool nan_equal);
EqualKernel equal_to_doubles(int class_b);
EqualKernel equal_singles();

// Whether elements 0 to n-1 of two runs, of any of those classes, are equal. Logical values of one
// class compare as stored bytes.
bool equal_runs(int class_a, const void *a, int class_b, const void *b, kwSize n, bool nan_equal);

// Whether n elements from number first on are zero; NaN is not.
bool all_zero(int id, const void *values, kwSize first, kwSize n);

} // namespace ox
