// Converting elements and whole arrays without raising: the cores under <ox/convert.h>.
#pragma once
#include <core/array.h>
#include <ox/convert.h>

namespace ox {

enum class Converted {
    done,
    impossible,         // no such conversion, or no memory
    nan_to_logical,     // error 66; the elements before the NaN are written
    complex_to_logical, // error 67
    too_large,          // error 19
    sparse_class,       // no sparse arrays of the class
};

// Converts n elements and issues each of the three warnings at most once. `impossible`, nothing
// written, for pairs without a conversion.
Converted convert_elements(void *dst, int dst_class, const void *src, int src_class, kwSize n);

// The core of oxCreateConvertedCopy for all but opaque arrays: a new array in *out, seen by no
// hook, or null and why. It issues warnings.
Converted convert_copy(const oxArray *a, int to, oxArray **out);

// Raises what a status other than done and impossible stands for.
void raise_unless_converted(Converted status);
[[noreturn]] void raise_sparse_class();

} // namespace ox
