// Kernels that turn the values of a subscript, or the bytes of a mask, into zero-based positions.
#pragma once
#include <ox/types.h>

#include <cstdint>

namespace ox {

// out[k] = (position that x[k] means) - 1; *max is the largest one-based position. False when a
// value is no positive integer; out is then unfinished. n must not be 0.
bool positions_from_double(const double *x, kwSize n, kwIndex *out, kwSize *max);
bool positions_from_single(const float *x, kwSize n, kwIndex *out, kwSize *max);
// Deliberate: signed classes are read as unsigned bit patterns, so int8(-1) is position 255 and is
// found by the bounds check. False when a value is 0.
bool positions_from_bits(const void *x, kwSize width, kwSize n, kwIndex *out, kwSize *max);

// How many of n bytes are not zero.
kwSize count_true(const uint8_t *mask, kwSize n);
// out[0 .. count-1] = positions of the true bytes.
void positions_from_mask(const uint8_t *mask, kwSize n, kwIndex *out);

} // namespace ox
