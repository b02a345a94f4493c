// Subscripts that references and assignments are measured with.
#pragma once
#include <ox.h>

#include <functional>
#include <random>
#include <vector>

using Subs = std::vector<const oxArray *>;
using Make = std::function<Subs(kwSize)>; // for a matrix of that many rows and columns

inline oxArray *random_positions(kwSize extent, kwSize n) {
    std::mt19937_64 engine(42);
    oxArray *a = oxCreateDoubleMatrix(1, n, oxREAL);
    for (kwSize k = 0; k < n; ++k) oxGetPr(a)[k] = static_cast<double>(1 + engine() % extent);
    return a;
}

inline oxArray *colon() {
    const kwSize dims[2] = {1, 1};
    oxArray *a = oxCreateCharArray(2, dims);
    oxGetChars(a)[0] = ':';
    return a;
}

inline void destroy(const Subs &s) {
    for (const oxArray *x : s) oxDestroyArray(const_cast<oxArray *>(x));
}
