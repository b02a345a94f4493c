// Between full and sparse storage of one class.
#include <core/create.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <sparse/storage/csc.h>

namespace ox {
namespace {

template<class T> kwSize count_nonzero(const T *re, const T *im, kwSize count) {
    kwSize nnz = 0;
    if (im)
        for (kwSize k = 0; k < count; ++k) nnz += re[k] != T{} || im[k] != T{};
    else
        for (kwSize k = 0; k < count; ++k) nnz += re[k] != T{};
    return nnz;
}

template<class T> oxArray *compress(const oxArray *a) {
    const kwSize m = rows(a), n = cols(a);
    const T *re = data<T>(a), *im = has_imag_block(a) ? imag<T>(a) : nullptr;
    const kwSize nnz = m == 0 || n == 0 ? 0 : count_nonzero(re, im, m * n);
    oxArray *b = make_sparse(m, n, nnz, a->class_code, im != nullptr);
    if (!b || nnz == 0) return b;
    kwIndex p = 0;
    for (kwSize j = 0; j < n; ++j) {
        for (kwSize i = 0; i < m; ++i, ++re) {
            const T y = im ? *im++ : T{};
            if (*re == T{} && y == T{}) continue;
            b->num.ir[p] = i;
            data<T>(b)[p] = *re;
            if (im) imag<T>(b)[p] = y;
            ++p;
        }
        b->num.jc[j + 1] = p;
    }
    return b;
}

template<class T> void scatter(const oxArray *a, const void *values, void *out) {
    const T *v = static_cast<const T *>(values);
    T *column = static_cast<T *>(out);
    const kwSize m = rows(a), n = cols(a);
    for (kwSize j = 0; j < n; ++j, column += m)
        for (kwIndex k = a->num.jc[j]; k < a->num.jc[j + 1]; ++k) column[a->num.ir[k]] = v[k];
}

} // namespace

oxArray *full_to_sparse(const oxArray *a) {
    return visit_class(a->class_code, static_cast<oxArray *>(nullptr),
                       [&]<class T>(std::type_identity<T>) { return compress<T>(a); });
}

oxArray *sparse_to_full(const oxArray *a) {
    const bool complex = has_imag_block(a);
    oxArray *b = make_full(rows(a), cols(a), a->class_code, complex);
    if (!b || !b->num.pdata) return b;
    visit_class(a->class_code, 0, [&]<class T>(std::type_identity<T>) {
        scatter<T>(a, a->num.pdata, b->num.pdata);
        if (complex) scatter<T>(a, a->num.pimag, b->num.pimag);
        return 0;
    });
    return b;
}

} // namespace ox
