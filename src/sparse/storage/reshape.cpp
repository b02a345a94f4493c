// Reindexing the stored elements of a sparse array for another shape.
#include <core/size_check.h>
#include <ox/sparse.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// L = row + column * m is formed in place, then split by the new row count in one walk: entries
// come in increasing L, so the new column only ever advances. O(nnz + new_n).
void reshape_by_position(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize new_m,
                         kwSize new_n, kwIndex *new_jc) {
    for (kwSize j = 1; j < n; ++j)
        for (kwIndex k = jc[j]; k < jc[j + 1]; ++k) ir[k] += j * m;
    const kwSize nnz = jc[n];
    kwSize column = 0, base = 0; // base = column * new_m
    for (kwIndex k = 0; k < nnz; ++k) {
        if (ir[k] - base >= new_m) {
            const kwSize next = ir[k] / new_m;
            std::fill(new_jc + column + 1, new_jc + next + 1, k);
            column = next;
            base = column * new_m;
        }
        ir[k] -= base;
    }
    std::fill(new_jc + column + 1, new_jc + new_n + 1, nnz);
}

// The same without any number of the size m * n: `offset` is where the old column's first row
// falls in its new column `base`. Quotients and remainders replace positions.
void reshape_by_offset(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize new_m,
                       kwSize new_n, kwIndex *new_jc) {
    const kwSize q = m / new_m, r = m % new_m;
    kwSize base = 0, offset = 0;
    std::fill(new_jc + 1, new_jc + new_n + 1, 0);
    for (kwSize j = 0; j < n; ++j) {
        for (kwIndex k = jc[j]; k < jc[j + 1]; ++k) {
            const kwSize a = ir[k] / new_m, b = ir[k] % new_m;
            const bool carry = b >= new_m - offset; // b + offset could wrap
            ir[k] = carry ? b - (new_m - offset) : b + offset;
            ++new_jc[base + a + carry + 1];
        }
        const bool carry = r >= new_m - offset;
        offset = carry ? r - (new_m - offset) : offset + r;
        base += q + carry;
    }
    for (kwSize j = 0; j < new_n; ++j) new_jc[j + 1] += new_jc[j];
}

} // namespace

void reshape_indices(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize new_m, kwSize new_n,
                     kwIndex *new_jc) {
    kwSize count;
    new_jc[0] = 0;
    if (jc[n] == 0)
        std::fill(new_jc + 1, new_jc + new_n + 1, 0);
    else if (check_size(m, n, 1, &count))
        reshape_by_position(m, n, jc, ir, new_m, new_n, new_jc);
    else
        reshape_by_offset(m, n, jc, ir, new_m, new_n, new_jc);
}

} // namespace ox

extern "C" void oxReshapeSparse(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize newM,
                                kwSize newN, kwIndex *newJc) {
    ox::reshape_indices(m, n, jc, ir, newM, newN, newJc);
}
