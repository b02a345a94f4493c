// Deleting columns, rows and positions of sparse arrays.
#include <errors/raise.h>
#include <sparse/assign.h>
#include <sparse/filter.h>
#include <sparse/operands.h>
#include <sparse/resize.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// Sorted distinct positions of a subscript below an extent.
struct Deleted {
    RawArray<kwIndex> list;
    kwSize count = 0;

    Deleted(Subscript &s, kwSize extent) {
        if (!s.mask_to_list()) raise_out_of_memory();
        list = scratch<kwIndex>(s.count);
        s.copy_positions(list.get());
        kwIndex *end = list.get() + s.count;
        std::sort(list.get(), end);
        end = std::unique(list.get(), end);
        count = static_cast<kwSize>(std::lower_bound(list.get(), end, extent) - list.get());
    }
    // Positions of the list below p; hit tells whether p is on it.
    kwSize below(kwIndex p, bool *hit) const {
        const kwIndex *begin = list.get(), *end = begin + count;
        const kwIndex *at = std::lower_bound(begin, end, p);
        *hit = at != end && *at == p;
        return static_cast<kwSize>(at - begin);
    }
};

} // namespace

// Taking the columns out one by one, renumbering the rest each time, is the same as taking out
// every column that is named: a repeated index finds its column gone, one beyond a finds none.
spStatus sparse_delete_columns(oxArray *a, const ColumnIndices &columns) {
    make_sparse_target(a, nullptr);
    const kwSize n = cols(a);
    auto gone = RawArray<bool>::zeroed(n + 1);
    if (!gone) raise_out_of_memory();
    spStatus status = spOK;
    kwIndex j;
    for (kwSize k = 0; k < columns.count; ++k) {
        status = columns.column(k, &j);
        if (status != spOK) break;
        if (j < n) gone[j] = true;
    }
    filter_elements(a, [&](kwIndex, kwSize column) { return !gone[column]; });
    kwSize kept = 0;
    for (kwSize c = 0; c < n; ++c)
        if (!gone[c]) a->num.jc[++kept] = a->num.jc[c + 1];
    store_mn(a, rows(a), kept);
    finish_target(a, status);
    return status;
}

spStatus sparse_delete_rows(oxArray *a, Subscript &row) {
    make_sparse_target(a, nullptr);
    if (row.is_all()) {
        filter_elements(a, [](kwIndex, kwSize) { return false; });
        store_mn(a, 0, cols(a));
    } else {
        const Deleted gone(row, rows(a));
        filter_elements(a, [&](kwIndex &r, kwSize) {
            bool hit;
            r -= gone.below(r, &hit);
            return !hit;
        });
        store_mn(a, rows(a) - gone.count, cols(a));
    }
    finish_target(a, spOK);
    return spOK;
}

// What stays of a matrix is numbered through and becomes a row.
spStatus sparse_delete_linear(oxArray *a, Subscript &index) {
    make_sparse_target(a, nullptr);
    const kwSize m = rows(a), n = cols(a);
    kwSize count;
    if (__builtin_mul_overflow(m, n, &count) || count > max_size) return spTooLarge;
    if (index.is_all()) {
        sparse_resize(a, 0, 0);
        finish_target(a, spOK);
        return spOK;
    }
    if (n == 1 && m != 1) return sparse_delete_rows(a, index);
    const Deleted gone(index, count);
    const kwSize left = count - gone.count;
    auto starts = RawArray<kwIndex>::zeroed(left + 1);
    if (!starts) raise_out_of_memory();
    filter_elements(a, [&](kwIndex &r, kwSize j) {
        bool hit;
        const kwIndex position = r + j * m, to = position - gone.below(position, &hit);
        if (!hit) starts[to + 1] = 1;
        r = 0;
        return !hit;
    });
    for (kwSize k = 0; k < left; ++k) starts[k + 1] += starts[k];
    oxFreeEx(a->num.jc);
    a->num.jc = starts.release();
    store_mn(a, 1, left);
    finish_target(a, spOK);
    return spOK;
}

} // namespace ox
