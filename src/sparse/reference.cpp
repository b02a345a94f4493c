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

// Copies count values; a few of them faster than a call would.
template<class T> void copy(const T *from, kwSize count, T *to) {
    if (count > 16)
        std::copy_n(from, count, to);
    else
        for (kwSize i = 0; i < count; ++i) to[i] = from[i];
}

// Neighbouring columns are block copies.
template<class T> void copy_columns(const oxArray *a, const ColumnChoice &columns, oxArray *b) {
    const kwIndex *jc = a->num.jc;
    const bool complex = has_imag_block(a);
    kwIndex at = 0;
    columns.for_each_run([&](kwSize c, kwSize end) {
        const kwIndex *start = jc + columns[c], k = *start, count = start[end - c] - k;
        copy(a->num.ir + k, count, b->num.ir + at);
        copy(data<T>(a) + k, count, data<T>(b) + at);
        if (complex) copy(imag<T>(a) + k, count, imag<T>(b) + at);
        for (; c < end; ++c) b->num.jc[c + 1] = at + *++start - k;
        at += count;
    });
}

oxArray *reference_columns(const oxArray *a, const ColumnChoice &columns) {
    oxArray *b = make_reference(a, rows(a), columns.count, stored(a, columns));
    visit_width(class_info(a->class_code).element_size,
                [&]<class T>(std::type_identity<T>) { copy_columns<T>(a, columns, b); });
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
