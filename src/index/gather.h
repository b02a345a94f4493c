// Copying between selected elements and a dense block, by element width.
#pragma once
#include <index/selection.h>

#include <algorithm>

namespace ox {

// Walks the list of an axis in one column after the other; meanwhile the lines that the next column
// will touch are fetched, since a random walk within a column tells the processor nothing about the
// next.
class ListWalk {
public:
    // For a plane of y.count columns, x being a list, of elements of `width` bytes.
    ListWalk(const Axis &x, const Axis &y, kwSize width)
        : list_(x.list), n_(x.count), stride_(x.stride) {
        if (y.count == 1) return;
        lines_ = (*std::max_element(list_, list_ + n_) * stride_ * width) / 64 + 1;
        if (lines_ > n_) lines_ = 0; // too few of them would be wanted
        each_ = lines_ / (n_ / step + 1) + 1;
    }

    // Calls f(k, position of the k-th element in its column); `next` is the start of the next
    // column.
    template<class F> void walk(const void *next, F &&f) const {
        if (stride_ == 1)
            walk_steps(next, f, [](kwSize at) { return at; });
        else
            walk_steps(next, f, [stride = stride_](kwSize at) { return at * stride; });
    }

private:
    // What f writes might be these members, as far as the compiler knows: hence the copies.
    template<class F, class Scale> void walk_steps(const void *next, F &&f, Scale &&scale) const {
        auto *fetch = static_cast<const char *>(next);
        const kwIndex *const list = list_;
        const kwSize n = n_, lines = lines_, each = each_;
        kwSize k = 0, line = 0;
        for (; k + step <= n; k += step) {
#pragma GCC unroll 16
            for (kwSize i = 0; i < step; ++i) f(k + i, scale(list[k + i]));
            for (const kwSize end = std::min(line + each, lines); line < end; ++line)
                __builtin_prefetch(fetch + 64 * line);
        }
        for (; k < n; ++k) f(k, scale(list[k]));
    }

    static constexpr kwSize step = 16;
    const kwIndex *list_;
    kwSize n_, stride_;
    kwSize lines_ = 0, each_ = 0; // lines of a column, and how many are fetched at each step
};

// dst[0 .. count-1] = the selected elements of src, in order.
void gather(void *dst, const void *src, kwSize width, const Selection &from);
// The selected elements of dst = src[0 .. count-1]; the last one wins where positions repeat.
void scatter(void *dst, const void *src, kwSize width, const Selection &to);
// The selected elements of dst = *value.
void scatter_value(void *dst, const void *value, kwSize width, const Selection &to);

} // namespace ox
