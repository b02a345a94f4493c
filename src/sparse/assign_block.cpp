// A(I, J) = B and A(I) = B: the new content of every touched column is merged beside the array,
// then assigned column by column under the common growth rule.
#include <core/dispatch.h>
#include <errors/raise.h>
#include <sparse/assign.h>
#include <sparse/operands.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

// One element to be stored: its row, and where its value comes from.
struct Incoming {
    kwIndex row, from; // from: position among the source's stored elements; 0 for a value
};

// A row that is assigned, and the source row that wins it.
struct Claim {
    kwIndex row, source;
};

// Claims sorted by row; of several for one row the last stays. Returns how many.
kwSize settle(Claim *claims, kwSize n) {
    std::stable_sort(claims, claims + n,
                     [](const Claim &x, const Claim &y) { return x.row < y.row; });
    kwSize kept = 0;
    for (kwSize i = 0; i < n; ++i)
        if (i + 1 == n || claims[i + 1].row != claims[i].row) claims[kept++] = claims[i];
    return kept;
}

// Writes merged columns into a sparse array whose column starts it keeps.
class Merger {
public:
    // Room for `bound` elements.
    Merger(const oxArray *a, kwSize m, kwSize columns, kwSize bound, bool complex)
        : c_(make_sparse(m, columns, bound, a->class_code, complex)), a_(a),
          size_(class_info(a->class_code).element_size) {
        if (!c_) raise_out_of_memory();
    }

    // Column k: what column j of a has outside the claims, and the incoming elements, which are
    // sorted by row. Values come from source.
    void column(kwSize k, kwIndex j, const Claim *claims, kwSize nclaims, const Incoming *in,
                kwSize nin, const ColumnSource &source) {
        kwIndex old = 0, old_end = 0;
        if (j < cols(a_)) old = a_->num.jc[j], old_end = a_->num.jc[j + 1];
        const Claim *claims_end = claims + nclaims;
        for (kwSize i = 0; old < old_end || i < nin;) {
            if (old < old_end && (i == nin || a_->num.ir[old] < in[i].row)) {
                const kwIndex row = a_->num.ir[old];
                claims = std::lower_bound(claims, claims_end, row,
                                          [](const Claim &x, kwIndex r) { return x.row < r; });
                if (claims == claims_end || claims->row != row) keep(row, old);
                ++old;
            } else {
                if (old < old_end && a_->num.ir[old] == in[i].row) ++old; // replaced
                take(in[i++], source);
            }
        }
        c_->num.jc[k + 1] = end_;
    }
    oxArray *release() { return c_.release(); }

private:
    void copy(void *to, const void *from, kwIndex k) {
        if (to && from)
            std::memcpy(static_cast<unsigned char *>(to) + end_ * size_,
                        static_cast<const unsigned char *>(from) + k * size_, size_);
    }
    void keep(kwIndex row, kwIndex k) {
        c_->num.ir[end_] = row;
        copy(c_->num.pdata, a_->num.pdata, k);
        if (has_imag_block(c_.get()) && has_imag_block(a_)) copy(c_->num.pimag, a_->num.pimag, k);
        ++end_;
    }
    void take(const Incoming &x, const ColumnSource &source) {
        c_->num.ir[end_] = x.row;
        const oxArray *b = source.columns;
        copy(c_->num.pdata, b ? b->num.pdata : source.re, x.from);
        if (source.complex()) copy(c_->num.pimag, b ? b->num.pimag : source.im, x.from);
        ++end_;
    }

    ArrayGuard c_;
    const oxArray *a_;
    kwSize size_;
    kwIndex end_ = 0;
};

// Elements that column k of the source brings for the claimed rows, sorted by row.
kwSize incoming(const ColumnSource &source, kwSize k, const Claim *claims, kwSize nclaims,
                const kwIndex *row_of, Incoming *out) {
    kwSize n = 0;
    if (!source.columns) {
        for (kwSize i = 0; source.re && i < nclaims; ++i) out[n++] = {claims[i].row, 0};
        return n;
    }
    const oxArray *b = source.columns;
    for (kwIndex p = b->num.jc[k]; p < b->num.jc[k + 1]; ++p) {
        const kwIndex i = b->num.ir[p], row = row_of[i];
        const Claim *claim = std::lower_bound(claims, claims + nclaims, row,
                                              [](const Claim &x, kwIndex r) { return x.row < r; });
        if (claim->source == i) out[n++] = {row, p};
    }
    const auto by_row = [](const Incoming &x, const Incoming &y) { return x.row < y.row; };
    if (!std::is_sorted(out, out + n, by_row)) std::sort(out, out + n, by_row);
    return n;
}

// The columns of a, after A(I, J) = source, that J names.
void merge_block(const oxArray *a, kwSize m, const kwIndex *row_of, kwSize nrows,
                 const ColumnIndices &columns, const ColumnSource &source, ArrayGuard &result) {
    auto claims = scratch<Claim>(nrows);
    for (kwSize i = 0; i < nrows; ++i) claims[i] = {row_of[i], i};
    const kwSize nclaims = settle(claims.get(), nrows);
    auto in = scratch<Incoming>(nclaims);
    kwSize bound = 0;
    for (kwSize k = 0; k < columns.count; ++k) {
        kwIndex j;
        columns.column(k, &j);
        if (j < cols(a)) bound += a->num.jc[j + 1] - a->num.jc[j];
        bound += source.columns ? source.count(k, m) : source.re ? nclaims : 0;
    }
    Merger merger(a, m, columns.count, bound, has_imag_block(a) || source.complex());
    for (kwSize k = 0; k < columns.count; ++k) {
        kwIndex j;
        columns.column(k, &j);
        const kwSize nin = incoming(source, k, claims.get(), nclaims, row_of, in.get());
        merger.column(k, j, claims.get(), nclaims, in.get(), nin, source);
    }
    result.reset(merger.release());
}

