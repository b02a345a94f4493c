// Comparing sparse arrays without ever forming a full one.
#include <compare/sparse.h>
#include <compare/values.h>
#include <core/imaginary.h>
#include <sparse/storage/csc.h>

#include <cstring>

namespace ox {
namespace {

// One part (real or imaginary) of a sparse array as the loops read it.
struct Part {
    const kwIndex *jc, *ir;
    const void *values;
    int id;
};

Part real_part(const oxArray *a) { return {a->num.jc, a->num.ir, a->num.pdata, a->class_code}; }
Part imag_part(const oxArray *a) { return {a->num.jc, a->num.ir, a->num.pimag, a->class_code}; }

// Column by column, by increasing row; an entry that the other side lacks must be zero.
bool equal_merged(const Part &a, const Part &b, kwSize n, bool nan_equal) {
    const ReadElement read_a = element_reader(a.id), read_b = element_reader(b.id);
    for (kwSize j = 0; j < n; ++j) {
        kwIndex k = a.jc[j], l = b.jc[j];
        while (k < a.jc[j + 1] || l < b.jc[j + 1]) {
            const bool has_a = k < a.jc[j + 1], has_b = l < b.jc[j + 1];
            const bool take_a = has_a && (!has_b || a.ir[k] <= b.ir[l]);
            const bool take_b = has_b && (!has_a || b.ir[l] <= a.ir[k]);
            const Element x = take_a ? read_a(a.values, k++) : zero_element;
            const Element y = take_b ? read_b(b.values, l++) : zero_element;
            if (!equal_elements(x, y, nan_equal)) return false;
        }
    }
    return true;
}

bool equal_full_part(const Part &s, int id, const void *full, kwSize m, kwSize n, bool nan_equal) {
    const ReadElement read_s = element_reader(s.id), read_f = element_reader(id);
    for (kwSize j = 0; j < n; ++j) {
        kwSize row = 0; // first row of the column not compared yet
        for (kwIndex k = s.jc[j]; k < s.jc[j + 1]; row = s.ir[k++] + 1) {
            const kwSize position = j * m + s.ir[k];
            if (!all_zero(id, full, j * m + row, s.ir[k] - row)) return false;
            if (!equal_elements(read_s(s.values, k), read_f(full, position), nan_equal))
                return false;
        }
        if (!all_zero(id, full, j * m + row, m - row)) return false;
    }
    return true;
}

} // namespace

bool equal_sparse_pair(const oxArray *a, const oxArray *b, bool nan_equal) {
    const kwSize n = cols(a);
    const bool both_complex = has_imag_block(a) && has_imag_block(b);
    if (a->class_code != b->class_code)
        return equal_merged(real_part(a), real_part(b), n, nan_equal) &&
               (!both_complex || equal_merged(imag_part(a), imag_part(b), n, nan_equal));
    const kwSize nnz = nonzeros(a);
    if (std::memcmp(a->num.jc, b->num.jc, (n + 1) * sizeof(kwIndex)) != 0) return false;
    if (nnz && std::memcmp(a->num.ir, b->num.ir, nnz * sizeof(kwIndex)) != 0) return false;
    const int id = a->class_code;
    if (id == oxLOGICAL_CLASS) return true;
    return equal_runs(id, a->num.pdata, id, b->num.pdata, nnz, nan_equal) &&
           (!both_complex || equal_runs(id, a->num.pimag, id, b->num.pimag, nnz, nan_equal));
}

bool equal_sparse_full(const oxArray *s, const oxArray *f, bool nan_equal) {
    const kwSize m = rows(s), n = cols(s);
    if (m == 0 || n == 0) return true;
    return equal_full_part(real_part(s), f->class_code, f->num.pdata, m, n, nan_equal) &&
           (!has_imag_block(s) || !has_imag_block(f) ||
            equal_full_part(imag_part(s), f->class_code, f->num.pimag, m, n, nan_equal));
}

} // namespace ox
