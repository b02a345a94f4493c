// B = A(rows, columns): bounds, the choice of the way, and whole columns.
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <core/tuning.h>
#include <errors/raise.h>
#include <ox/sparse.h>
#include <sparse/reference.h>
#include <sparse/row_reference.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

void check_positions(const kwIndex *positions, kwSize count, kwSize extent) {
    bool outside = false;
    for (kwSize i = 0; positions && i < count; ++i) outside |= positions[i] >= extent;
    if (outside) oxHandleSparseSubscriptError(spOutOfBounds);
}

// A list of neighbouring columns needs no looking up.
ColumnChoice choose_columns(const kwIndex *list, kwSize count) {
    if (count == 0 || list[count - 1] - list[0] != count - 1) return {list, count};
    kwIndex differs = 0;
    for (kwSize c = 0; c < count; ++c) differs |= list[c] ^ (list[0] + c);
    return differs ? ColumnChoice{list, count} : ColumnChoice{nullptr, count, list[0]};
}

// Neighbouring columns are one block.
template<class T> void copy_block(const oxArray *a, const ColumnChoice &columns, oxArray *b) {
    const kwIndex *start = a->num.jc + columns.first, k = *start, nnz = start[columns.count] - k;
    std::copy_n(a->num.ir + k, nnz, b->num.ir);
    std::copy_n(data<T>(a) + k, nnz, data<T>(b));
    if (has_imag_block(a)) std::copy_n(imag<T>(a) + k, nnz, imag<T>(b));
    for (kwSize c = 1; c <= columns.count; ++c) b->num.jc[c] = start[c] - k;
}

// Column by column, element by element where they are few: so that the memory is asked for many
// columns at a time.
template<class T> void copy_columns(const oxArray *a, const ColumnChoice &columns, oxArray *b) {
    constexpr kwSize few = 16, ahead = 12;
    const bool complex = has_imag_block(a);
    const kwIndex *jc = a->num.jc, *ir = a->num.ir;
    const T *re = data<T>(a), *im = complex ? imag<T>(a) : nullptr;
    kwIndex *b_ir = b->num.ir, *b_jc = b->num.jc, at = 0;
    T *b_re = data<T>(b), *b_im = complex ? imag<T>(b) : nullptr;
    for (kwSize c = 0; c < columns.count; ++c) {
        if (c + ahead < columns.count) {
            const kwIndex k = jc[columns.list[c + ahead]];
            __builtin_prefetch(ir + k);
            __builtin_prefetch(re + k);
        }
        const kwIndex k = jc[columns.list[c]], count = jc[columns.list[c] + 1] - k;
        if (count > few) {
            std::memcpy(b_ir + at, ir + k, count * sizeof *ir);
            std::memcpy(b_re + at, re + k, count * sizeof *re);
        } else {
            for (kwIndex i = 0; i < count; ++i) {
                b_ir[at + i] = ir[k + i];
                b_re[at + i] = re[k + i];
            }
        }
        if (complex) std::copy_n(im + k, count, b_im + at);
        b_jc[c + 1] = at += count;
    }
}

oxArray *reference_columns(const oxArray *a, const ColumnChoice &columns) {
    oxArray *b = make_reference(a, rows(a), columns.count, stored(a, columns));
    visit_width(class_info(a->class_code).element_size, [&]<class T>(std::type_identity<T>) {
        columns.list ? copy_columns<T>(a, columns, b) : copy_block<T>(a, columns, b);
    });
    return b;
}

// m <= times * n, which may not be counted.
bool within(kwSize m, kwSize times, kwSize n) { return m / times + (m % times != 0) <= n; }

// A map of all rows pays when they are not many more than the requested ones. It counts exactly,
// so that it must not be chosen where an upper bound is asked for.
bool map_pays(const oxArray *a, const RowChoice &rows) {
    static_assert(tuning::row_map_share <= exact_share);
    constexpr kwSize limit = kwSize{1} << 32;
    return within(ox::rows(a), tuning::row_map_share, rows.count) && ox::rows(a) < limit &&
           rows.count < limit;
}

} // namespace

bool counts_exactly(const oxArray *a, const RowChoice &choice) {
    const kwSize m = rows(a);
    return within(m, exact_share, nonzeros(a)) || within(m, exact_share, choice.count);
}

oxArray *make_reference(const oxArray *a, kwSize m, kwSize n, kwSize nzmax) {
    oxArray *b = make_sparse_uninit(m, n, nzmax, a->class_code, has_imag_block(a));
    if (!b) raise_out_of_memory();
    return b;
}

kwSize stored(const oxArray *a, const ColumnChoice &columns) {
    const kwIndex *start = a->num.jc + columns.first;
    if (!columns.list) return start[columns.count] - *start;
    kwSize n = 0;
    for (kwSize c = 0; c < columns.count; ++c)
        n += a->num.jc[columns[c] + 1] - a->num.jc[columns[c]];
    return n;
}

oxArray *sparse_reference(const oxArray *a, const kwIndex *row_list, kwSize nrows,
                          const kwIndex *column_list, kwSize ncols) {
    check_positions(row_list, nrows, rows(a));
    const ColumnChoice columns =
        column_list ? choose_columns(column_list, ncols) : ColumnChoice{nullptr, cols(a)};
    if (columns.list)
        check_positions(column_list, ncols, cols(a));
    else if (column_list)
        check_positions(column_list + ncols - 1, 1, cols(a)); // the largest
    if (!row_list) return reference_columns(a, columns);
    const RowChoice rows{row_list, nrows, std::is_sorted(row_list, row_list + nrows)};
    return map_pays(a, rows) ? reference_many_rows(a, rows, columns)
                             : reference_few_rows(a, rows, columns);
}

} // namespace ox

extern "C" oxArray *oxSparseReference(const oxArray *a, const kwIndex *rows, kwSize nrows,
                                      const kwIndex *cols, kwSize ncols) {
    return ox::hand_over(ox::sparse_reference(a, rows, nrows, cols, ncols));
}