// Assigns the merged columns to the columns they are for.
spStatus assign_merged(oxArray *a, const ColumnIndices &columns, const oxArray *merged) {
    ColumnSource source;
    source.columns = merged;
    spStatus status = reserve_target(a, source, columns.count);
    if (status == spOK) status = assign_columns(a, columns, source);
    finish_target(a, status);
    return status;
}

RawArray<kwIndex> positions_of(const Subscript &s) {
    auto list = scratch<kwIndex>(s.count);
    s.copy_positions(list.get());
    return list;
}

// The shape in which position `largest` exists.
void grow_for(oxArray *a, kwSize largest) {
    const kwSize m = rows(a), n = cols(a);
    kwSize count;
    if (!__builtin_mul_overflow(m, n, &count) && largest <= count) return;
    if (count == 0 && m != 1 && n != 1) {
        store_mn(a, 1, 0);
        if (!widen(a, largest)) raise_out_of_memory();
    } else if (n == 1 && m != 1) {
        store_mn(a, largest, 1);
    } else if (!widen(a, m <= 1 ? largest : largest / m + (largest % m != 0))) {
        raise_out_of_memory();
    }
}

// Claims sorted by linear position become one run of rows per column.
struct LinearPlan {
    RawArray<Claim> claims;
    RawArray<kwIndex> columns, starts; // run k: starts[k] .. starts[k+1]-1
    kwSize count = 0;                  // runs

    LinearPlan(const Subscript &index, kwSize m) {
        claims = scratch<Claim>(index.count);
        kwSize n = 0;
        index.for_each([&](kwIndex position) {
            claims[n] = {position, n};
            ++n;
        });
        n = settle(claims.get(), n);
        columns = scratch<kwIndex>(n);
        starts = scratch<kwIndex>(n + 1);
        for (kwSize i = 0; i < n; ++i) {
            const kwIndex j = claims[i].row / m;
            claims[i].row %= m;
            if (count > 0 && columns[count - 1] == j) continue;
            starts[count] = i;
            columns[count++] = j;
        }
        starts[count] = n;
    }
};

spStatus assign_linear(oxArray *a, AssignSource &b, const Subscript &index) {
    const oxArray *values = b.array();
    grow_for(a, index.max);
    const kwSize m = rows(a);
    const LinearPlan plan(index, m);
    ColumnSource source;
    if (b.scalar())
        source = b.as_columns(1, 1);
    else
        source.columns = values;
    auto in = scratch<Incoming>(index.count);
    kwSize bound = source.re || source.columns ? index.count : 0;
    for (kwSize k = 0; k < plan.count; ++k)
        bound += a->num.jc[plan.columns[k] + 1] - a->num.jc[plan.columns[k]];
    Merger merger(a, m, plan.count, bound, has_imag_block(a) || source.complex());
    for (kwSize k = 0; k < plan.count; ++k) {
        const Claim *run = &plan.claims[plan.starts[k]];
        const kwSize length = plan.starts[k + 1] - plan.starts[k];
        kwSize nin = 0;
        for (kwSize i = 0; i < length; ++i) {
            const kwIndex from = source.columns ? find_stored(values, run[i].source) : 0;
            if (source.columns ? from != not_stored : source.re != nullptr)
                in[nin++] = {run[i].row, from};
        }
        merger.column(k, plan.columns[k], run, length, in.get(), nin, source);
    }
    const ArrayGuard merged(merger.release());
    return assign_merged(a, {nullptr, plan.columns.get(), plan.count}, merged.get());
}

} // namespace

// Deliberate: an empty source for an empty selection grows the array where the other subscript asks
// for it; a scalar does nothing then.
spStatus sparse_assign_block(oxArray *a, oxArray *b, Subscript &row, Subscript &column) {
    if (!row.mask_to_list() || !column.mask_to_list()) raise_out_of_memory();
    const auto column_list = column.is_all() ? RawArray<kwIndex>() : positions_of(column);
    const ColumnIndices columns{nullptr, column_list.get(), column.count};
    if (row.is_all()) return sparse_assign_columns(a, b, columns);
    AssignSource source(a, b);
    if (source.folds() || !source.fits(row.count, column.count)) return spDimMismatch;
    if (source.scalar() && (row.count == 0 || column.count == 0)) return spOK;
    make_sparse_target(a, b);
    if (row.max > rows(a)) store_mn(a, row.max, cols(a));
    const auto row_list = positions_of(row);
    ArrayGuard merged;
    merge_block(a, rows(a), row_list.get(), row.count, columns,
                source.as_columns(row.count, column.count), merged);
    return assign_merged(a, columns, merged.get());
}

spStatus sparse_assign_linear(oxArray *a, oxArray *b, Subscript &index) {
    AssignSource source(a, b);
    if (!source.scalar() && source.array()->get_number_of_elements() != index.count)
        return spDimMismatch;
    if (index.count == 0) return spOK;
    make_sparse_target(a, b);
    return assign_linear(a, source, index);
}

} // namespace ox
