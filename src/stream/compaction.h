// Choosing the smallest integer type that holds double data exactly.
#pragma once
#include <ox/types.h>

#include <cstdint>

namespace ox {

// oiUINT8, oiUINT16, oiINT16, oiINT32, or oiDOUBLE where none of them holds every value.
uint32_t compact_type(const double *x, kwSize n);

} // namespace ox
