// The rows of a reference, prepared so that the stored elements of a column find their places.
//
// Three forms give the same answers: a map from row to position (no repeats), a map from row to a
// run of positions (repeats), and, when the request is small beside the rows, its sorted rows
// behind a bitmap. A map of m entries is built only when it is not much larger than the work.
#pragma once
#include <core/alloc.h>
#include <ox/types.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ox {

class RowRequest {
public:
    // rows[0 .. n-1] below m, in request order, for `work` stored elements. False without memory.
    // rows must outlive this.
    [[nodiscard]] bool prepare(const kwIndex *rows, kwSize n, kwSize m, kwSize work);

    kwSize repeats() const { return repeats_; }     // requests beyond the first of their row
    bool increasing() const { return increasing_; } // rows never decrease
    bool permutation() const { return repeats_ == 0 && n_ == m_; }

    // Calls f(position, k) for each requested position of each element k0 <= k < k1 of a column,
    // by increasing row, and by increasing position within a row.
    template<class F> void for_each(const kwIndex *ir, kwIndex k0, kwIndex k1, F &&f) const {
        if (form_ == Form::map)
            for (kwIndex k = k0; k < k1; ++k) {
                if (map_[ir[k]] != none) f(kwIndex{map_[ir[k]]}, k);
            }
        else if (form_ == Form::runs)
            for (kwIndex k = k0; k < k1; ++k) emit(map_[ir[k]], map_[ir[k] + 1], k, f);
        else if (probing_pays(k1 - k0))
            probe(ir, k0, k1, f);
        else
            for (kwIndex k = k0; k < k1; ++k)
                if (wanted(ir[k])) {
                    const kwSize u = unique_index(ir[k]);
                    emit(run_[u], run_[u + 1], k, f);
                }
    }
    kwSize count(const kwIndex *ir, kwIndex k0, kwIndex k1) const {
        kwSize n = 0;
        for_each(ir, k0, k1, [&](kwIndex, kwIndex) { ++n; });
        return n;
    }

private:
    enum class Form : uint8_t { map, runs, sorted };
    static constexpr kwIndex none = ~kwIndex{0};

    bool make_map();
    bool make_runs();
    bool make_sorted(kwSize work);

    template<class F> void emit(kwIndex from, kwIndex to, kwIndex k, F &&f) const {
        for (; from < to; ++from) f(order_[from], k);
    }
    bool wanted(kwIndex row) const { return bits_[row / 64] >> (row % 64) & 1; }
    kwSize unique_index(kwIndex row) const {
        return std::lower_bound(unique_.get(), unique_.get() + unique_count_, row) - unique_.get();
    }
    // Looking each requested row up in the column beats testing each element when rows are few.
    bool probing_pays(kwSize length) const {
        return !bits_ || unique_count_ * (2 + std::bit_width(length)) < length;
    }
    template<class F> void probe(const kwIndex *ir, kwIndex k0, kwIndex k1, F &&f) const {
        const kwSize length = k1 - k0;
        if (length < unique_count_ && !bits_) { // the fewer look themselves up in the more
            for (kwIndex k = k0; k < k1; ++k) {
                const kwSize u = unique_index(ir[k]);
                if (u < unique_count_ && unique_[u] == ir[k]) emit(run_[u], run_[u + 1], k, f);
            }
            return;
        }
        const kwIndex *at = ir + k0, *end = ir + k1;
        for (kwSize u = 0; u < unique_count_ && at != end; ++u) {
            at = std::lower_bound(at, end, unique_[u]);
            if (at != end && *at == unique_[u])
                emit(run_[u], run_[u + 1], static_cast<kwIndex>(at - ir), f);
        }
    }

    const kwIndex *rows_ = nullptr;
    kwSize n_ = 0, m_ = 0, repeats_ = 0, unique_count_ = 0;
    bool increasing_ = true;
    Form form_ = Form::map;
    RawArray<kwIndex> map_;    // row -> position, or row -> start of its run in order_
    RawArray<kwIndex> order_;  // positions by row, then by position
    RawArray<kwIndex> unique_; // the distinct rows, increasing
    RawArray<kwIndex> run_;    // unique_[u] stands at order_[run_[u] .. run_[u+1]-1]
    RawArray<uint64_t> bits_;  // the wanted rows; absent when it would cost more than the look-ups
};

} // namespace ox
