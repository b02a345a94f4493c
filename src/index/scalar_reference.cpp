// Counting what a subscript selects, and the position of one element.
#include <containers/field_table.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <index/growth.h>
#include <index/operands/positions.h>
#include <ox.h>

namespace ox {

namespace {

kwSize colon_count(const oxArray *a, kwSize k, kwSize nsubs) {
    const kwSize *dims = a->get_dimensions();
    if (k > a->ndims) return a->get_number_of_elements() != 0;
    return effective_extent(dims, a->ndims, k - 1, nsubs);
}

// The one-based position that a scalar subscript means.
kwSize scalar_position(const oxArray *sub) {
    Subscript s;
    const bool scalar = sub->get_number_of_elements() == 1 && !is_colon_character(sub) &&
                        !sub->has_flag(oxFLAG_COLON);
    const SubscriptFault fault = scalar ? s.read(sub, 0) : SubscriptFault::not_integer;
    if (fault == SubscriptFault::no_memory) raise_out_of_memory();
    if (fault != SubscriptFault::none || s.is_none())
        oxErrMsgIdAndTxt("VELTRO:cellIndexIsZero", "Cell contents indices must be greater than 0");
    return s.max;
}

// One-based positions of all subscripts; a single one of an array with less than two rows counts
// along its row.
void scalar_positions(const oxArray *a, kwSize nsubs, const oxArray *const *subs, Extents &at) {
    if (nsubs == 0) raise_no_subscripts();
    at.resize(nsubs);
    for (kwSize k = 0; k < nsubs; ++k) at[k] = scalar_position(subs[k]);
    if (nsubs == 1 && a->get_dimensions()[0] < 2) at.assign(kwSize{1}, at[0]);
}

bool all_inside(const oxArray *a, const Extents &at) {
    for (kwSize k = 0; k < at.size(); ++k)
        if (at[k] > effective_extent(a->get_dimensions(), a->ndims, k, at.size())) return false;
    return true;
}

// How far the leading index reaches: the fields of a struct, one place otherwise.
kwSize leading_extent(const oxArray *a) {
    const kwSize fields = is_struct_like(a) ? static_cast<kwSize>(field_count(a)) : 0;
    return fields ? fields : 1;
}

kwSize offset_of(const oxArray *a, const Extents &at, kwSize leading) {
    kwSize offset = leading ? leading - 1 : 0, stride = leading ? leading_extent(a) : 1;
    for (kwSize k = 0; k < at.size(); ++k) {
        offset += (at[k] - 1) * stride;
        stride *= effective_extent(a->get_dimensions(), a->ndims, k, at.size());
    }
    return offset;
}

} // namespace
} // namespace ox

using namespace ox;

bool oxSubsCount(const oxArray *a, const oxArray *sub, kwSize k, kwSize nsubs, kwSize *count) {
    *count = 0;
    if (is_colon_character(sub))
        *count = ox::colon_count(a, k, nsubs);
    else if (sub->has_flag(oxFLAG_COLON))
        *count = oxCountIntColonObj(sub);
    else if (sub->class_code == oxLOGICAL_CLASS && !is_sparse(sub))
        *count = count_true(data<uint8_t>(sub), sub->get_number_of_elements());
    else if (sub->class_code == oxLOGICAL_CLASS || sub->is_char() || is_complex(sub))
        *count = sub->get_number_of_elements(); // of a sparse mask all, not the true ones
    else
        return false;
    return true;
}

kwSize oxScalarRefConst(const oxArray *a, kwSize nsubs, const oxArray *subs[],
                        kwSize leadingIndex) {
    Extents at;
    scalar_positions(a, nsubs, subs, at);
    if (leadingIndex > leading_extent(a) || !all_inside(a, at)) oxHandleSubscriptError(2);
    return offset_of(a, at, leadingIndex);
}

kwSize oxScalarRef(oxArray *a, kwSize nsubs, const oxArray *subs[], kwSize leadingIndex,
                   bool *growFlag) {
    Extents at, dims;
    scalar_positions(a, nsubs, subs, at);
    if (leadingIndex > leading_extent(a)) oxHandleSubscriptError(2); // fields do not grow this way
    const bool grows = !all_inside(a, at);
    if (grows && grown_dimensions(a, at.get(), at.size(), dims)) resize_array(a, dims, nullptr);
    if (growFlag) *growFlag = grows;
    return offset_of(a, at, leadingIndex);
}
