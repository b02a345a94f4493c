// A selected part of an array, ready to be walked: an offset and the axes that are left.
//
// Element (k0, k1, ...) of the selection lies offset(k0) + offset(k1) + ... after the base, where
// an axis either advances by a constant step or takes its positions from a list. Subscripts that
// select one position are in the base, and neighbours that continue each other (':' twice, ':' and
// then a range of columns) are one axis, so that what can be one block or one stride is.
#pragma once
#include <index/operands/extents.h>
#include <index/subscript_set.h>

namespace ox {

struct Axis {
    kwSize count;
    int64_t step;        // elements between neighbours, without a list
    const kwIndex *list; // positions, or null
    kwSize stride;       // elements between positions of the list

    kwSize offset(kwSize k) const { // wraps around as intended for negative steps
        return list ? list[k] * stride : k * static_cast<kwSize>(step);
    }
};

class Selection {
public:
    // Of an array with these extents, one per subscript; every element has `inner` neighbours that
    // are selected with it. Masks become lists, except one that is the only subscript. Raises error
    // 18 without memory.
    Selection(SubscriptSet &subs, const kwSize *extents, kwSize inner = 1);
    Selection(const Selection &) = delete;
    Selection &operator=(const Selection &) = delete;

    kwSize base = 0;
    kwSize count;                    // what is selected, neighbours included
    const Subscript *mask = nullptr; // instead of axes

    kwSize axes() const { return axes_; }
    const Axis &axis(kwSize k) const { return p_[k]; }
    // The selection is `count` neighbours in order.
    bool is_block() const { return axes_ == 0 || (axes_ == 1 && !p_[0].list && p_[0].step == 1); }

    // Calls f(offset) for every combination of the axes from the third one on, first ones fastest:
    // a plane of the first two belongs to a kernel.
    template<class F> void for_each_plane(F &&f) const;
    // Calls f(position) for everything that is selected, in order.
    template<class F> void for_each_position(F &&f) const;

private:
    void add(const Subscript &s, kwSize stride);
    void add_steps(kwSize n, int64_t step);

    static constexpr kwSize inside_count = 10;
    Axis inside_[inside_count];
    RawArray<Axis> block_;
    Axis *p_ = inside_;
    kwSize axes_ = 0;
};

template<class F> void Selection::for_each_position(F &&f) const {
    if (count == 0) return;
    if (mask) return mask->for_each(f);
    const Axis single{1, 0, nullptr, 0};
    const Axis &x = axes_ > 0 ? p_[0] : single, &y = axes_ > 1 ? p_[1] : single;
    for_each_plane([&](kwSize offset) {
        for (kwSize j = 0; j < y.count; ++j)
            for (kwSize i = 0; i < x.count; ++i) f(offset + y.offset(j) + x.offset(i));
    });
}

template<class F> void Selection::for_each_plane(F &&f) const {
    if (axes_ <= 2) return f(base);
    RawArray<kwSize> many;
    kwSize few[inside_count] = {};
    kwSize *k = few;
    if (axes_ > inside_count) {
        many = RawArray<kwSize>::zeroed(axes_);
        if (!many) raise_out_of_memory();
        k = many.get();
    }
    for (;;) {
        kwSize offset = base;
        for (kwSize d = 2; d < axes_; ++d) offset += p_[d].offset(k[d]);
        f(offset);
        kwSize d = 2;
        while (d < axes_ && ++k[d] == p_[d].count) k[d++] = 0;
        if (d == axes_) return;
    }
}

} // namespace ox
