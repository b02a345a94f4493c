// Random sparse arrays.
#pragma once
#include <support/suite.h>

// m-by-n with a random share of its elements not 0.
inline oxArray *random_sparse(Random &random, kwSize m, kwSize n, bool complex = false) {
    oxArray *full = oxCreateDoubleMatrix(m, n, complex ? oxCOMPLEX : oxREAL);
    const double fill = random.unit();
    for (kwSize k = 0; k < m * n; ++k) {
        if (!random.chance(fill)) continue;
        oxGetPr(full)[k] = static_cast<double>(random.between(1, 99));
        if (complex) oxGetPi(full)[k] = static_cast<double>(random.between(-9, 9));
    }
    return oxMustBeSparse(full);
}
