// Compressed columns: the rules of the layout, stated and checked here, and the storage cores.
//
//   1. jc[0] = 0 and jc[j] <= jc[j+1] for every column j of n.
//   2. jc[n] is the number of stored elements, nnz <= nzmax.
//   3. Column j stands at positions jc[j] .. jc[j+1]-1 of ir, pr and pi; its rows strictly
//      increase and are below m. Stored zeros are allowed.
//   4. nzmax >= 1, so that pr and ir are never null.
// A sparse array is 2-D. Every kernel relies on the rules, none tests them again.
#pragma once
#include <core/array.h>

namespace ox {

// Stored elements.
inline kwSize nonzeros(const oxArray *a) { return a->num.jc[cols(a)]; }

// The number of the first rule above that does not hold, or 0. Reads nothing beyond the vectors
// that the rules before it have bounded.
int broken_csc_rule(kwSize m, kwSize n, kwSize nzmax, const kwIndex *jc, const kwIndex *ir);

// An m-by-n array without stored elements and with capacity max(nzmax, 1). Null without memory and
// for classes without elements. Touches no hook.
oxArray *make_sparse(kwSize m, kwSize n, kwSize nzmax, int id, bool complex);

// B = A.' for sparse A; no conjugation, capacity max(nnz, 1). O(nnz + m + n). Null without memory.
oxArray *sparse_transpose(const oxArray *a);

// The elements of a full array that are not zero (NaN is not, nor is a complex number with either
// part non-zero) as a sparse array of its class; dimensions beyond the second fold into the
// columns. Exact capacity, at least 1. Null without memory, and for classes without numbers.
oxArray *full_to_sparse(const oxArray *a);

// Every element of a sparse array in full storage. Null without memory or above the element limit.
oxArray *sparse_to_full(const oxArray *a);

// The reshape of <ox/sparse.h>; newJc need not be cleared.
void reshape_indices(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize new_m, kwSize new_n,
                     kwIndex *new_jc);

// Reallocates pr, pi and ir to nzmax elements (at least 1) and records it; false without memory,
// and then the array is as before but for slack. The caller keeps nnz <= nzmax.
bool set_capacity(oxArray *a, kwSize nzmax);

} // namespace ox
