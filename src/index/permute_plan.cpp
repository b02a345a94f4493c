// Permuting elements: block copies where the first dimension stays, batched transposes elsewhere.
#include <core/stream_copy.h>
#include <index/permute_plan.h>
#include <index/transpose_kernels.h>

#include <cstring>

namespace ox {
namespace {

using Byte = unsigned char;

// Calls f(place in dst, place in src), in elements, for every combination of the dimensions from
// `first` on but `skip`.
template<class F> void for_each_place(const PermutePlan &p, kwSize first, kwSize skip, F &&f) {
    kwSize at[max_plan_rank] = {}, to = 0, from = 0;
    for (;;) {
        f(to, from);
        kwSize k = first;
        for (; k < p.rank; ++k) {
            if (k == skip) continue;
            to += p.to[k];
            from += p.from[k];
            if (++at[k] < p.extent[k]) break;
            to -= p.to[k] * p.extent[k];
            from -= p.from[k] * p.extent[k];
            at[k] = 0;
        }
        if (k == p.rank) return;
    }
}

// The first dimension stays the first: runs of it.
void copy_runs(const PermutePlan &p, Byte *dst, const Byte *src, kwSize width, kwSize bytes) {
    const kwSize run = p.extent[0] * width;
    RunCopier runs(bytes);
    for_each_place(p, 1, 0, [&](kwSize to, kwSize from) {
        runs.copy(dst + to * width, src + from * width, run);
    });
}

// The source's first dimension becomes dimension q: planes of it and the result's first.
void transpose_planes(const PermutePlan &p, Byte *dst, const Byte *src, kwSize width,
                      bool streams) {
    kwSize q = 1;
    while (p.from[q] != 1) ++q;
    const TransposeKernel transpose = transpose_for(width, streams);
    for_each_place(p, 1, q, [&](kwSize to, kwSize from) {
        transpose(dst + to * width, p.to[q], src + from * width, p.from[0], p.extent[q],
                  p.extent[0]);
    });
}

} // namespace

PermutePlan plan_permutation(kwSize n, const kwSize *dims, const kwSize *order, kwSize together) {
    PermutePlan p;
    kwSize to = 1;
    const auto append = [&](kwSize extent, kwSize from) {
        if (extent == 1) return;
        if (p.rank && from == p.from[p.rank - 1] * p.extent[p.rank - 1]) {
            p.extent[p.rank - 1] *= extent;
        } else {
            p.extent[p.rank] = extent;
            p.from[p.rank] = from;
            p.to[p.rank++] = to;
        }
        to *= extent;
    };
    append(together, 1);
    for (kwSize k = 0; k < n; ++k) {
        kwSize from = together;
        for (kwSize j = 0; j + 1 < order[k]; ++j) from *= dims[j];
        append(dims[order[k] - 1], from);
    }
    return p;
}

void permute_elements(const PermutePlan &p, void *dst, const void *src, kwSize width) {
    auto *d = static_cast<Byte *>(dst);
    auto *s = static_cast<const Byte *>(src);
    kwSize bytes = width;
    for (kwSize k = 0; k < p.rank; ++k) bytes *= p.extent[k];
    const bool streams = bytes >= tuning::stream_min_bytes;
    if (p.rank <= 1)
        std::memcpy(d, s, bytes);
    else if (p.from[0] == 1)
        copy_runs(p, d, s, width, bytes);
    else
        transpose_planes(p, d, s, width, streams);
    if (streams) stream_fence();
}

} // namespace ox
