// Gathering selected elements into a dense block: runs, strides, lists and masks.
#include <core/dispatch.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <index/gather.h>
#include <index/kernels.h>

namespace ox {

namespace {

constexpr Axis single{1, 0, nullptr, 0};

template<class T> void copy_strided(T *dst, const T *src, int64_t step, kwSize n) {
    if constexpr (sizeof(T) == 8)
        if (step == 2 && n >= tuning::simd_min_elements / 4)
            return take_every_second64(reinterpret_cast<uint64_t *>(dst),
                                       reinterpret_cast<const uint64_t *>(src), n);
    for (kwSize k = 0; k < n; ++k) dst[k] = src[static_cast<int64_t>(k) * step];
}

// dst = the elements on two axes, x fastest.
template<class T>
void gather_plane(T *dst, const T *src, const Axis &x, const Axis &y, RunCopier &runs) {
    const kwSize n = x.count;
    const auto column = [&](kwSize j) { return src + y.offset(std::min(j, y.count - 1)); };
    if (x.list) {
        const ListWalk list(x, y, sizeof(T));
        for (kwSize j = 0; j < y.count; ++j, dst += n)
            list.walk(column(j + 1),
                      [dst, from = column(j)](kwSize k, kwSize at) { dst[k] = from[at]; });
    } else if (x.step == 1) {
        for (kwSize j = 0; j < y.count; ++j, dst += n) runs.copy(dst, column(j), n * sizeof(T));
    } else {
        for (kwSize j = 0; j < y.count; ++j, dst += n) copy_strided(dst, column(j), x.step, n);
    }
}

template<class T> void gather_mask(T *dst, const T *src, const Subscript &s) {
    const uint8_t *mask = s.mask;
    if constexpr (std::is_same_v<T, uint64_t>) {
        compress64(dst, src, mask, s.mask_size, s.count);
    } else if constexpr (std::is_same_v<T, uint32_t>) {
        compress32(dst, src, mask, s.mask_size, s.count);
    } else { // without a branch; the last true byte ends the mask, so dst is not overrun
        for (kwSize i = 0; i < s.mask_size; ++i) {
            *dst = src[i];
            dst += mask[i] != 0;
        }
    }
}

template<class T> void gather_all(T *dst, const T *src, const Selection &from) {
    if (from.mask) return gather_mask(dst, src, *from.mask);
    const Axis &x = from.axes() > 0 ? from.axis(0) : single;
    const Axis &y = from.axes() > 1 ? from.axis(1) : single;
    const kwSize plane = x.count * y.count;
    RunCopier runs(from.count * sizeof(T));
    from.for_each_plane([&](kwSize offset) {
        gather_plane(dst, src + offset, x, y, runs);
        dst += plane;
    });
}

} // namespace

void gather(void *dst, const void *src, kwSize width, const Selection &from) {
    if (from.count == 0) return;
    if (from.is_block() && !from.mask) {
        std::memcpy(dst, static_cast<const char *>(src) + from.base * width, from.count * width);
        return;
    }
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        gather_all(static_cast<T *>(dst), static_cast<const T *>(src), from);
    });
}

} // namespace ox
