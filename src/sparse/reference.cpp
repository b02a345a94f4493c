// B = A(rows, cols); rows may repeat; the rows of every column of B come out sorted.
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <ox/sparse.h>
#include <sparse/reference.h>
#include <sparse/row_request.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// The chosen columns: a list, or all n.
struct Columns {
    const kwIndex *list;
    kwSize count;
    kwIndex operator[](kwSize c) const { return list ? list[c] : c; }
};

// A result with its parts, filled column by column.
template<class T> struct Target {
    oxArray *b;
    kwIndex *ir;
    T *re, *im; // im null when real
    kwIndex end = 0;

    Target(oxArray *array, bool complex)
        : b(array), ir(array->num.ir), re(data<T>(array)), im(complex ? imag<T>(array) : nullptr) {}
};

template<class T> struct Source {
    const kwIndex *jc, *ir;
    const T *re, *im;

    explicit Source(const oxArray *a)
        : jc(a->num.jc), ir(a->num.ir), re(data<T>(a)),
          im(has_imag_block(a) ? imag<T>(a) : nullptr) {}
};

void check_positions(const kwIndex *positions, kwSize count, kwSize extent) {
    if (positions &&
        std::any_of(positions, positions + count, [=](kwIndex p) { return p >= extent; }))
        oxHandleSparseSubscriptError(spOutOfBounds);
}

oxArray *make_result(const oxArray *a, kwSize m, kwSize n, kwSize nzmax) {
    oxArray *b = make_sparse(m, n, nzmax, a->class_code, has_imag_block(a));
    if (!b) raise_out_of_memory();
    return b;
}

// All rows: every chosen column is three block copies.
template<class T> void copy_columns(const Source<T> &a, const Columns &columns, Target<T> b) {
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwIndex k = a.jc[columns[c]], length = a.jc[columns[c] + 1] - k;
        std::copy_n(a.ir + k, length, b.ir + b.end);
        std::copy_n(a.re + k, length, b.re + b.end);
        if (b.im) std::copy_n(a.im + k, length, b.im + b.end);
        b.b->num.jc[c + 1] = b.end += length;
    }
}

// Stored elements of the chosen columns.
kwSize stored(const oxArray *a, const Columns &columns) {
    kwSize n = 0;
    for (kwSize c = 0; c < columns.count; ++c)
        n += a->num.jc[columns[c] + 1] - a->num.jc[columns[c]];
    return n;
}

// A requested row: where it goes, and which stored element it is.
struct Match {
    kwIndex position, k;
    bool operator<(const Match &o) const { return position < o.position; }
};

template<class T> void append(Target<T> &b, const Source<T> &a, kwIndex position, kwIndex k) {
    b.ir[b.end] = position;
    b.re[b.end] = a.re[k];
    if (b.im) b.im[b.end] = a.im[k];
    ++b.end;
}

// Elements come by increasing row of A. For a request that never decreases that is the order of B
// too; otherwise the matches of a column are sorted by their position first.
template<class T> void gather_rows(const Source<T> &a, const RowRequest &rows,
                                   const Columns &columns, Match *matches, Target<T> b) {
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwIndex k0 = a.jc[columns[c]], k1 = a.jc[columns[c] + 1];
        if (rows.increasing()) {
            rows.for_each(a.ir, k0, k1, [&](kwIndex p, kwIndex k) { append(b, a, p, k); });
        } else {
            Match *end = matches;
            rows.for_each(a.ir, k0, k1, [&](kwIndex p, kwIndex k) { *end++ = {p, k}; });
            std::sort(matches, end);
            for (const Match *x = matches; x != end; ++x) append(b, a, x->position, x->k);
        }
        b.b->num.jc[c + 1] = b.end;
    }
}

struct Size {
    kwSize total = 0, longest = 0; // of all columns of B, and of one
    void add(kwSize column) {
        total += column;
        longest = std::max(longest, column);
    }
};

// Exact, by counting.
Size count_matches(const oxArray *a, const RowRequest &rows, const Columns &columns) {
    const kwIndex *jc = a->num.jc;
    Size size;
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwIndex k0 = jc[columns[c]], k1 = jc[columns[c] + 1];
        size.add(rows.permutation() ? k1 - k0 : rows.count(a->num.ir, k0, k1));
    }
    return size;
}

// An upper bound without looking at the elements: with d repeats, a column of k elements gives at
// most k + d.
Size bound_matches(const oxArray *a, const RowRequest &rows, kwSize nrows, const Columns &columns) {
    const kwIndex *jc = a->num.jc;
    Size size;
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwSize k = jc[columns[c] + 1] - jc[columns[c]];
        size.add(k > 0 ? std::min(k + rows.repeats(), nrows) : 0);
    }
    return size;
}

// Deliberate: the factor decides the capacity of the result. A map of the rows pays when they are
// not many beside the elements or the request; the result then is exact.
bool counts_exactly(kwSize m, kwSize nnz, kwSize nrows) {
    const kwSize tenth = m / 10 + (m % 10 != 0);
    return tenth <= nnz || tenth <= nrows;
}

oxArray *reference_columns(const oxArray *a, const Columns &columns) {
    oxArray *b = make_result(a, rows(a), columns.count, stored(a, columns));
    visit_width(class_info(a->class_code).element_size, [&]<class T>(std::type_identity<T>) {
        copy_columns<T>(Source<T>(a), columns, Target<T>(b, has_imag_block(a)));
    });
    return b;
}

oxArray *reference_rows(const oxArray *a, const kwIndex *list, kwSize nrows,
                        const Columns &columns) {
    RowRequest request;
    if (!request.prepare(list, nrows, rows(a), stored(a, columns))) raise_out_of_memory();
    const Size size = counts_exactly(rows(a), nonzeros(a), nrows)
                          ? count_matches(a, request, columns)
                          : bound_matches(a, request, nrows, columns);
    RawArray<Match> matches;
    if (!request.increasing()) {
        matches = RawArray<Match>::make(std::max<kwSize>(size.longest, 1));
        if (!matches) raise_out_of_memory();
    }
    oxArray *b = make_result(a, nrows, columns.count, size.total);
    visit_width(class_info(a->class_code).element_size, [&]<class T>(std::type_identity<T>) {
        gather_rows<T>(Source<T>(a), request, columns, matches.get(),
                       Target<T>(b, has_imag_block(a)));
    });
    return b;
}

} // namespace

oxArray *sparse_reference(const oxArray *a, const kwIndex *row_list, kwSize nrows,
                          const kwIndex *column_list, kwSize ncols) {
    check_positions(row_list, nrows, rows(a));
    check_positions(column_list, ncols, cols(a));
    const Columns columns{column_list, column_list ? ncols : cols(a)};
    return row_list ? reference_rows(a, row_list, nrows, columns) : reference_columns(a, columns);
}

} // namespace ox

extern "C" oxArray *oxSparseReference(const oxArray *a, const kwIndex *rows, kwSize nrows,
                                      const kwIndex *cols, kwSize ncols) {
    return ox::hand_over(ox::sparse_reference(a, rows, nrows, cols, ncols));
}
