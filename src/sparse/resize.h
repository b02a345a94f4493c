// Changing the size of a sparse array in place.
#pragma once
#include <core/array.h>

namespace ox {

// Elements keep their subscripts; those outside the new size go. a shares nothing. False without
// memory, a then as before.
bool sparse_resize(oxArray *a, kwSize m, kwSize n);

} // namespace ox
