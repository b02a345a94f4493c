// B = A.' for sparse arrays: count the rows, place the elements column by column.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <sparse/storage/csc.h>

namespace ox {
namespace {

// Column starts of the transpose: place[i] is where the next element of row i goes.
void count_rows(const oxArray *a, kwSize m, kwSize n, kwIndex *place) {
    const kwIndex *ir = a->num.ir, nnz = a->num.jc[n];
    for (kwIndex k = 0; k < nnz; ++k)
        if (ir[k] + 2 <= m) ++place[ir[k] + 2]; // the last row's end is known: nnz
    for (kwSize i = 1; i < m; ++i) place[i + 1] += place[i];
}

// Elements in column order leave each row of b sorted. place is b's jc shifted by one, so that it
// has become jc when all are placed. O(nnz + n).
template<class T>
void place_elements(const oxArray *a, oxArray *b, kwSize n, bool complex, kwIndex *place) {
    const kwIndex *jc = a->num.jc, *ir = a->num.ir;
    const T *pr = data<T>(a), *pi = complex ? imag<T>(a) : nullptr;
    T *br = data<T>(b), *bi = complex ? imag<T>(b) : nullptr;
    for (kwSize j = 0; j < n; ++j)
        for (kwIndex k = jc[j]; k < jc[j + 1]; ++k) {
            const kwIndex p = place[ir[k] + 1]++;
            b->num.ir[p] = j;
            br[p] = pr[k];
            if (complex) bi[p] = pi[k];
        }
}

} // namespace

oxArray *sparse_transpose(const oxArray *a) {
    const kwSize m = rows(a), n = cols(a), nnz = a->num.jc[n];
    const bool complex = has_imag_block(a);
    oxArray *b = make_sparse(n, m, nnz, a->class_code, complex);
    if (!b || nnz == 0) return b;
    kwIndex *place = b->num.jc; // m + 1 entries
    count_rows(a, m, n, place);
    visit_width(class_info(a->class_code).element_size, [&]<class T>(std::type_identity<T>) {
        place_elements<T>(a, b, n, complex, place);
    });
    return b;
}

} // namespace ox
