// The vector transpose kernels, compiled once for each instruction set and chosen at run time.
#include <core/dispatch.h>
#include <core/simd_targets.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <index/transpose_kernels.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "index/transpose_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ox::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

const TransposeKernels *find_kernels(kwSize width) { return scalar_transpose(width); }

#else

namespace hn = hwy::HWY_NAMESPACE;

// A tile of N-by-N elements, N of them in a vector of B blocks of 16 bytes with K elements each.
template<class T, kwSize N> struct Tile {
    using D = hn::CappedTag<T, N>;
    using V = hn::Vec<D>;
    static constexpr kwSize K = 16 / sizeof(T), B = N / K;

    // Transposes the K-by-K elements of each block: perfect shuffles of the K vectors.
    static HWY_INLINE void within_blocks(V *r) {
        const D d;
        for (kwSize stage = 1; stage < K; stage *= 2) {
            V a[K];
#pragma GCC unroll 16
            for (kwSize k = 0; k < K / 2; ++k) {
                a[2 * k] = hn::InterleaveLower(d, r[k], r[k + K / 2]);
                a[2 * k + 1] = hn::InterleaveUpper(d, r[k], r[k + K / 2]);
            }
#pragma GCC unroll 16
            for (kwSize k = 0; k < K; ++k) r[k] = a[k];
        }
    }

    // Transposes the blocks of B vectors.
    static HWY_INLINE void across_blocks(V *r) {
        const D d;
        if constexpr (B == 2) {
            const V a = r[0], b = r[1];
            r[0] = hn::ConcatLowerLower(d, b, a);
            r[1] = hn::ConcatUpperUpper(d, b, a);
        } else if constexpr (B == 4) {
            const V a = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(r[1]), r[0]); // 00 10 02 12
            const V b = hn::OddEvenBlocks(r[1], hn::SwapAdjacentBlocks(r[0])); // 01 11 03 13
            const V c = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(r[3]), r[2]);
            const V e = hn::OddEvenBlocks(r[3], hn::SwapAdjacentBlocks(r[2]));
            r[0] = hn::ConcatLowerLower(d, c, a);
            r[1] = hn::ConcatLowerLower(d, e, b);
            r[2] = hn::ConcatUpperUpper(d, c, a);
            r[3] = hn::ConcatUpperUpper(d, e, b);
        }
    }

    // `streams` writes past the caches; dst and its rows are then aligned to vectors.
    template<bool streams = false>
    static HWY_INLINE void run(T *dst, kwSize ldd, const T *src, kwSize lds) {
        const D d;
        V v[B][K];
#pragma GCC unroll 4
        for (kwSize b = 0; b < B; ++b) {
#pragma GCC unroll 16
            for (kwSize k = 0; k < K; ++k) v[b][k] = hn::LoadU(d, src + (b * K + k) * lds);
            within_blocks(v[b]);
        }
#pragma GCC unroll 16
        for (kwSize k = 0; k < K; ++k) {
            V r[B];
#pragma GCC unroll 4
            for (kwSize b = 0; b < B; ++b) r[b] = v[b][k];
            across_blocks(r);
#pragma GCC unroll 4
            for (kwSize b = 0; b < B; ++b) {
                if constexpr (streams)
                    hn::Stream(r[b], d, dst + (b * K + k) * ldd);
                else
                    hn::StoreU(r[b], d, dst + (b * K + k) * ldd);
            }
        }
    }
};

template<class T> constexpr kwSize widest = hn::MaxLanes(hn::ScalableTag<T>());
template<class T> constexpr kwSize narrowest = 16 / sizeof(T);

// The columns before the first line of dst's rows, where all rows have the same.
template<class T, kwSize N> kwSize columns_to_line(const T *dst, kwSize ldd) {
    constexpr kwSize bytes = N * sizeof(T);
    if (ldd * sizeof(T) % bytes != 0) return 0;
    return (-reinterpret_cast<std::uintptr_t>(dst) % bytes) / sizeof(T);
}

