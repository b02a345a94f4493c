// Where operations on sparse arrays leave for the sparse kernels.
#pragma once
#include <core/array.h>

namespace ox {

// A(subs) of a sparse array as a new sparse array, not handed over.
oxArray *reference_sparse(const oxArray *a, kwSize nsubs, const oxArray *const *subs);

// A(subs) = rhs into a sparse array.
void assign_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs,
                   bool resize_only);
// A(subs) = [] of a sparse array.
void delete_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs);

} // namespace ox
