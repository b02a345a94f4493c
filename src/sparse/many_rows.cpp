// B = A(rows, columns) for many rows: a map from every row of A to where it goes.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <sparse/row_reference.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ox {
namespace {

// Row r goes to position at[r], or nowhere.
struct OnceMap {
    static constexpr uint32_t nowhere = ~uint32_t{0};
    RawArray<uint32_t> at;

    // False when a row is asked for twice.
    bool build(const RowChoice &rows, kwSize m) {
        at = scratch<uint32_t>(m);
        std::fill_n(at.get(), m, nowhere);
        for (kwSize i = 0; i < rows.count; ++i) {
            uint32_t &place = at[rows.list[i]];
            if (place != nowhere) return false;
            place = static_cast<uint32_t>(i);
        }
        return true;
    }
    kwSize count(kwIndex row) const { return at[row] != nowhere; }
    template<class F> void for_each(kwIndex row, F &&f) const {
        if (at[row] != nowhere) f(at[row]);
    }
    void prefetch(kwIndex row) const { __builtin_prefetch(at.get() + row); }
};

// Row r goes to positions order[start[r] .. start[r+1]-1]: a counting sort of the request.
struct RepeatMap {
    RawArray<uint32_t> start, order;

    void build(const RowChoice &rows, kwSize m) {
        start = scratch<uint32_t>(m);
        order = scratch<uint32_t>(rows.count);
        std::fill_n(start.get(), m + 1, 0);
        for (kwSize i = 0; i < rows.count; ++i) ++start[rows.list[i]];
        uint32_t end = 0;
        for (kwSize r = 0; r <= m; ++r) start[r] = end += start[r];
        for (kwSize i = rows.count; i-- > 0;)
            order[--start[rows.list[i]]] = static_cast<uint32_t>(i);
    }
    kwSize count(kwIndex row) const { return start[row + 1] - start[row]; }
    template<class F> void for_each(kwIndex row, F &&f) const {
        for (uint32_t i = start[row]; i < start[row + 1]; ++i) f(order[i]);
    }
    void prefetch(kwIndex row) const { __builtin_prefetch(start.get() + row); }
};

// Elements of B, and of its longest column.
struct Size {
    kwSize total = 0, longest = 0;
    void add(kwSize column) {
        total += column;
        longest = std::max(longest, column);
    }
};

template<class Map> Size count(const oxArray *a, const Map &map, const ColumnChoice &columns) {
    const kwIndex *jc = a->num.jc, *ir = a->num.ir;
    Size size;
    for (kwSize c = 0; c < columns.count; ++c) {
        kwSize n = 0;
        for (kwIndex k = jc[columns[c]]; k < jc[columns[c] + 1]; ++k) n += map.count(ir[k]);
        size.add(n);
    }
    return size;
}

Size count_all(const oxArray *a, const ColumnChoice &columns) {
    Size size;
    for (kwSize c = 0; c < columns.count; ++c)
        size.add(a->num.jc[columns[c] + 1] - a->num.jc[columns[c]]);
    return size;
}

// A position of B in the upper half, and where its element stands in the column of A: sorting keys
// sorts by position.
using Key = uint64_t;

void insertion_sort(Key *begin, Key *end) {
    for (Key *x = begin + 1; x < end; ++x) {
        const Key key = *x;
        Key *to = x;
        for (; to > begin && to[-1] > key; --to) *to = to[-1];
        *to = key;
    }
}

// Sorts the keys of one column after another.
class KeySorter {
public:
    explicit KeySorter(kwSize longest)
        : keys_(scratch<Key>(longest)),
          dealt_(longest > few ? scratch<Key>(longest) : RawArray<Key>()),
          starts_(longest > few ? scratch<uint32_t>(2 * longest + 1) : RawArray<uint32_t>()) {}

    Key *keys() const { return keys_.get(); }

    // Sorts the first n of keys(); answers where they stand then.
    const Key *sort(kwSize n) {
        if (n > few) return deal(n);
        insertion_sort(keys(), keys() + n);
        return keys();
    }

private:
    static constexpr kwSize few = 24;

