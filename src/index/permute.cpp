// Permuting the dimensions of an array: argument checks, the class dispatch, the copy.
#include <containers/copies.h>
#include <containers/slots.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/destroy.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/permute.h>
#include <index/permute_plan.h>
#include <ox/permute.h>
#include <ox/sharing.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// --- The copy -----------------------------------------------------------------------------------

// The result's dimensions; ones beyond the second at the end go.
bool store_permuted_dims(oxArray *b, kwSize n, const kwSize *dims, const kwSize *order) {
    auto permuted = RawArray<kwSize>::make(n);
    if (!permuted) return false;
    for (kwSize k = 0; k < n; ++k) permuted[k] = dims[order[k] - 1];
    while (n > 2 && permuted[n - 1] == 1) --n;
    return store_dimensions(b, n, permuted.get()) == 0;
}

// The fields of one element stay together; the elements are shared.
void permute_slots(oxArray *b, const oxArray *a, kwSize n, const kwSize *dims,
                   const kwSize *order) {
    const kwSize fields = is_struct_like(a) ? static_cast<kwSize>(field_count(a)) : 1;
    const PermutePlan plan = plan_permutation(n, dims, order, fields);
    permute_elements(plan, b->cell.slots, a->cell.slots, sizeof(oxArray *));
    for_each_element(b, [](oxArray *element) { oxIncRefCount(element); });
}

void permute_values(oxArray *b, const oxArray *a, const PermutePlan &plan) {
    const kwSize width = class_info(a->class_code).element_size;
    permute_elements(plan, b->num.pdata, a->num.pdata, width);
    if (has_imag_block(a)) permute_elements(plan, b->num.pimag, a->num.pimag, width);
}

// Handles are copied by their layer, as a whole; only then do the copies move.
bool permute_own_handles(oxArray *b, const PermutePlan &plan) {
    const kwSize width = class_info(oxFUNCTION_CLASS).element_size;
    RawBlock moved = RawBlock::make(b->get_number_of_elements() * width);
    if (!moved) return false;
    permute_elements(plan, moved.get(), b->num.pdata, width);
    moved.reset(static_cast<unsigned char *>(std::exchange(b->num.pdata, moved.release())));
    return true;
}

} // namespace

oxArray *permuted_copy(const oxArray *a, kwSize n, const kwSize *dims, const kwSize *order) {
    const bool handles = a->class_code == oxFUNCTION_CLASS;
    ArrayGuard b(handles ? deep_copy(a) : skeleton_copy(a, has_imag_block(a)));
    if (!b) return nullptr;
    if (b->num.pdata) {
        if (is_container(a))
            permute_slots(b.get(), a, n, dims, order);
        else if (!handles)
            permute_values(b.get(), a, plan_permutation(n, dims, order));
        else if (!permute_own_handles(b.get(), plan_permutation(n, dims, order)))
            return nullptr;
    }
    return store_permuted_dims(b.get(), n, dims, order) ? b.release() : nullptr;
}

namespace {

// --- Arguments ----------------------------------------------------------------------------------

void check_counts(int nlhs, int nrhs) {
    if (nlhs > 1) oxErrMsg(FMAXLHS);
    if (nrhs > 2) oxErrMsg(FMAXRHS);
    if (nrhs < 2) oxErrMsg(FMINRHS);
}

// Rounded by adding half and cutting: 0.5 is 1. The range of every entry comes before repeats.
void read_order(const double *given, kwSize n, kwSize *order) {
    for (kwSize k = 0; k < n; ++k) {
        const double rounded = given[k] + 0.5;
        if (!(rounded >= 1 && rounded < static_cast<double>(n) + 1))
            oxErrMsgIdAndTxt("VELTRO:permute:badIndex",
                             "ORDER contains an invalid permutation index");
        order[k] = static_cast<kwSize>(rounded);
    }
    auto seen = RawArray<bool>::zeroed(n);
    if (!seen) raise_out_of_memory();
    for (kwSize k = 0; k < n; ++k)
        if (std::exchange(seen[order[k] - 1], true))
            oxErrMsgIdAndTxt("VELTRO:permute:repeatedIndex",
                             "ORDER cannot contain repeated permutation indices");
}

bool is_identity(const kwSize *order, kwSize first, kwSize n) {
    for (kwSize k = first; k < n; ++k)
        if (order[k] != k + 1) return false;
    return true;
}

[[noreturn]] void raise_unsupported() {
    oxErrMsgIdAndTxt("VELTRO:permute:unsupportedType", "Unsupported data type");
}

// Deliberate: int64 and uint64 have no permute although elements of their width could be moved;
// the class decides whether there is one, the width only which.
bool has_permute(const oxArray *a) {
    const int id = a->class_code;
    return id == oxCELL_CLASS || id == oxSTRUCT_CLASS || id == oxFUNCTION_CLASS ||
           id == oxOPAQUE_CLASS ||
           (id >= oxLOGICAL_CLASS && id <= oxUINT32_CLASS && id != oxVOID_CLASS);
}

// The permutation of an array by an order that changes something.
oxArray *permute_by_class(const oxArray *a, kwSize n, const kwSize *dims, const kwSize *order) {
    if (!has_permute(a)) raise_unsupported();
    if (a->class_code == oxOPAQUE_CLASS) {
        oxArray *b = a->opaque.info ? a->opaque.info->permute(a, order, n) : nullptr;
        if (!b) raise_unsupported();
        return b;
    }
    if (!is_sparse(a)) return hand_over(permuted_copy(a, n, dims, order));
    if (!is_identity(order, 2, n)) raise_unsupported();
    return hand_over(sparse_transpose(a));
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

bool oxIsPermutationTrivial(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[],
                            kwSize **padded_dims, kwSize **order, kwSize *order_length) {
    check_counts(nlhs, nrhs);
    const oxArray *a = prhs[0];
    if (prhs[1]->class_code != oxDOUBLE_CLASS)
        oxErrMsgIdAndTxt("VELTRO:permute:badIndexType",
                         "ORDER must contain double-precision indices");
    const kwSize n = prhs[1]->get_number_of_elements(), *own = a->get_dimensions();
    if (n < a->ndims)
        oxErrMsgIdAndTxt("VELTRO:permute:tooFewIndices",
                         "ORDER must have at least N elements for an N-D array");
    oxArray *given = oxMustBeFull(const_cast<oxArray *>(prhs[1]));
    auto *dims = static_cast<kwSize *>(oxCalloc(n, sizeof(kwSize)));
    auto *read = static_cast<kwSize *>(oxCalloc(n, sizeof(kwSize)));
    std::fill(std::copy_n(own, a->ndims, dims), dims + n, kwSize{1});
    read_order(data<double>(given), n, read);
    if (given != prhs[1]) oxDestroyArray(given);
    if (is_identity(read, 0, n)) {
        oxFree(read);
        oxFree(dims);
        plhs[0] = shared_copy(a);
        if (!plhs[0]) raise_out_of_memory();
        hand_over(plhs[0]);
        return true;
    }
    *padded_dims = dims;
    *order = read;
    *order_length = n;
    return false;
}

void oxPermuteFcn(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    kwSize *dims, *order, n;
    if (oxIsPermutationTrivial(nlhs, plhs, nrhs, prhs, &dims, &order, &n)) return;
    plhs[0] = permute_by_class(prhs[0], n, dims, order);
    oxFree(order);
    oxFree(dims);
}

} // extern "C"
