// Comparing numeric, char and logical arrays of which at least one is sparse.
#pragma once
#include <core/array.h>

namespace ox {

// Both sparse, same dimensions: values by position. Of one class the structures must be identical,
// so a stored zero differs from none; of two classes a stored zero is a zero.
bool equal_sparse_pair(const oxArray *a, const oxArray *b, bool nan_equal);

// s sparse, f full, same dimensions: every element, implicit zeros included.
bool equal_sparse_full(const oxArray *s, const oxArray *f, bool nan_equal);

} // namespace ox
