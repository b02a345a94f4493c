// Where operations on sparse arrays leave for the sparse kernels.
#include <containers/unshare.h>
#include <core/destroy.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <index/growth.h>
#include <index/operands/shapes.h>
#include <index/sparse_route.h>
#include <ox.h>
#include <sparse/assign.h>
#include <sparse/reference.h>
#include <sparse/resize.h>

namespace ox {

namespace {

kwSize folded(const kwSize *dims, kwSize ndims) {
    kwSize n = 1;
    for (kwSize k = 1; k < ndims; ++k) n = saturating_multiply(n, dims[k]);
    return n;
}

kwSize extent_of(const oxArray *a, kwSize k, kwSize nsubs) {
    if (nsubs == 1) return saturating_multiply(rows(a), cols(a));
    return k == 0 ? rows(a) : k == 1 ? cols(a) : 1;
}

oxArray *reference_linear(const oxArray *a, const oxArray *sub) {
    Subscript s;
    Extents dims;
    const kwSize extent = extent_of(a, 0, 1);
    s.read_or_raise(sub, extent);
    if (!s.inside(extent)) oxHandleSubscriptError(2);
    linear_reference_shape(a, sub, s, dims);
    return sparse_linear_reference(a, s, dims[0], folded(dims.get(), dims.size()));
}

// Positions that the subscripts beyond the second select, all of them the first.
kwSize pages(const SubscriptSet &s) {
    kwSize times = 1;
    for (kwSize k = 2; k < s.size(); ++k) times = saturating_multiply(times, s[k].count);
    return times;
}

// Gives a the dimensions that subscripts and right-hand side alone decide; ':' then means the whole
// of its new extent.
void take_size(oxArray *a, const Extents &dims, SubscriptSet &s) {
    resize_sparse(a, dims.get(), dims.size());
    for (kwSize k = 0; k < s.size(); ++k)
        if (s[k].colon_character) s[k].set_all(extent_of(a, k, s.size()));
}

void grow(oxArray *a, const SubscriptSet &s) {
    Extents largest(s.size()), dims;
    for (kwSize k = 0; k < s.size(); ++k) largest[k] = s[k].max;
    if (grown_dimensions(a, largest.get(), s.size(), dims))
        resize_sparse(a, dims.get(), dims.size());
}

void check_shape(const SubscriptSet &s, const oxArray *rhs) {
    Extents counts(s.size());
    for (kwSize k = 0; k < s.size(); ++k) counts[k] = s[k].count;
    raise_shape_fault(match_assignment(counts.get(), s.size(), rhs));
}

spStatus store(oxArray *a, SubscriptSet &s, oxArray *rhs) {
    if (s.size() == 1) return sparse_assign_linear(a, rhs, s[0]);
    for (kwSize k = 2; k < s.size(); ++k)
        if (!s[k].inside(1)) return spOutOfBounds;
    if (pages(s) != 1 && rhs->get_number_of_elements() != 1) return spDimMismatch;
    return sparse_assign_block(a, rhs, s[0], s[1]);
}

// What is left when everything goes: the dimension of subscript k becomes 0.
void delete_all(oxArray *a, kwSize nsubs, kwSize k) {
    kwSize dims[2] = {rows(a), cols(a)};
    if (nsubs == 1)
        dims[0] = dims[1] = 0;
    else
        dims[k == 0 || k == nsubs ? 0 : 1] = 0;
    resize_sparse(a, dims, 2);
}

spStatus delete_columns(oxArray *a, const Subscript &s) {
    auto list = RawArray<kwIndex>::make(s.count + 1);
    if (!list) raise_out_of_memory();
    s.copy_positions(list.get());
    return sparse_delete_columns(a, {nullptr, list.get(), s.count});
}

} // namespace

// Deliberate: unlike a full result, a sparse one keeps an imaginary part that is zero.
oxArray *reference_sparse(const oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    if (nsubs == 1) return reference_linear(a, subs[0]);
    oxArray *result = nullptr;
    oxHandleSparseSubscriptError(sparse_reference(a, nsubs, subs, &result));
    return result;
}

void assign_sparse(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs,
                   bool resize_only) {
    SubscriptSet s(nsubs);
    const bool all_zero = rows(a) == 0 && cols(a) == 0;
    const bool scalar = rhs->get_number_of_elements() == 1;
    for (kwSize k = 0; k < nsubs; ++k)
        s[k].read_or_raise(subs[k], all_zero ? 0 : extent_of(a, k, nsubs));
    for (const Subscript &x : s)
        if (scalar && (x.is_none() || (!all_zero && x.count == 0))) return;
    Extents dims(a->get_dimensions(), a->ndims);
    if (all_zero)
        dimensions_from_rhs(s, rhs, dims);
    else if (!scalar)
        check_shape(s, rhs);
    const bool copies = !resize_only && rhs->get_number_of_elements() != 0;
    auto *b = const_cast<oxArray *>(rhs);
    ArrayGuard converted; // before anything of a changes
    if (copies && b->class_code != a->class_code)
        converted.reset(b = oxMustBe(b, static_cast<oxClassID>(a->class_code)));
    if (all_zero) take_size(a, dims, s);
    copies ? oxHandleSparseSubscriptError(store(a, s, b)) : grow(a, s);
}

void delete_sparse(oxArray *a, kwSize nsubs, kwSize k, const oxArray *sub) {
    if (k == nsubs) return delete_all(a, nsubs, k);
    Subscript s;
    const kwSize extent = extent_of(a, k, nsubs);
    s.read_or_raise(sub, extent);
    if (!s.inside(extent)) oxErrMsg(FSUBSDELDIMMISMATCH);
    if (s.is_none()) return oxClearScalarDoubleFlag(a);
    if (nsubs > 1 && k > 1) return delete_all(a, nsubs, 1);
    oxHandleSparseSubscriptError(nsubs == 1 ? sparse_delete_linear(a, s)
                                 : k == 0   ? sparse_delete_rows(a, s)
                                            : delete_columns(a, s));
}

void resize_sparse(oxArray *a, const kwSize *dims, kwSize ndims) {
    if (!own_storage(a) || !sparse_resize(a, dims[0], folded(dims, ndims))) raise_out_of_memory();
    oxSetScalarDoubleFlagIfAppropiate(a);
}

} // namespace ox
