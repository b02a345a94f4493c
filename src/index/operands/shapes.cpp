// The shapes that subscripts make: of A(I), and whether a right-hand side fits an assignment.
#include <index/operands/shapes.h>

namespace ox {

bool is_vector_shape(const oxArray *a, kwSize *k) {
    const kwSize *d = a->get_dimensions();
    kwSize found = 0;
    for (kwSize i = 0; i < a->ndims; ++i)
        if (d[i] != 1) {
            ++found;
            *k = i;
        }
    return found == 1;
}

namespace {

bool is_scalar_or_nothing(const oxArray *sub) {
    return sub->ndims == 2 && sub->mn[0] == sub->mn[1] && sub->mn[0] <= 1;
}

// The rows of the shape table for logical subscripts, in their order.
void mask_shape(const oxArray *a, const oxArray *sub, kwSize n, Extents &dims) {
    kwSize k = 0;
    if (n == 0 && is_scalar_or_nothing(sub))
        dims.assign(kwSize{0}, 0);
    else if (is_vector_shape(a, &k))
        dims.orient(a->ndims, k, n);
    else if (is_vector_shape(sub, &k))
        dims.orient(sub->ndims, k, n);
    else
        dims.assign(n, 1);
}

bool is_matrix_shape(const oxArray *sub) { // at least two dimensions differ from 1
    const kwSize *d = sub->get_dimensions();
    kwSize found = 0;
    for (kwSize i = 0; i < sub->ndims; ++i) found += d[i] != 1;
    return found >= 2;
}

} // namespace

void linear_reference_shape(const oxArray *a, const oxArray *sub, const Subscript &s,
                            Extents &dims) {
    kwSize k = 0;
    if (s.colon_character)
        dims.assign(s.count, 1);
    else if (sub->has_flag(oxFLAG_COLON))
        is_vector_shape(a, &k) ? dims.orient(a->ndims, k, s.count) : dims.assign(1, s.count);
    else if (sub->class_code == oxLOGICAL_CLASS)
        mask_shape(a, sub, s.count, dims);
    else if (!is_matrix_shape(sub) && is_vector_shape(a, &k))
        dims.orient(a->ndims, k, s.count);
    else
        dims.assign(sub->get_dimensions(), sub->ndims);
    dims.trim();
}

ShapeFault match_assignment(const kwSize *counts, kwSize nsubs, const oxArray *rhs) {
    if (nsubs == 1)
        return counts[0] == rhs->get_number_of_elements() ? ShapeFault::none : ShapeFault::elements;
    const kwSize *d = rhs->get_dimensions();
    kwSize i = 0;
    for (kwSize k = 0; k < nsubs; ++k) {
        if (counts[k] == 1) continue;
        while (i < rhs->ndims && d[i] == 1) ++i;
        if (i == rhs->ndims) return ShapeFault::fewer;
        if (d[i++] != counts[k]) return ShapeFault::sizes;
    }
    for (; i < rhs->ndims; ++i)
        if (d[i] != 1) return ShapeFault::more;
    return ShapeFault::none;
}

void raise_shape_fault(ShapeFault fault) {
    constexpr const char *id = "VELTRO:subsassigndimmismatch";
    switch (fault) {
    case ShapeFault::none:
        return;
    case ShapeFault::elements:
        oxErrMsg(FSUBSASSIGNNUMELMISMATCH);
    case ShapeFault::sizes:
        oxErrMsg(FSUBSASSIGNDIMMISMATCH);
    case ShapeFault::fewer:
        oxErrMsgIdAndTxt(id, "Assignment has fewer non-singleton rhs dimensions than "
                             "non-singleton\nsubscripts");
    case ShapeFault::more:
        oxErrMsgIdAndTxt(id, "Assignment has more non-singleton rhs dimensions than "
                             "non-singleton\nsubscripts");
    }
}

} // namespace ox
