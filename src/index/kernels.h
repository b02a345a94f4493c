// Vector kernels of gather: positions from a list, and masks straight from their bytes.
#pragma once
#include <index/selection.h>

namespace ox {

// dst = the plane of 8-byte elements whose first axis x is a list of stride 1 and whose second is
// y; x fastest.
void gather_list64(uint64_t *dst, const uint64_t *src, const Axis &x, const Axis &y);

// dst[0 .. count-1] = the elements of src whose byte in mask[0 .. n-1] is not zero; count of them
// are.
void compress64(uint64_t *dst, const uint64_t *src, const uint8_t *mask, kwSize n, kwSize count);
void compress32(uint32_t *dst, const uint32_t *src, const uint8_t *mask, kwSize n, kwSize count);

// dst[k] = src[2 k].
void take_every_second64(uint64_t *dst, const uint64_t *src, kwSize n);

} // namespace ox
