// The vector transpose kernels, compiled once for each instruction set and chosen at run time.
#include <core/dispatch.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <index/transpose_kernels.h>

// Vectors of unknown length cannot be kept in arrays.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
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
            for (kwSize b = 0; b < B; ++b) hn::StoreU(r[b], d, dst + (b * K + k) * ldd);
        }
    }
};

template<class T> constexpr kwSize widest = hn::MaxLanes(hn::ScalableTag<T>());
template<class T> constexpr kwSize narrowest = 16 / sizeof(T);

// Tile by tile; the last ones of a row and of a column overlap those before them. Columns go by
// strips, whose lines stay in the first-level cache from one row of tiles to the next.
template<class T, kwSize N>
void tiles(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    constexpr kwSize strip = 256;
    for (kwSize j0 = 0; j0 < n; j0 += strip)
        for (kwSize i0 = 0; i0 < m; i0 += N) {
            const kwSize i = std::min(i0, m - N), j1 = std::min(n, j0 + strip);
            for (kwSize jt = j0; jt < j1; jt += N) {
                const kwSize j = std::min(jt, n - N);
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

// --- Through a buffer, so that every line of the result is written once and as a whole ----------

template<class T> struct Staging {
    static constexpr kwSize N = widest<T>, line = 64 / sizeof(T);
    static constexpr kwSize run = tuning::transpose_run / sizeof(T); // columns of one piece
    static constexpr kwSize height = tuning::transpose_height / sizeof(T) < N
                                         ? N
                                         : tuning::transpose_height / sizeof(T); // rows of one
    static constexpr kwSize pitch = run + line; // odd in lines, so that rows differ in sets
    alignas(64) T buffer[height * pitch];

    // The first place at or after row[j] where a line begins, as a column.
    static kwSize line_start(const T *row, kwSize j) {
        const auto at = reinterpret_cast<std::uintptr_t>(row + j);
        return j + (-at & 63) / sizeof(T);
    }

    // Rows of the result, columns j0 to j1 and what completes their last lines: each row leaves
    // from its first whole line on. The ends of rows are no whole lines and leave anyway.
    void piece(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize rows, kwSize j0, kwSize j1,
               kwSize n) {
        const kwSize upto = std::min(n, j1 + line);
        for (kwSize j = j0; j < upto; j += N)
            direct<T>(buffer + (j - j0), pitch, src + j * lds, lds, rows, std::min(N, upto - j));
        for (kwSize i = 0; i < rows; ++i) {
            T *row = dst + i * ldd;
            const kwSize from = j0 == 0 ? 0 : std::min(n, line_start(row, j0));
            const kwSize to = j1 == n ? n : std::min(n, line_start(row, j1));
            stream_copy(row + from, buffer + i * pitch + (from - j0), (to - from) * sizeof(T));
        }
    }
};

template<class T> void staged(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    using S = Staging<T>;
    if (m < S::N || n < S::N) return direct(dst, ldd, src, lds, m, n);
    S staging;
    for (kwSize j0 = 0; j0 < n; j0 += S::run)
        for (kwSize i = 0; i < m; i += S::height) {
            const kwSize rows = std::min(S::height, m - i), j1 = std::min(n, j0 + S::run);
            staging.piece(dst + i * ldd, ldd, src + i, lds, rows, j0, j1, n);
        }
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
    staged(static_cast<T *>(dst), ldd, static_cast<const T *>(src), lds, m, n);
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