// Tile by tile; the first of a row is overlapped so that the others write whole lines, and the last
// of a row and of a column overlap those before them. Down the columns first, because two tiles
// often share a line of the source; not too far, because they may share one of the result.
template<class T, kwSize N>
void tiles(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    constexpr kwSize strip = 256;
    const kwSize first = columns_to_line<T, N>(dst, ldd);
    for (kwSize i0 = 0; i0 < m; i0 += strip)
        for (kwSize j0 = 0; j0 < n; j0 += j0 == 0 && first ? first : N) {
            const kwSize j = std::min(j0, n - N), i2 = std::min(m, i0 + strip);
            for (kwSize i1 = i0; i1 < i2; i1 += N) {
                const kwSize i = std::min(i1, m - N);
                Tile<T, N>::run(dst + i * ldd + j, ldd, src + i + j * lds, lds);
            }
        }
}

// Tiles of the largest size that fits into m-by-n.
template<class T, kwSize N = widest<T>>
void direct(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    if (m >= N && n >= N)
        tiles<T, N>(dst, ldd, src, lds, m, n);
    else if constexpr (N > narrowest<T>)
        direct<T, N / 2>(dst, ldd, src, lds, m, n);
    else
        transpose_plain(dst, ldd, src, lds, m, n);
}

// --- Past the caches
// ------------------------------------------------------------------------------
//
// The source is read down its columns, a stripe of one result line at a time, and every line of the
// result is written once and as a whole.

template<class T> constexpr kwSize line = 64 / sizeof(T);

// Rows of the result begin on lines, and a tile's rows are lines.
template<class T>
void whole_lines(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    using L = Tile<T, line<T>>;
    for (kwSize i0 = 0; i0 < m; i0 += tuning::transpose_rows)
        for (kwSize j = 0; j < n; j += line<T>)
            for (kwSize i1 = i0; i1 < std::min(m, i0 + tuning::transpose_rows); i1 += line<T>) {
                const kwSize i = std::min(i1, m - line<T>);
                L::template run<true>(dst + i * ldd + j, ldd, src + i + j * lds, lds);
            }
}

// Rows of the result begin anywhere: each stripe of some lines goes to a buffer behind the last
// line of the one before it, where every row finds whole lines of its own phase.
template<class T> class Stripes {
public:
    static constexpr kwSize height = tuning::transpose_buffered_rows, L = line<T>, wide = 4 * L;

    // Up to `height` rows of the result, which has at least a line of columns.
    void rows(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize h, kwSize n) {
        kwSize columns = L;
        load(src, lds, h, columns);
        for (kwSize i = 0; i < h; ++i) {
            const auto at = reinterpret_cast<std::uintptr_t>(dst + i * ldd);
            phase_[i] = static_cast<uint8_t>((-at & 63) / sizeof(T));
            std::memcpy(dst + i * ldd, at_row(i) + L, phase_[i] * sizeof(T));
        }
        kwSize j = L;
        for (; j < n; j += columns) {
            keep_line(h, columns);
            columns = std::min(wide, n - j);
            load(src + j * lds, lds, h, columns);
            for (kwSize i = 0; i < h; ++i)
                store_lines(dst + i * ldd + (j - L + phase_[i]), at_row(i) + phase_[i],
                            columns / L);
        }
        const kwSize done = j > L ? columns / L * L : L;
        for (kwSize i = 0; i < h; ++i) finish(dst + i * ldd + n, i, phase_[i] + done, L + columns);
    }

private:
    T *at_row(kwSize i) { return buffer_ + i * (L + wide); }

    void load(const T *src, kwSize lds, kwSize h, kwSize columns) {
        direct<T>(buffer_ + L, L + wide, src, lds, h, columns);
    }
    // Moves the last line of a stripe to where the next one follows it.
    void keep_line(kwSize h, kwSize columns) {
        const hn::CappedTag<T, L> d;
        for (kwSize i = 0; i < h; ++i)
            for (kwSize k = 0; k < L; k += hn::MaxLanes(d))
                hn::Store(hn::Load(d, at_row(i) + columns + k), d, at_row(i) + k);
    }
    static void store_lines(T *to, const T *from, kwSize lines) {
        const hn::CappedTag<T, L> d;
        for (kwSize k = 0; k < lines * L; k += hn::MaxLanes(d))
            hn::Stream(hn::LoadU(d, from + k), d, to + k);
    }
    // The columns first .. end - 1 of the buffer, fewer than two lines, are the last of a row.
    void finish(T *row_end, kwSize i, kwSize first, kwSize end) {
        const T *from = at_row(i) + first;
        kwSize left = end - first;
        if (left >= L) {
            store_lines(row_end - left, from, 1);
            from += L;
            left -= L;
        }
        if (left > 0) std::memcpy(row_end - left, from, left * sizeof(T));
    }

    alignas(64) T buffer_[height * (L + wide)]; // the line before, and the stripe at hand
    uint8_t phase_[height];                     // columns of a row before its first line
};

