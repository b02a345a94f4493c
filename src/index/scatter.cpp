// Scattering a dense block, or one value, to selected elements: runs, strides, lists and masks.
#include <core/dispatch.h>
#include <core/stream_copy.h>
#include <index/gather.h>

#include <algorithm>

namespace ox {

namespace {

constexpr Axis single{1, 0, nullptr, 0};

// What is written: a dense block that advances, or one value.
template<class T> struct Block {
    const T *src;
    RunCopier *runs;
    T operator[](kwSize k) const { return src[k]; }
    void advance(kwSize n) { src += n; }
    void run(T *dst, kwSize n) const { runs->copy(dst, src, n * sizeof(T)); }
};
template<class T> struct Value {
    T value;
    T operator[](kwSize) const { return value; }
    void advance(kwSize) {}
    void run(T *dst, kwSize n) const { std::fill_n(dst, n, value); }
};

template<class T, class Source>
void scatter_list(T *dst, Source &source, const Axis &x, const Axis &y) {
    const ListWalk list(x, y, sizeof(T));
    for (kwSize j = 0; j < y.count; ++j, source.advance(x.count)) {
        T *column = dst + y.offset(j), *next = dst + y.offset(std::min(j + 1, y.count - 1));
        list.walk(next, [=](kwSize k, kwSize at) { column[at] = source[k]; });
    }
}

template<class T, class Source>
void scatter_plane(T *dst, Source &source, const Axis &x, const Axis &y) {
    if (x.list) return scatter_list(dst, source, x, y);
    const kwSize n = x.count;
    for (kwSize j = 0; j < y.count; ++j, source.advance(n)) {
        T *column = dst + y.offset(j);
        if (x.step == 1 && n * sizeof(T) >= 64)
            source.run(column, n);
        else
            for (kwSize k = 0; k < n; ++k) column[static_cast<int64_t>(k) * x.step] = source[k];
    }
}

template<class T> void scatter_mask(T *dst, Block<T> source, const Subscript &s) {
    for (kwSize i = 0; i < s.mask_size; ++i) { // the mask ends with a true byte: src holds on
        const bool on = s.mask[i] != 0;
        dst[i] = on ? *source.src : dst[i];
        source.src += on;
    }
}

template<class T> void scatter_mask(T *dst, Value<T> source, const Subscript &s) {
    for (kwSize i = 0; i < s.mask_size; ++i) dst[i] = s.mask[i] ? source.value : dst[i];
}

template<class T, class Source> void scatter_all(T *dst, Source source, const Selection &to) {
    if (to.mask) return scatter_mask(dst, source, *to.mask);
    const Axis &x = to.axes() > 0 ? to.axis(0) : single;
    const Axis &y = to.axes() > 1 ? to.axis(1) : single;
    to.for_each_plane([&](kwSize offset) { scatter_plane(dst + offset, source, x, y); });
}

} // namespace

void scatter(void *dst, const void *src, kwSize width, const Selection &to) {
    if (to.count == 0) return;
    RunCopier runs(to.count * width);
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        scatter_all(static_cast<T *>(dst), Block<T>{static_cast<const T *>(src), &runs}, to);
    });
}

void scatter_value(void *dst, const void *value, kwSize width, const Selection &to) {
    if (to.count == 0) return;
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        scatter_all(static_cast<T *>(dst), Value<T>{*static_cast<const T *>(value)}, to);
    });
}

} // namespace ox
