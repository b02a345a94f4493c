// Compressed columns: the storage cores over the layout whose rules core/csc_rules.h states.
#pragma once
#include <core/array.h>

#include <algorithm>
#include <core/csc_rules.h>

namespace ox {

// Stored elements.
inline kwSize nonzeros(const oxArray *a) { return a->num.jc[cols(a)]; }

// Where the element of a linear position (row + column * m) is stored, or not_stored. a has rows.
inline constexpr kwIndex not_stored = ~kwIndex{0};
inline kwIndex find_stored(const oxArray *a, kwIndex position) {
    const kwSize m = rows(a), row = position % m;
    const kwIndex *jc = a->num.jc + position / m;
    const kwIndex *begin = a->num.ir + jc[0], *end = a->num.ir + jc[1];
    const kwIndex *at = std::lower_bound(begin, end, row);
    return at != end && *at == row ? static_cast<kwIndex>(at - a->num.ir) : not_stored;
}

// An m-by-n array without stored elements and with capacity max(nzmax, 1). Null without memory and
// for classes without elements. Touches no hook.
oxArray *make_sparse(kwSize m, kwSize n, kwSize nzmax, int id, bool complex);
// The same, but the nzmax elements and the column starts are undefined; only the first start is 0.
oxArray *make_sparse_uninit(kwSize m, kwSize n, kwSize nzmax, int id, bool complex);

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
