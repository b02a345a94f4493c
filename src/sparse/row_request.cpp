// Preparing the rows of a reference.
#include <core/tuning.h>
#include <sparse/row_request.h>

namespace ox {

bool RowRequest::prepare(const kwIndex *rows, kwSize n, kwSize m, kwSize work) {
    rows_ = rows;
    n_ = n;
    m_ = m;
    increasing_ = std::is_sorted(rows, rows + n);
    if (n < m / tuning::row_map_share) return make_sorted(work);
    if (!make_map()) return false;
    return repeats_ == 0 || make_runs();
}

// map[row] = position; stops to count the repeats once one is met.
bool RowRequest::make_map() {
    form_ = Form::map;
    map_ = RawArray<kwIndex>::make(m_ + 1);
    if (!map_) return false;
    std::fill_n(map_.get(), m_ + 1, none);
    for (kwSize i = 0; i < n_; ++i)
        if (map_[rows_[i]] == none)
            map_[rows_[i]] = i;
        else
            ++repeats_;
    return true;
}

// A counting sort of the request by row.
bool RowRequest::make_runs() {
    form_ = Form::runs;
    order_ = RawArray<kwIndex>::make(n_);
    if (!order_) return false;
    std::fill_n(map_.get(), m_ + 1, 0);
    for (kwSize i = 0; i < n_; ++i) ++map_[rows_[i]];
    kwIndex end = 0;
    for (kwSize r = 0; r <= m_; ++r) map_[r] = end += map_[r];
    for (kwSize i = n_; i-- > 0;) order_[--map_[rows_[i]]] = i;
    return true;
}

bool RowRequest::make_sorted(kwSize work) {
    form_ = Form::sorted;
    order_ = RawArray<kwIndex>::make(n_ + 1);
    unique_ = RawArray<kwIndex>::make(n_ + 1);
    run_ = RawArray<kwIndex>::make(n_ + 1);
    if (!order_ || !unique_ || !run_) return false;
    for (kwSize i = 0; i < n_; ++i) order_[i] = i;
    if (!increasing_)
        std::sort(order_.get(), order_.get() + n_, [&](kwIndex x, kwIndex y) {
            return rows_[x] != rows_[y] ? rows_[x] < rows_[y] : x < y;
        });
    for (kwSize i = 0; i < n_; ++i) {
        const kwIndex row = rows_[order_[i]];
        if (unique_count_ && unique_[unique_count_ - 1] == row) continue;
        run_[unique_count_] = i;
        unique_[unique_count_++] = row;
    }
    run_[unique_count_] = n_;
    repeats_ = n_ - unique_count_;
    if (m_ / tuning::row_bitmap_share > work) return true;
    bits_ = RawArray<uint64_t>::zeroed(m_ / 64 + 1);
    if (!bits_) return false;
    for (kwSize u = 0; u < unique_count_; ++u)
        bits_[unique_[u] / 64] |= uint64_t{1} << unique_[u] % 64;
    return true;
}

} // namespace ox
