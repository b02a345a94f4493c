// Transposing blocks of plain elements: B = A.' by element width.
#pragma once
#include <core/dispatch.h>
#include <ox/types.h>

#include <algorithm>

namespace ox {

// dst[i * ldd + j] = src[i + j * lds] for i below m and j below n; the blocks do not overlap.
using TransposeKernel = void (*)(void *dst, kwSize ldd, const void *src, kwSize lds, kwSize m,
                                 kwSize n);

struct TransposeKernels {
    TransposeKernel cached;    // the result is found in the caches again
    TransposeKernel streaming; // written past the caches; stream_fence ends a series of calls
    // The n-by-n block is transposed where it is.
    void (*in_place)(void *data, kwSize n);
};

// The kernels for elements of 1, 2, 4, 8 or 32 bytes; null for other widths.
const TransposeKernels *scalar_transpose(kwSize width);
const TransposeKernels *vector_transpose(kwSize width);

// Those that fit the machine, and the choice among them by the size of the whole result.
inline TransposeKernel transpose_for(kwSize width, bool streams) {
    const TransposeKernels *k = vector_transpose(width);
    return streams ? k->streaming : k->cached;
}

// The scalar form, in tiles whose rows are 256 bytes, so that neither side leaves its lines before
// they are used up.
template<class T>
void transpose_plain(T *dst, kwSize ldd, const T *src, kwSize lds, kwSize m, kwSize n) {
    constexpr kwSize edge = 256 / sizeof(T);
    for (kwSize i0 = 0; i0 < m; i0 += edge)
        for (kwSize j0 = 0; j0 < n; j0 += edge) {
            const kwSize i1 = std::min(m, i0 + edge), j1 = std::min(n, j0 + edge);
            for (kwSize i = i0; i < i1; ++i)
                for (kwSize j = j0; j < j1; ++j) dst[i * ldd + j] = src[i + j * lds];
        }
}

// Exchanges the elements of rows and columns from `first` on with their mirror images; those
// before it have been exchanged with each other.
template<class T> void swap_mirrored(T *a, kwSize n, kwSize first) {
    for (kwSize j = first; j < n; ++j)
        for (kwSize i = 0; i < j; ++i) std::swap(a[i + j * n], a[j + i * n]);
}

} // namespace ox
