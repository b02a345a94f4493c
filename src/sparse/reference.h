// B = A(rows, cols) and B = A(I) for sparse A.
#pragma once
#include <core/array.h>
#include <index/operands/subscript.h>
#include <ox/sparse.h>

namespace ox {

// Rows or columns null: all of them, and the count is not read. Positions are zero-based, may
// repeat and come in any order. Capacity: exact for whole columns and when the rows of A are not
// many beside its elements or the request, else an upper bound. Raises 9's error for positions
// beyond A before anything is allocated, and error 18.
oxArray *sparse_reference(const oxArray *a, const kwIndex *rows, kwSize nrows, const kwIndex *cols,
                          kwSize ncols);

// B = A(subs) by two or more subscripts; those beyond the second address dimensions of extent 1.
// The result is handed to no hook. Raises error 18.
spStatus sparse_reference(const oxArray *a, kwSize nsubs, const oxArray *const *subs,
                          oxArray **result);

// B = A(I) as an m-by-n array, m * n = I.count, I inside A. Raises error 18.
oxArray *sparse_linear_reference(const oxArray *a, Subscript &index, kwSize m, kwSize n);

} // namespace ox