    // Deals the keys to one or two buckets a key by position; then nearly every key is in place.
    const Key *deal(kwSize n) {
        Key low = ~Key{0}, high = 0;
        for (kwSize i = 0; i < n; ++i) {
            low = std::min(low, keys_[i]);
            high = std::max(high, keys_[i]);
        }
        const int spare_bits =
            static_cast<int>(std::bit_width(high - low)) - static_cast<int>(std::bit_width(n));
        const int shift = std::max(0, spare_bits);
        const auto bucket = [=, this](kwSize i) { return (keys_[i] - low) >> shift; };
        const kwSize buckets = ((high - low) >> shift) + 1;
        std::fill_n(starts_.get(), buckets, 0);
        for (kwSize i = 0; i < n; ++i) ++starts_[bucket(i)];
        uint32_t end = 0, most = 0;
        for (kwSize b = 0; b < buckets; ++b) {
            most = std::max(most, starts_[b]);
            starts_[b] = end += starts_[b];
        }
        for (kwSize i = n; i-- > 0;) dealt_[--starts_[bucket(i)]] = keys_[i];
        most > few ? std::sort(dealt_.get(), dealt_.get() + n)
                   : insertion_sort(dealt_.get(), dealt_.get() + n);
        return dealt_.get();
    }

    RawArray<Key> keys_, dealt_;
    RawArray<uint32_t> starts_;
};

template<class T, class Map> void fill(const oxArray *a, const Map &map, const RowChoice &rows,
                                       const ColumnChoice &columns, KeySorter &sorter, oxArray *b) {
    constexpr kwIndex ahead = 32; // elements that the map is asked for in advance
    const kwIndex *jc = a->num.jc, *ir = a->num.ir, nnz = nonzeros(a);
    const bool complex = has_imag_block(a);
    const T *re = data<T>(a), *im = complex ? imag<T>(a) : nullptr;
    kwIndex at = 0;
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwIndex k0 = jc[columns[c]], k1 = jc[columns[c] + 1];
        Key *end = sorter.keys();
        for (kwIndex k = k0; k < k1; ++k) {
            if (k + ahead < nnz) map.prefetch(ir[k + ahead]);
            map.for_each(ir[k], [&](uint32_t p) { *end++ = Key{p} << 32 | (k - k0); });
        }
        const auto n = static_cast<kwSize>(end - sorter.keys());
        const Key *keys = rows.increasing ? sorter.keys() : sorter.sort(n);
        for (kwSize i = 0; i < n; ++i, ++at) {
            const kwIndex k = k0 + static_cast<uint32_t>(keys[i]);
            b->num.ir[at] = keys[i] >> 32;
            data<T>(b)[at] = re[k];
            if (complex) imag<T>(b)[at] = im[k];
        }
        b->num.jc[c + 1] = at;
    }
}

template<class Map> oxArray *reference(const oxArray *a, const Map &map, const RowChoice &rows,
                                       const ColumnChoice &columns, const Size &size) {
    KeySorter sorter(size.longest);
    oxArray *b = make_reference(a, rows.count, columns.count, size.total);
    visit_width(class_info(a->class_code).element_size,
                [&]<class T>(std::type_identity<T>) { fill<T>(a, map, rows, columns, sorter, b); });
    return b;
}

} // namespace

oxArray *reference_many_rows(const oxArray *a, const RowChoice &rows, const ColumnChoice &columns) {
    OnceMap once;
    if (once.build(rows, ox::rows(a))) {
        const bool permutation = rows.count == ox::rows(a);
        return reference(a, once, rows, columns,
                         permutation ? count_all(a, columns) : count(a, once, columns));
    }
    once.at.reset();
    RepeatMap repeated;
    repeated.build(rows, ox::rows(a));
    return reference(a, repeated, rows, columns, count(a, repeated, columns));
}

} // namespace ox