template<class T> void streamed(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    constexpr kwSize L = line<T>;
    if (m < L || n < L) return direct(dst, ldd, src, lds, m, n);
    const bool aligned = ((reinterpret_cast<std::uintptr_t>(dst) | ldd * sizeof(T)) & 63) == 0;
    if constexpr (widest<T> == L)
        if (aligned && n % L == 0) return whole_lines(dst, ldd, src, lds, m, n);
    Stripes<T> stripes;
    for (kwSize i = 0; i < m; i += stripes.height)
        stripes.rows(dst + i * ldd, ldd, src + i, lds, std::min(stripes.height, m - i), n);
}

// --- In place ------------------------------------------------------------------------------------

template<class T, kwSize N = widest<T>> void square(T *a, kwSize n) {
    if constexpr (N > narrowest<T>)
        if (n < N) return square<T, N / 2>(a, n);
    alignas(64) T kept[N * N];
    const kwSize whole = n / N * N;
    for (kwSize j = 0; j < whole; j += N)
        for (kwSize i = 0; i <= j; i += N) {
            T *p = a + i + j * n, *q = a + j + i * n;
            Tile<T, N>::run(kept, N, p, n);
            if (i != j) Tile<T, N>::run(p, n, q, n);
            for (kwSize k = 0; k < N; ++k) std::memcpy(q + k * n, kept + k * N, N * sizeof(T));
        }
    swap_mirrored(a, n, whole);
}

// ------------------------------------------------------------------------------------------------

template<class T>
void cached(void *dst, kwSize ldd, const void *src, kwSize lds, kwSize m, kwSize n) {
    direct(static_cast<T *>(dst), ldd, static_cast<const T *>(src), lds, m, n);
}
template<class T>
void streaming(void *dst, kwSize ldd, const void *src, kwSize lds, kwSize m, kwSize n) {
    streamed(static_cast<T *>(dst), ldd, static_cast<const T *>(src), lds, m, n);
}
template<class T> void in_place(void *data, kwSize n) { square(static_cast<T *>(data), n); }

const TransposeKernels *find_kernels(kwSize width) {
    const TransposeKernels *found = scalar_transpose(width);
    visit_width(width, [&]<class T>(std::type_identity<T>) {
        if constexpr (sizeof(T) <= 8) {
            static constexpr TransposeKernels kernels = {cached<T>, streaming<T>, in_place<T>};
            found = &kernels;
        }
    });
    return found;
}

#endif

} // namespace
} // namespace ox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ox {

HWY_EXPORT(find_kernels);

const TransposeKernels *vector_transpose(kwSize width) {
    return HWY_DYNAMIC_DISPATCH(find_kernels)(width);
}

} // namespace ox
#endif
