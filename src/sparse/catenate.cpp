// Joining sparse arrays: whole blocks side by side, column by column one above the other.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <sparse/catenate.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// Appends entries from .. from + count - 1 of a, rows shifted, at position `at` of c. A real
// operand of a complex result leaves the zeroed imaginary block alone.
template<class T>
void append(oxArray *c, kwIndex at, const oxArray *a, kwIndex from, kwSize count, kwSize shift) {
    std::transform(a->num.ir + from, a->num.ir + from + count, c->num.ir + at,
                   [=](kwIndex row) { return row + shift; });
    std::copy_n(data<T>(a) + from, count, data<T>(c) + at);
    if (has_imag_block(a)) std::copy_n(imag<T>(a) + from, count, imag<T>(c) + at);
}

template<class T> void join_beside(oxArray *c, kwSize n, const oxArray *const *operands) {
    kwIndex at = 0;
    kwIndex *jc = c->num.jc;
    for (kwSize k = 0; k < n; ++k) {
        const oxArray *a = operands[k];
        const kwSize columns = cols(a), nnz = nonzeros(a);
        append<T>(c, at, a, 0, nnz, 0);
        for (kwSize j = 0; j < columns; ++j) *++jc = at + a->num.jc[j + 1];
        at += nnz;
    }
}

template<class T>
void join_below(oxArray *c, kwSize n, const oxArray *const *operands, kwSize columns) {
    kwIndex at = 0;
    for (kwSize j = 0; j < columns; ++j) {
        kwSize shift = 0;
        for (kwSize k = 0; k < n; shift += rows(operands[k++])) {
            const kwIndex *jc = operands[k]->num.jc;
            append<T>(c, at, operands[k], jc[j], jc[j + 1] - jc[j], shift);
            at += jc[j + 1] - jc[j];
        }
        c->num.jc[j + 1] = at;
    }
}

} // namespace

oxArray *sparse_catenate(bool vertical, kwSize n, const oxArray *const *operands, kwSize rows,
                         kwSize columns) {
    kwSize total = 0;
    bool complex = false;
    for (kwSize k = 0; k < n; ++k) {
        total += nonzeros(operands[k]);
        complex = complex || has_imag_block(operands[k]);
    }
    const int id = operands[0]->class_code;
    oxArray *c = make_sparse(rows, columns, total, id, complex);
    if (!c) return nullptr;
    visit_width(class_info(id).element_size, [&]<class T>(std::type_identity<T>) {
        if (vertical)
            join_below<T>(c, n, operands, columns);
        else
            join_beside<T>(c, n, operands);
    });
    return c;
}

} // namespace ox
