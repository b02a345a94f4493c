// A small table that turns away nearly every row that is not wanted.
#pragma once
#include <core/alloc.h>
#include <sparse/scratch.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ox {

// One bit for every slot that rows are hashed to, at least 64 times as many as rows are wanted:
// small enough for the first cache where the rows are few.
class RowFilter {
public:
    explicit RowFilter(kwSize rows)
        : bits_(std::max(least_bits, 6 + static_cast<int>(std::bit_width(rows)))),
          table_(scratch<uint64_t>(words())) {
        std::fill_n(table_.get(), words(), 0);
    }
    void add(kwIndex row) { table_[slot(row) / 64] |= uint64_t{1} << slot(row) % 64; }
    bool maybe(kwIndex row) const { return table_[slot(row) / 64] >> slot(row) % 64 & 1; }

    // The first k of k .. end - 1 with maybe(ir[k]), or end.
    kwIndex find(const kwIndex *ir, kwIndex k, kwIndex end) const {
        if (end - k >= least_run) k = skip_vectors(ir, k, end);
        while (k < end && !maybe(ir[k])) ++k;
        return k;
    }

private:
    static constexpr int least_bits = 17;
    static constexpr kwIndex least_run = 32;

    kwSize words() const { return kwSize{1} << (bits_ - 6); }
    kwSize slot(kwIndex row) const { return (row ^ row >> bits_) & ((kwSize{1} << bits_) - 1); }
    // Some k up to that place: whole vectors are passed over.
    kwIndex skip_vectors(const kwIndex *ir, kwIndex k, kwIndex end) const;

    int bits_;
    RawArray<uint64_t> table_;
};

} // namespace ox
