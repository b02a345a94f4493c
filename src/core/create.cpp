// Creating numeric and logical arrays.
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/imaginary.h>
#include <core/ring.h>
#include <core/size_check.h>
#include <errors/raise.h>

namespace ox {
namespace {

using Allocate = void *(*)(kwSize count, kwSize size);

void *raw_zeroed(kwSize count, kwSize size) { return oxCallocEx(count, size); }
void *raw_uninit(kwSize count, kwSize size) { return oxMallocEx(count * size); }
void *checked_uninit(kwSize count, kwSize size) { return oxMallocExCheck(count * size); }

kwSize element_size(const oxArray *a) { return class_info(a->class_code).element_size; }

// Only blocks of numbers, characters and truth values change hands: the slots of a container own
// what they point at.
bool can_lend(const oxArray *c, bool complex, kwSize count, kwSize size) {
    if (!c || !c->has_flag(oxFLAG_REUSABLE) || is_sparse(c) || c->is_imag_marked() ||
        !holds_values(c->class_code) || is_complex(c) != complex)
        return false;
    const kwSize *dims = c->get_dimensions();
    kwSize trailing;
    if (c->ndims > 1 && !check_size(dims + 1, c->ndims - 1, 1, &trailing)) return false;
    return c->num.pdata && element_size(c) == size &&
           c->get_number_of_elements() * size == count * size;
}

// Storage for a header of known class and size: a candidate's, or new blocks. False without
// memory; what was attached by then goes with the header.
bool attach_storage(oxArray *a, kwSize count, bool complex, Candidates reuse, Allocate allocate) {
    complex = complex && is_numeric(a);
    if (count == 1 && a->class_code == oxDOUBLE_CLASS) a->set_flag(oxFLAG_SCALAR_DOUBLE, true);
    if (reuse.count > 0 && take_reusable(a, complex, reuse)) return true;
    const kwSize size = element_size(a);
    a->num.pdata = allocate(count, size);
    // A class without elements asks for no bytes; only the zeroing creators take that for a
    // failure.
    if (!a->num.pdata) return size == 0 && allocate == checked_uninit;
    if (complex) a->num.pimag = allocate(count, size);
    return !complex || a->num.pimag;
}

oxArray *make_with(kwSize m, kwSize n, int id, bool complex, Candidates reuse, Allocate allocate) {
    ArrayGuard a(make_header(id, m, n));
    kwSize count;
    if (!a || m == 0 || n == 0) return a.release();
    if (!check_size(m, n, 1, &count)) return nullptr;
    return attach_storage(a.get(), count, complex, reuse, allocate) ? a.release() : nullptr;
}

// The M-by-N fold of a dimension vector; false when the trailing sizes are too many elements. An
// empty first dimension forgives that.
bool fold(kwSize ndim, const kwSize *dims, kwSize *m, kwSize *n) {
    if (!dims || ndim == 0) {
        *m = *n = 0;
        return true;
    }
    *m = dims[0];
    *n = 1;
    if (ndim == 2) *n = dims[1];
    kwSize trailing;
    if (ndim < 2 || check_size(dims + 1, ndim - 1, 1, &trailing)) {
        if (ndim > 2) *n = trailing;
        return true;
    }
    return *m == 0;
}

// An array of ndim sizes over make(m, n), which makes its m-by-n fold. Sizes that cannot be folded
// are a failed creation.
template<class Make> oxArray *make_nd_with(kwSize ndim, const kwSize *dims, Make make) {
    kwSize m, n;
    if (!fold(ndim, dims, &m, &n)) return nullptr;
    ArrayGuard a(make(m, n));
    if (a && dims && ndim > 2 && store_dimensions(a.get(), ndim, dims) != 0) return nullptr;
    return a.release();
}

// Undefined contents, as the exported creators define it: 1-by-1 is zeroed, other sizes are
// checked by bytes and raise error 19.
oxArray *uninit(kwSize m, kwSize n, int id, bool complex) {
    const kwSize count = oxCheckMN(m, n, class_info(id).element_size);
    return make_with(m, n, id, complex, {}, count == 1 ? raw_zeroed : checked_uninit);
}

} // namespace

void set_class(oxArray *a, int id) {
    const ClassInfo &info = class_info(id);
    a->class_code = info.id;
    a->set_flag(oxFLAG_NUMERIC, info.numeric);
}

oxArray *make_header(int id, kwSize m, kwSize n) {
    oxArray *a = allocate_header();
    if (!a) return nullptr;
    set_class(a, id);
    a->ndims = 2;
    a->mn[0] = m;
    a->mn[1] = n;
    return a;
}

bool take_reusable(oxArray *a, bool complex, Candidates reuse) {
    const kwSize count = a->get_number_of_elements(), size = element_size(a);
    for (kwSize k = 0; k < reuse.count; ++k) {
        oxArray *lender = reuse.arrays[k];
        if (!can_lend(lender, complex, count, size)) continue;
        a->num.pdata = lender->num.pdata;
        if (complex) a->num.pimag = lender->num.pimag;
        ring_link_after(lender, a);
        return true;
    }
    return false;
}

oxArray *make_full(kwSize m, kwSize n, int id, bool complex, Candidates reuse) {
    return make_with(m, n, id, complex, reuse, raw_zeroed);
}

oxArray *make_full_nd(kwSize ndim, const kwSize *dims, int id, bool complex, Candidates reuse) {
    return make_nd_with(ndim, dims,
                        [&](kwSize m, kwSize n) { return make_full(m, n, id, complex, reuse); });
}

oxArray *make_uninit(kwSize m, kwSize n, int id, bool complex, Candidates reuse) {
    return make_with(m, n, id, complex, reuse, m == 1 && n == 1 ? raw_zeroed : raw_uninit);
}

oxArray *make_uninit_nd(kwSize ndim, const kwSize *dims, int id, bool complex) {
    return make_nd_with(ndim, dims,
                        [&](kwSize m, kwSize n) { return make_uninit(m, n, id, complex); });
}

oxArray *make_double_scalar(double value) {
    oxArray *a = make_full(1, 1, oxDOUBLE_CLASS, false);
    if (a) *data<double>(a) = value;
    return a;
}

} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxCreateNumericMatrixWithReuse(kwSize m, kwSize n, oxClassID id, oxComplexity c,
                                        kwSize ncand, oxArray *const *cand) {
    return hand_over(make_full(m, n, id, c != oxREAL, {ncand, cand}));
}
oxArray *oxCreateNumericMatrix_730(kwSize m, kwSize n, oxClassID id, oxComplexity c) {
    return hand_over(make_full(m, n, id, c != oxREAL));
}
oxArray *oxCreateDoubleMatrixWithReuse(kwSize m, kwSize n, oxComplexity c, kwSize ncand,
                                       oxArray *const *cand) {
    return oxCreateNumericMatrixWithReuse(m, n, oxDOUBLE_CLASS, c, ncand, cand);
}
oxArray *oxCreateDoubleMatrix_730(kwSize m, kwSize n, oxComplexity c) {
    return hand_over(make_full(m, n, oxDOUBLE_CLASS, c != oxREAL));
}
oxArray *oxCreateLogicalMatrixWithReuse(kwSize m, kwSize n, kwSize ncand, oxArray *const *cand) {
    return oxCreateNumericMatrixWithReuse(m, n, oxLOGICAL_CLASS, oxREAL, ncand, cand);
}
oxArray *oxCreateLogicalMatrix_730(kwSize m, kwSize n) {
    return hand_over(make_full(m, n, oxLOGICAL_CLASS, false));
}

