// Sparse arrays from entries in any order.
#pragma once
#include <ox.h>

#include <vector>

namespace vel {

struct Triplet {
    size_t i, j; // from 0
    double re, im;
};

struct Triplets {
    size_t m, n;
    bool complex, logical;
    std::vector<Triplet> entries;
};

// Duplicates are summed (or joined, when logical), zeros dropped; a temporary of the current
// context. Cost O(entries log(entries of a column) + n).
oxArray *make_sparse(Triplets t);

} // namespace vel
