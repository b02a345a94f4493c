// Compressed columns: the rules of the layout, stated and checked here.
//
//   1. jc[0] = 0 and jc[j] <= jc[j+1] for every column j of n.
//   2. jc[n] is the number of stored elements, nnz <= nzmax.
//   3. Column j stands at positions jc[j] .. jc[j+1]-1 of ir, pr and pi; its rows strictly
//      increase and are below m. Stored zeros are allowed.
//   4. nzmax >= 1, so that pr and ir are never null.
// A sparse array is 2-D. Every kernel relies on the rules, none tests them again.
#pragma once
#include <ox/types.h>

namespace ox {

// The number of the first rule above that does not hold, or 0. Reads nothing beyond the vectors
// that the rules before it have bounded.
int broken_csc_rule(kwSize m, kwSize n, kwSize nzmax, const kwIndex *jc, const kwIndex *ir);

} // namespace ox
