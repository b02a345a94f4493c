// Assignment into sparse arrays and deletion from them, for the exported kernels and for indexing.
//
// The source is converted to the target's class; once the shapes are found to fit, the target is
// made sparse and given storage of its own. All answer a status for subscripts and shapes that do
// not fit, before anything changes unless they say otherwise, and raise for lack of memory and for
// conversions that do not exist.
#pragma once
#include <index/operands/subscript.h>
#include <ox/sparse.h>
#include <sparse/column_assign.h>

namespace ox {

// A(:, J) = B. Columns before the first bad index stay assigned. A 0-by-0 target takes its rows
// from B.
spStatus sparse_assign_columns(oxArray *a, oxArray *b, const ColumnIndices &columns);
// A(I, J) = B, growing a as the subscripts ask.
spStatus sparse_assign_block(oxArray *a, oxArray *b, Subscript &rows, Subscript &columns);
// A(I) = B. A row grows by columns, a column by rows, a matrix by columns.
spStatus sparse_assign_linear(oxArray *a, oxArray *b, Subscript &index);

// A(:, J) = [], A(I, :) = []. Positions beyond a are skipped. Columns before the first bad index
// stay deleted.
spStatus sparse_delete_columns(oxArray *a, const ColumnIndices &columns);
spStatus sparse_delete_rows(oxArray *a, Subscript &rows);
// A(I) = []; what is left of a matrix becomes a row. 10 above the limit of elements.
spStatus sparse_delete_linear(oxArray *a, Subscript &index);

} // namespace ox
