// The shapes that subscripts make: of A(I), and whether a right-hand side fits an assignment.
#pragma once
#include <index/operands/extents.h>
#include <index/operands/subscript.h>

namespace ox {

// Exactly one dimension differs from 1; *k is that dimension.
bool is_vector_shape(const oxArray *a, kwSize *k);

// The dimensions of A(I) with one subscript: ':' gives a column, vectors keep the orientation of A
// where A has one, anything else takes the shape of the subscript.
void linear_reference_shape(const oxArray *a, const oxArray *sub, const Subscript &s,
                            Extents &dims);

enum class ShapeFault {
    none,
    elements, // A(:) = B with another number of elements
    sizes,    // a size differs
    fewer,    // B has fewer non-singleton dimensions than there are such subscripts
    more,
};
// Whether rhs, not a scalar, fits subscripts of these counts.
ShapeFault match_assignment(const kwSize *counts, kwSize nsubs, const oxArray *rhs);
// Raises what the fault stands for; nothing for none.
void raise_shape_fault(ShapeFault fault);

} // namespace ox
