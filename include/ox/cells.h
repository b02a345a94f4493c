/* Cell arrays: arrays whose elements are arrays. */
#ifndef OX_CELLS_H
#define OX_CELLS_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* --- Creation ---------------------------------------------------------------------------- */

/* A new m-by-n cell array of empty (null) cells, a temporary of the current array-list context.
   Without memory it raises error 18; before oxInitArrayListManager it returns null. */
OX_API oxArray *oxCreateCellMatrix_730(kwSize m, kwSize n);
/* The same with ndim sizes; none or a null vector gives 0-by-0, one gives a column. Counts above
   2^48 - 1 elements fail as missing memory does. */
OX_API oxArray *oxCreateCellArray_730(kwSize ndim, const kwSize *dims);

/* --- Elements ---------------------------------------------------------------------------- */

/* Neither the class nor the position i (zero-based, column by column) is checked here. A cell owns
   one reference to each of its arrays; what it holds is destroyed with it. */

/* The array in cell i, null when the cell is empty; it stays the cell's. */
OX_API oxArray *oxGetCell_730(const oxArray *a, kwSize i);
/* Gives v (may be null) to cell i: v is no temporary any more. What is stored may be another array
   that shares v's data; raises error 18 when that must be made and no memory is left. The previous
   array is not released: destroy it first if it must go. */
OX_API void oxSetCell_730(oxArray *a, kwSize i, oxArray *v);
/* The same, but the caller keeps v: the cell gets a reference of its own. */
OX_API void oxSetCopyInCell(oxArray *a, kwSize i, oxArray *v);
/* All cells, one pointer per element; the block stays the array's. Null for an empty array. */
OX_API oxArray **oxGetCells(const oxArray *a);
/* The array takes the block over from the caller (it leaves the current allocation-list context)
   unless its data are private. The previous block is not freed. */
OX_API void oxSetCells(oxArray *a, oxArray **block);

/* --- The constructor function -------------------------------------------------------------- */

/* plhs[0] = cell(prhs...): of one argument that is not double the argument as a cell, never the
   argument itself; otherwise empty cells of the sizes that oxGetDims reads. Raises error 3 for two
   or more outputs, error 2 without input, and what oxMustBe and oxGetDims raise. */
OX_API void oxCellConstructorFcn(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);
/* Reads size arguments: none gives 1-by-1; one must be a row, of one number n (n-by-n), none
   (0-by-0) or more (one size each); several are one number each. dims has room for the sizes, and
   for two at least. Raises "VELTRO:NonIntegerInput" when the one argument is no row, and what
   oxMustBeFullDouble and oxArgMustBeIndices raise. */
OX_API void oxGetDims(int nargs, const oxArray *args[], kwSize *dims, kwSize *ndim);

OX_END_C

#endif
