// B = A(rows, columns) for few rows of many.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <sparse/row_filter.h>
#include <sparse/row_reference.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ox {
namespace {

// The distinct rows of a request, increasing, with the positions that ask for each.
class WantedRows {
public:
    explicit WantedRows(const RowChoice &rows)
        : order_(scratch<kwIndex>(3 * rows.count)), rows_(order_.get() + rows.count),
          runs_(rows_ + rows.count), filter_(rows.count) {
        for (kwSize i = 0; i < rows.count; ++i) order_[i] = i;
        if (!rows.increasing)
            std::sort(order_.get(), rows_, [&](kwIndex x, kwIndex y) {
                return rows.list[x] != rows.list[y] ? rows.list[x] < rows.list[y] : x < y;
            });
        for (kwSize i = 0; i < rows.count; ++i) add(rows.list[order_[i]], i);
        runs_[count_] = rows.count;
    }

    kwSize repeats() const { return runs_[count_] - count_; } // requests beyond a row's first

    // Calls f(position, k) for each position that asks for the row of a stored element
    // k0 <= k < k1, in the order of the elements.
    template<class F> void scan(const kwIndex *ir, kwIndex k0, kwIndex k1, F &&f) const {
        for (kwIndex k = filter_.find(ir, k0, k1); k < k1; k = filter_.find(ir, k + 1, k1)) {
            const kwIndex *at = std::lower_bound(rows_, rows_ + count_, ir[k]);
            if (at != rows_ + count_ && *at == ir[k]) emit(static_cast<kwSize>(at - rows_), k, f);
        }
    }

    // The same for one column, by looking every wanted row up in it.
    template<class F> void probe(const kwIndex *ir, kwIndex k0, kwIndex k1, F &&f) const {
        const kwIndex *at = ir + k0, *end = ir + k1;
        for (kwSize u = 0; u < count_ && at != end; ++u) {
            at = std::lower_bound(at, end, rows_[u]);
            if (at != end && *at == rows_[u]) emit(u, static_cast<kwIndex>(at - ir), f);
        }
    }
    bool probing_pays(kwSize length) const {
        return 2 * count_ * (2 + static_cast<kwSize>(std::bit_width(length))) < length;
    }

private:
    void add(kwIndex row, kwSize i) {
        if (count_ && rows_[count_ - 1] == row) return;
        rows_[count_] = row;
        runs_[count_++] = i;
        filter_.add(row);
    }

    template<class F> void emit(kwSize u, kwIndex k, F &&f) const {
        for (kwIndex i = runs_[u]; i < runs_[u + 1]; ++i) f(order_[i], k);
    }
    RawArray<kwIndex> order_; // positions by row, then by position; rows_ and runs_ stand behind
    kwIndex *rows_, *runs_;   // the positions of rows_[u]: order_[runs_[u] .. runs_[u+1]-1]
    kwSize count_ = 0;
    RowFilter filter_;
};

// An element of B: its column, its row, and which element of A it is.
struct Match {
    kwIndex column, position, k;
};

class Matches {
public:
    void push(const Match &x) {
        if (count_ == capacity_) grow();
        list_[count_++] = x;
    }
    // By position inside every column.
    void sort() {
        const auto before = [](const Match &x, const Match &y) {
            return x.column != y.column ? x.column < y.column : x.position < y.position;
        };
        std::sort(begin(), end(), before);
    }
    Match *begin() const { return list_.get(); }
    Match *end() const { return list_.get() + count_; }
    kwSize count() const { return count_; }

private:
    void grow() {
        capacity_ = std::max<kwSize>(64, 2 * capacity_);
        if (!list_.resize(capacity_)) raise_out_of_memory();
    }
    RawArray<Match> list_;
    kwSize count_ = 0, capacity_ = 0;
};

void find(const oxArray *a, const WantedRows &wanted, const ColumnChoice &columns,
          Matches &matches) {
    const kwIndex *jc = a->num.jc, *ir = a->num.ir;
    columns.for_each_run([&](kwSize c, kwSize end) {
        const kwIndex j = columns[c], k0 = jc[j], k1 = jc[j + (end - c)];
        if (wanted.probing_pays((k1 - k0) / (end - c))) {
            for (; c < end; ++c)
                wanted.probe(ir, jc[columns[c]], jc[columns[c] + 1], [&](kwIndex p, kwIndex k) {
                    matches.push({c, p, k});
                });
            return;
        }
        const kwIndex *column_end = jc + j + 1;
        wanted.scan(ir, k0, k1, [&](kwIndex p, kwIndex k) {
            for (; *column_end <= k; ++column_end) ++c;
            matches.push({c, p, k});
        });
    });
}

// An upper bound that does not look at the elements: with d repeats, a column of k elements gives
// at most k + d.
kwSize bound(const oxArray *a, kwSize repeats, kwSize nrows, const ColumnChoice &columns) {
    const kwIndex *jc = a->num.jc;
    kwSize total = 0;
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwSize k = jc[columns[c] + 1] - jc[columns[c]];
        if (k > 0) total += std::min(k + repeats, nrows);
    }
    return total;
}

template<class T> void fill(const oxArray *a, const Matches &matches, oxArray *b, bool complex) {
    const T *re = data<T>(a), *im = complex ? imag<T>(a) : nullptr;
    kwIndex *jc = b->num.jc, *jc_end = jc + cols(b) + 1, *start = jc + 1;
    kwIndex at = 0;
    for (const Match &x : matches) {
        for (; start <= jc + x.column; ++start) *start = at;
        b->num.ir[at] = x.position;
        data<T>(b)[at] = re[x.k];
        if (complex) imag<T>(b)[at] = im[x.k];
        ++at;
    }
    std::fill(start, jc_end, at);
    const kwSize spare = b->num.nzmax - at;
    std::fill_n(b->num.ir + at, spare, 0);
    std::fill_n(data<T>(b) + at, spare, T{});
    if (complex) std::fill_n(imag<T>(b) + at, spare, T{});
}

} // namespace

oxArray *reference_few_rows(const oxArray *a, const RowChoice &rows, const ColumnChoice &columns) {
    const WantedRows wanted(rows);
    Matches matches;
    find(a, wanted, columns, matches);
    if (!rows.increasing) matches.sort();
    const kwSize nzmax =
        counts_exactly(a, rows) ? matches.count() : bound(a, wanted.repeats(), rows.count, columns);
    oxArray *b = make_reference(a, rows.count, columns.count, nzmax);
    visit_width(class_info(a->class_code).element_size,
                [&]<class T>(std::type_identity<T>) { fill<T>(a, matches, b, has_imag_block(a)); });
    return b;
}

} // namespace ox
