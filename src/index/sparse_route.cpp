// Where operations on sparse arrays leave for the sparse kernels.
#include <core/destroy.h>
#include <core/header_copy.h>
#include <errors/raise.h>
#include <index/reference.h>
#include <index/sparse_route.h>
#include <ox.h>
#include <sparse/storage/csc.h>

namespace ox {

oxArray *reference_sparse(const oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    const ArrayGuard full(sparse_to_full(a));
    if (!full) raise_out_of_memory();
    const ArrayGuard selected(reference(full.get(), nsubs, subs));
    oxArray *result = full_to_sparse(selected.get());
    if (!result) raise_out_of_memory();
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
