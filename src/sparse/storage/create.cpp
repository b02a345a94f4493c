// Creating sparse arrays, checking their structure, and changing their capacity.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/imaginary.h>
#include <ox/sparse.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

void *undefined(kwSize count, kwSize size) {
    kwSize bytes;
    return __builtin_mul_overflow(count, size, &bytes) ? nullptr : oxMallocEx(bytes);
}

bool resize_block(void **block, kwSize count, kwSize size) {
    kwSize bytes;
    if (__builtin_mul_overflow(count, size, &bytes)) return false;
    void *moved = oxReallocEx(*block, bytes);
    if (!moved) return false;
    *block = moved;
    return true;
}

using Allocate = void *(*)(kwSize count, kwSize size);

oxArray *make(kwSize m, kwSize n, kwSize nzmax, int id, bool complex, Allocate allocate) {
    ArrayGuard a(make_header(id, m, n));
    if (!a || n == ~kwSize{0}) return nullptr;
    const kwSize size = class_info(id).element_size, capacity = std::max<kwSize>(nzmax, 1);
    complex = complex && is_numeric(a.get());
    a->set_flag(oxFLAG_SPARSE, true);
    a->num.nzmax = capacity;
    // Each block is tested only once all are attached; the guard frees what there is. Index vectors
    // go with the data alone, so without data they are freed here.
    a->num.pdata = allocate(capacity, size);
    a->num.ir = static_cast<kwIndex *>(allocate(capacity, sizeof(kwIndex)));
    a->num.jc = static_cast<kwIndex *>(allocate(n + 1, sizeof(kwIndex)));
    if (complex) a->num.pimag = allocate(capacity, size);
    if (a->num.pdata && a->num.ir && a->num.jc && (!complex || a->num.pimag)) return a.release();
    if (!a->num.pdata) {
        oxFreeEx(a->num.ir);
        oxFreeEx(a->num.jc);
    }
    return nullptr;
}

// The created hook hears of a success only: a sparse creator that fails is silent.
oxArray *hand_over_silently(oxArray *a) { return a ? hand_over(a) : nullptr; }

} // namespace

oxArray *make_sparse(kwSize m, kwSize n, kwSize nzmax, int id, bool complex) {
    return make(m, n, nzmax, id, complex, oxCallocEx);
}

oxArray *make_sparse_uninit(kwSize m, kwSize n, kwSize nzmax, int id, bool complex) {
    oxArray *a = make(m, n, nzmax, id, complex, nzmax ? undefined : oxCallocEx);
    if (a) a->num.jc[0] = 0;
    return a;
}

bool set_capacity(oxArray *a, kwSize nzmax) {
    const kwSize capacity = std::max<kwSize>(nzmax, 1);
    const kwSize size = class_info(a->class_code).element_size;
    void *ir = a->num.ir;
    bool done = resize_block(&a->num.pdata, capacity, size);
    if (done && has_imag_block(a)) done = resize_block(&a->num.pimag, capacity, size);
    if (done) done = resize_block(&ir, capacity, sizeof(kwIndex));
    a->num.ir = static_cast<kwIndex *>(ir);
    if (done || capacity < a->num.nzmax) a->num.nzmax = capacity; // a half-done cut counts as cut
    return done;
}

} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxCreateSparse_730(kwSize m, kwSize n, kwSize nzmax, oxComplexity c) {
    return hand_over_silently(make_sparse(m, n, nzmax, oxDOUBLE_CLASS, c != oxREAL));
}
oxArray *oxCreateSparseNumericMatrix(kwSize m, kwSize n, kwSize nzmax, oxClassID id,
                                     oxComplexity c) {
    return hand_over_silently(make_sparse(m, n, nzmax, id, c != oxREAL));
}
oxArray *oxCreateSparseLogicalMatrix_730(kwSize m, kwSize n, kwSize nzmax) {
    return hand_over_silently(make_sparse(m, n, nzmax, oxLOGICAL_CLASS, false));
}
kwSize oxGetNumNonZeroEl(const oxArray *a) {
    return is_sparse(a) ? nonzeros(a) : a->get_number_of_elements();
}

} // extern "C"
