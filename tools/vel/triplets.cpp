// Sparse arrays from entries in any order: bucket by column, sort each bucket by row, sum.
#include "triplets.h"

#include "failure.h"

#include <algorithm>

namespace vel {
namespace {

// The entries in column order, the order within a column kept; start gets where columns begin.
std::vector<Triplet> by_columns(const Triplets &t, std::vector<size_t> &start) {
    start.assign(t.n + 1, 0);
    for (const Triplet &e : t.entries) ++start[e.j + 1];
    for (size_t j = 0; j < t.n; ++j) start[j + 1] += start[j];
    std::vector<size_t> next(start.begin(), start.end() - 1);
    std::vector<Triplet> sorted(t.entries.size());
    for (const Triplet &e : t.entries) sorted[next[e.j]++] = e;
    return sorted;
}

bool above(const Triplet &a, const Triplet &b) { return a.i < b.i; }

// Sums neighbours of one row and drops zeros, in place; the new end.
Triplet *summed(Triplet *first, Triplet *last) {
    Triplet *out = first;
    while (first != last) {
        Triplet sum = *first++;
        for (; first != last && first->i == sum.i; ++first)
            sum.re += first->re, sum.im += first->im;
        if (sum.re != 0 || sum.im != 0) *out++ = sum;
    }
    return out;
}

} // namespace

std::string too_many_columns_text(size_t n) {
    return std::to_string(n) + " columns take " + std::to_string((n + 1) * sizeof(kwIndex)) +
           " bytes for their starts alone; --force reads the file nevertheless";
}

oxArray *make_sparse(Triplets t) {
    std::vector<size_t> start;
    std::vector<Triplet> e = by_columns(t, start);
    t.entries = {};
    std::vector<size_t> count(t.n);
    size_t stored = 0;
    for (size_t j = 0; j < t.n; ++j) {
        Triplet *first = e.data() + start[j], *last = e.data() + start[j + 1];
        if (!std::is_sorted(first, last, above)) std::stable_sort(first, last, above);
        stored += count[j] = static_cast<size_t>(summed(first, last) - first);
    }
    oxArray *a = t.logical ? oxCreateSparseLogicalMatrix(t.m, t.n, stored)
                           : oxCreateSparse(t.m, t.n, stored, t.complex ? oxCOMPLEX : oxREAL);
    if (!a) throw Failure(Exit::io, "out of memory");
    kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    size_t k = 0;
    for (size_t j = 0; j < t.n; ++j) {
        for (size_t s = start[j]; s < start[j] + count[j]; ++s, ++k) {
            ir[k] = e[s].i;
            if (t.logical)
                oxGetLogicals(a)[k] = true;
            else
                oxGetPr(a)[k] = e[s].re;
            if (t.complex) oxGetPi(a)[k] = e[s].im;
        }
        jc[j + 1] = k;
    }
    return a;
}

} // namespace vel
