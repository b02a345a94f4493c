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
#include <utility>

namespace ox {
namespace {

// Where the rows of A go: row r to position first[r] - 1, to next[first[r] - 1] - 1 and so on until
// a 0. Without next no row goes to two positions.
struct RowMap {
    RawArray<uint32_t> first, next;

    RowMap(const RowChoice &rows, kwSize m) : first(scratch<uint32_t>(m)) {
        if (!map_once(rows, m)) map_chains(rows, m);
    }

private:
    bool map_once(const RowChoice &rows, kwSize m) {
        std::fill_n(first.get(), m, 0);
        for (kwSize i = 0; i < rows.count; ++i) {
            uint32_t &place = first[rows.list[i]];
            if (place) return false;
            place = static_cast<uint32_t>(i + 1);
        }
        return true;
    }
    void map_chains(const RowChoice &rows, kwSize m) {
        next = scratch<uint32_t>(rows.count);
        std::fill_n(first.get(), m, 0);
        for (kwSize i = rows.count; i-- > 0;)
            next[i] = std::exchange(first[rows.list[i]], static_cast<uint32_t>(i + 1));
    }
};

// Elements of B, and of its longest column.
struct Size {
    kwSize total = 0, longest = 0;
    void add(kwSize column) {
        total += column;
        longest = std::max(longest, column);
    }
};

// The elements of A that go anywhere. They are written down in one pass without branches: nobody
// can predict which they are, and every look into the map may miss the cache.
class Hits {
public:
    Hits(const oxArray *a, const RowMap &map, const ColumnChoice &columns)
        : next_(map.next.get()), columns_(columns.count), hits_(scratch<Hit>(stored(a, columns))),
          ends_(scratch<kwIndex>(columns.count)) {
        const kwIndex *jc = a->num.jc, *ir = a->num.ir;
        kwIndex n = 0;
        for (kwSize c = 0; c < columns.count; ++c) {
            const kwIndex k0 = jc[columns[c]], k1 = jc[columns[c] + 1];
            for (kwIndex k = k0; k < k1; ++k) {
                const uint32_t first = map.first[ir[k]];
                hits_[n] = {first, static_cast<uint32_t>(k - k0)};
                n += first != 0;
            }
            ends_[c + 1] = n;
        }
        ends_[0] = 0;
    }

    Size size() const {
        Size size;
        for (kwSize c = 0; c < columns_; ++c) {
            kwSize n = 0;
            for_each(c, [&](uint32_t, uint32_t) { ++n; });
            size.add(n);
        }
        return size;
    }
    // Calls f(position in B, offset in the column of A) for every element of column c of B.
    template<class F> void for_each(kwSize c, F &&f) const {
        for (kwIndex i = ends_[c]; i < ends_[c + 1]; ++i) {
            const Hit hit = hits_[i];
            f(hit.first - 1, hit.offset);
            if (!next_) continue;
            for (uint32_t p = next_[hit.first - 1]; p; p = next_[p - 1]) f(p - 1, hit.offset);
        }
    }

private:
    struct Hit {
        uint32_t first, offset;
    };
    const uint32_t *next_;
    kwSize columns_;
    RawArray<Hit> hits_;
    RawArray<kwIndex> ends_;
};

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

// Every element goes somewhere, and where is looked up in advance.
class AllElements {
public:
    AllElements(const oxArray *a, const RowMap &map, const ColumnChoice &columns)
        : a_(a), first_(map.first.get()), columns_(columns) {}

    Size size() const {
        Size size;
        for (kwSize c = 0; c < columns_.count; ++c)
            size.add(a_->num.jc[columns_[c] + 1] - a_->num.jc[columns_[c]]);
        return size;
    }
    template<class F> void for_each(kwSize c, F &&f) const {
        constexpr kwIndex ahead = 32;
        const kwIndex *jc = a_->num.jc, *ir = a_->num.ir, nnz = nonzeros(a_);
        const kwIndex k0 = jc[columns_[c]], k1 = jc[columns_[c] + 1];
        for (kwIndex k = k0; k < k1; ++k) {
            if (k + ahead < nnz) __builtin_prefetch(first_ + ir[k + ahead]);
            f(first_[ir[k]] - 1, static_cast<uint32_t>(k - k0));
        }
    }

private:
    const oxArray *a_;
    const uint32_t *first_;
    const ColumnChoice &columns_;
};

template<class T, class Elements> void fill(const oxArray *a, const Elements &elements,
                                            const RowChoice &rows, const ColumnChoice &columns,
                                            KeySorter &sorter, oxArray *b) {
    const bool complex = has_imag_block(a);
    const T *re = data<T>(a), *im = complex ? imag<T>(a) : nullptr;
    kwIndex at = 0;
    for (kwSize c = 0; c < columns.count; ++c) {
        const kwIndex k0 = a->num.jc[columns[c]];
        Key *end = sorter.keys();
        elements.for_each(c, [&](uint32_t p, uint32_t offset) { *end++ = Key{p} << 32 | offset; });
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

template<class Elements> oxArray *reference(const oxArray *a, const Elements &elements,
                                            const RowChoice &rows, const ColumnChoice &columns) {
    const Size size = elements.size();
    KeySorter sorter(size.longest);
    oxArray *b = make_reference(a, rows.count, columns.count, size.total);
    visit_width(class_info(a->class_code).element_size, [&]<class T>(std::type_identity<T>) {
        fill<T>(a, elements, rows, columns, sorter, b);
    });
    return b;
}

} // namespace

oxArray *reference_many_rows(const oxArray *a, const RowChoice &rows, const ColumnChoice &columns) {
    const RowMap map(rows, ox::rows(a));
    const bool permutation = !map.next && rows.count == ox::rows(a);
    return permutation ? reference(a, AllElements(a, map, columns), rows, columns)
                       : reference(a, Hits(a, map, columns), rows, columns);
}

} // namespace ox
