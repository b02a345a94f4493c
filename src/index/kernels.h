// Vector kernels of gather: masks straight from their bytes, and every second element.
#pragma once
#include <ox/types.h>

#include <cstdint>

namespace ox {

// dst[0 .. count-1] = the elements of src whose byte in mask[0 .. n-1] is not zero; count of them
// are.
void compress64(uint64_t *dst, const uint64_t *src, const uint8_t *mask, kwSize n, kwSize count);
void compress32(uint32_t *dst, const uint32_t *src, const uint8_t *mask, kwSize n, kwSize count);

// dst[k] = src[2 k].
void take_every_second64(uint64_t *dst, const uint64_t *src, kwSize n);

} // namespace ox
