// Where operations on sparse arrays leave for the sparse kernels.
#include <core/destroy.h>
#include <core/header_copy.h>
#include <errors/raise.h>
#include <index/operands/shapes.h>
#include <index/sparse_route.h>
#include <ox.h>
#include <sparse/reference.h>
#include <sparse/storage/csc.h>

namespace ox {

namespace {

oxArray *reference_linear(const oxArray *a, const oxArray *sub) {
    kwSize extent;
    if (__builtin_mul_overflow(rows(a), cols(a), &extent)) extent = ~kwSize{0};
    Subscript s;
    Extents dims;
    s.read_or_raise(sub, extent);
    if (!s.inside(extent)) oxHandleSubscriptError(2);
    linear_reference_shape(a, sub, s, dims);
    kwSize n = dims[1];
    for (kwSize k = 2; k < dims.size(); ++k) n *= dims[k];
    return sparse_linear_reference(a, s, dims[0], n);
}

} // namespace

oxArray *reference_sparse(const oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    oxArray *result = nullptr;
    if (nsubs == 1)
        result = reference_linear(a, subs[0]);
    else
        oxHandleSparseSubscriptError(sparse_reference(a, nsubs, subs, &result));
    oxFreeImagIfZero(result);
    return result;
}

namespace {

// Runs f on a full copy of a and puts what becomes of it back, sparse.
template<class F> void as_full(oxArray *a, F &&f) {
    const ArrayGuard full(sparse_to_full(a));
    if (!full) raise_out_of_memory();
    f(full.get());
    oxArray *result = full_to_sparse(full.get());
    if (!result) raise_out_of_memory();
    move_onto_header(a, result);
}

} // namespace

void assign_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs,
                   bool resize_only) {
    as_full(a, [&](oxArray *full) {
        auto **list = const_cast<const oxArray **>(subs);
        oxDestroyArray(
            oxSubscriptedAssignmentWithFiller(full, nsubs, list, rhs, nullptr, resize_only));
    });
}

void delete_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    as_full(a, [&](oxArray *full) {
        oxSubscriptedDelete(full, nsubs, const_cast<const oxArray **>(subs));
    });
}

} // namespace ox
