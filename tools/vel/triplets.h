// Sparse arrays from entries in any order.
#pragma once
#include <ox.h>

#include <string>
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

// Column starts cost memory that no bytes of a file need back: 2^26 and more are made only when
// forced.
inline bool too_many_columns(size_t n) { return n >> 26; }
std::string too_many_columns_text(size_t n);

} // namespace vel
