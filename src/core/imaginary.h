// The imaginary part: whether there is one, and the marker for one that has no block yet.
#pragma once
#include <core/array.h>

namespace ox {

// The address that oxMarkImagData stores; it is never freed, copied from or read.
void *imag_marker();

inline bool is_complex(const oxArray *a) { return is_numeric(a) && a->num.pimag; }
// An imaginary block that can be read.
inline bool has_imag_block(const oxArray *a) {
    return is_complex(a) && a->num.pimag != imag_marker();
}
// Frees the imaginary word's block (not the marker) and nulls it; for numeric classes only.
void drop_imag(oxArray *a);
// The core of oxFreeImagIfZero.
void drop_imag_if_zero(oxArray *a);

} // namespace ox
