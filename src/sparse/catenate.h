// Joining sparse arrays of one class.
#pragma once
#include <core/array.h>

namespace ox {

// C = [A1 A2 ...], or [A1; A2; ...] when vertical, of n operands whose other sides agree. Complex
// if one is; stored zeros stay; capacity max(total nnz, 1). Null without memory.
oxArray *sparse_catenate(bool vertical, kwSize n, const oxArray *const *operands, kwSize rows,
                         kwSize columns);

} // namespace ox
