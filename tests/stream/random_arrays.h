// Random arrays of every class that streams can hold, nested.
#pragma once
#include <ox.h>
#include <support/random.h>

#include <cstring>
#include <vector>

namespace ox::test {

inline std::vector<kwSize> random_dims(Random &r) {
    std::vector<kwSize> dims(r.chance(0.7) ? 2 : 3 + r.below(5));
    for (kwSize &d : dims) d = r.below(dims.size() > 3 ? 3 : 5);
    return dims;
}

inline void fill_random(Random &r, void *data, kwSize bytes) {
    auto *p = static_cast<unsigned char *>(data);
    for (kwSize k = 0; k < bytes; ++k) p[k] = static_cast<unsigned char>(r.bits());
}

inline oxArray *random_numbers(Random &r) {
    const auto id = static_cast<oxClassID>(r.between(oxLOGICAL_CLASS, oxUINT64_CLASS));
    const std::vector<kwSize> dims = random_dims(r);
    if (id == oxCHAR_CLASS || id == oxVOID_CLASS) {
        oxArray *a = oxCreateCharArray(dims.size(), dims.data());
        const uint64_t top = r.chance(0.5) ? 128 : 0x10000;
        for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k)
            oxGetChars(a)[k] = static_cast<oxChar>(r.below(top));
        return a;
    }
    const oxComplexity c = id != oxLOGICAL_CLASS && r.chance(0.3) ? oxCOMPLEX : oxREAL;
    oxArray *a = oxCreateNumericArray(dims.size(), dims.data(), id, c);
    const kwSize n = oxGetNumberOfElements(a), bytes = n * oxGetElementSize(a);
    fill_random(r, oxGetData(a), bytes);
    if (oxIsComplex(a)) fill_random(r, oxGetImagData(a), bytes);
    if (id == oxLOGICAL_CLASS)
        for (kwSize k = 0; k < n; ++k) static_cast<unsigned char *>(oxGetData(a))[k] &= 1;
    return a;
}

inline oxArray *random_sparse(Random &r) {
    const kwSize m = r.below(7), n = r.below(7), nzmax = m * n + r.below(3);
    const auto id = r.chance(0.3)   ? oxLOGICAL_CLASS
                    : r.chance(0.7) ? oxDOUBLE_CLASS
                                    : oxINT16_CLASS;
    const oxComplexity c = id != oxLOGICAL_CLASS && r.chance(0.3) ? oxCOMPLEX : oxREAL;
    oxArray *a = oxCreateSparseNumericMatrix(m, n, nzmax, id, c);
    kwSize nnz = 0;
    for (kwSize j = 0; j < n; ++j) {
        for (kwSize i = 0; i < m; ++i)
            if (r.chance(0.4)) oxGetIr(a)[nnz++] = i;
        oxGetJc(a)[j + 1] = nnz;
    }
    // Unused capacity is read back as zeros.
    const kwSize bytes = nnz * oxGetElementSize(a);
    if (id == oxLOGICAL_CLASS)
        std::memset(oxGetData(a), 1, bytes);
    else
        fill_random(r, oxGetData(a), bytes);
    if (c) fill_random(r, oxGetImagData(a), bytes);
    return a;
}

inline oxArray *random_array(Random &r, int depth);

inline oxArray *random_struct(Random &r, int depth) {
    const char *names[5] = {"x", "second", "a_very_long_name_of_a_field", "y1", "x"};
    const int fields = static_cast<int>(r.below(6));
    const std::vector<kwSize> dims = random_dims(r);
    oxArray *a = oxCreateStructArray(dims.size(), dims.data(), fields, names);
    for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k)
        for (int f = 0; f < fields; ++f)
            if (r.chance(0.4)) oxSetFieldByNumber(a, k, f, random_array(r, depth - 1));
    if (r.chance(0.3)) oxSetClassName(a, "thing");
    return a;
}

inline oxArray *random_cell(Random &r, int depth) {
    const std::vector<kwSize> dims = random_dims(r);
    oxArray *a = oxCreateCellArray(dims.size(), dims.data());
    for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k)
        if (r.chance(0.5)) oxSetCell(a, k, random_array(r, depth - 1));
    return a;
}

inline oxArray *random_array(Random &r, int depth) {
    const uint64_t kind = r.below(depth > 0 ? 9 : 6);
    oxArray *a = kind == 0  ? random_sparse(r)
                 : kind < 6 ? random_numbers(r)
                 : kind < 7 ? random_struct(r, depth)
                 : kind < 8 ? random_cell(r, depth)
                            : oxCreateNumericMatrix(r.below(3), 1, oxFUNCTION_CLASS, oxREAL);
    if (r.chance(0.1)) oxSetFromGlobalWS(a, true);
    return a;
}

} // namespace ox::test
