// Where operations on sparse arrays leave for the sparse kernels: subscripts are read and checked
// as for full arrays, those beyond the second address dimensions of extent 1.
#pragma once
#include <core/array.h>

namespace ox {

// A(subs) of a sparse array as a new sparse array, not handed over; results of more than two
// dimensions fold into the columns.
oxArray *reference_sparse(const oxArray *a, kwSize nsubs, const oxArray *const *subs);

// A(subs) = rhs into a sparse array; with resize_only A only grows.
void assign_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs,
                   bool resize_only);

// A(subs) = [] of a sparse array, where only subscript k (nsubs: none) is not ':'.
void delete_sparse(oxArray *a, kwSize nsubs, kwSize k, const oxArray *sub);

// Gives a sparse array these dimensions; elements keep their subscripts. Raises error 18.
void resize_sparse(oxArray *a, const kwSize *dims, kwSize ndims);

} // namespace ox