oxArray *oxCreateNumericArrayWithReuse(kwSize ndim, const kwSize *dims, oxClassID id,
                                       oxComplexity c, kwSize ncand, oxArray *const *cand) {
    return hand_over(make_full_nd(ndim, dims, id, c != oxREAL, {ncand, cand}));
}
oxArray *oxCreateNumericArray_730(kwSize ndim, const kwSize *dims, oxClassID id, oxComplexity c) {
    return hand_over(make_full_nd(ndim, dims, id, c != oxREAL));
}
oxArray *oxCreateLogicalArrayWithReuse(kwSize ndim, const kwSize *dims, kwSize ncand,
                                       oxArray *const *cand) {
    return oxCreateNumericArrayWithReuse(ndim, dims, oxLOGICAL_CLASS, oxREAL, ncand, cand);
}
oxArray *oxCreateLogicalArray_730(kwSize ndim, const kwSize *dims) {
    return hand_over(make_full_nd(ndim, dims, oxLOGICAL_CLASS, false));
}

oxArray *oxCreateDoubleScalar(double value) { return hand_over(make_double_scalar(value)); }

oxArray *oxCreateSingleScalar(float value) {
    oxArray *a = make_full(1, 1, oxSINGLE_CLASS, false);
    if (a) *data<float>(a) = value;
    return hand_over(a);
}

oxArray *oxCreateLogicalScalar(bool value) {
    oxArray *a = make_full(1, 1, oxLOGICAL_CLASS, false);
    if (a) __builtin_memcpy(a->num.pdata, &value, 1); // the byte as it is
    return hand_over(a);
}

oxArray *oxCreateNumericScalar(oxClassID id, oxComplexity c) {
    return hand_over(make_full(1, 1, id, c != oxREAL));
}

oxArray *oxCreateUninitNumericArray(kwSize ndim, const kwSize *dims, oxClassID id, oxComplexity c) {
    return hand_over(make_nd_with(
        ndim, dims, [&](kwSize m, kwSize n) { return uninit(m, n, id, c != oxREAL); }));
}
oxArray *oxCreateUninitNumericMatrix(kwSize m, kwSize n, oxClassID id, oxComplexity c) {
    return hand_over(uninit(m, n, id, c != oxREAL));
}
oxArray *oxCreateUninitDoubleMatrix(kwSize m, kwSize n, oxComplexity c) {
    return oxCreateUninitNumericMatrix(m, n, oxDOUBLE_CLASS, c);
}

} // extern "C"
