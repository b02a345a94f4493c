// Subscripted reference: subscripts to a selection, the shape of the result, and the gather.
#include <containers/copies.h>
#include <containers/object_layer.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/destroy.h>
#include <core/dispatch.h>
#include <core/header_copy.h>
#include <core/imaginary.h>
#include <core/size_check.h>
#include <errors/raise.h>
#include <index/elements.h>
#include <index/gather.h>
#include <index/operands/colon_range.h>
#include <index/operands/shapes.h>
#include <index/reference.h>
#include <index/scalar_subscripts.h>
#include <index/sparse_route.h>
#include <ox.h>

namespace ox {

namespace {

// A new array of a's class and attributes, without data, that may be destroyed as any other.
oxArray *make_result(const oxArray *a) {
    oxArray *result = empty_copy(a);
    if (!result) raise_out_of_memory();
    result->set_flag(oxFLAG_HEADER_KEPT | oxFLAG_COLON, false);
    return result;
}

// Reads every subscript in turn, so that the first bad one is the one that raises.
void read_inside(const oxArray *a, SubscriptSet &s, const oxArray *const *subs, Extents &extents) {
    const kwSize *dims = a->get_dimensions();
    for (kwSize k = 0; k < s.size(); ++k) {
        extents[k] = effective_extent(dims, a->ndims, k, s.size());
        s[k].read_or_raise(subs[k], extents[k]);
        if (!s[k].inside(extents[k]) && !a->is_indexing_opaque()) oxHandleSubscriptError(2);
    }
}

void result_shape(const oxArray *a, const SubscriptSet &s, const oxArray *const *subs,
                  Extents &dims) {
    if (s.size() == 1) return linear_reference_shape(a, subs[0], s[0], dims);
    dims.resize(s.size());
    for (kwSize k = 0; k < s.size(); ++k) dims[k] = s[k].count;
    dims.trim();
}

void store_shape(oxArray *a, const Extents &dims) {
    if (store_dimensions(a, dims.size(), dims.get()) != 0) raise_out_of_memory();
}

// Classes that do their own indexing get positions and counts, ':' as a null list.
oxArray *reference_opaque(const oxArray *a, SubscriptSet &s, const Extents &dims) {
    ArrayGuard result(make_result(a));
    store_shape(result.get(), dims);
    auto lists = RawArray<RawArray<kwIndex>>::zeroed(s.size());
    auto pointers = RawArray<const kwIndex *>::zeroed(s.size());
    Extents counts(s.size());
    if (!lists || !pointers) raise_out_of_memory();
    struct FreeLists {
        RawArray<kwIndex> *p;
        kwSize n;
        ~FreeLists() {
            while (n > 0) p[--n].reset();
        }
    } const free_lists{lists.get(), s.size()};
    for (kwSize k = 0; k < s.size(); ++k) {
        counts[k] = s[k].count;
        if (s[k].is_all() || s[k].is_none()) continue;
        lists[k] = RawArray<kwIndex>::make(s[k].count);
        if (!lists[k]) raise_out_of_memory();
        s[k].copy_positions(lists[k].get());
        pointers[k] = lists[k].get();
    }
    if (!a->opaque.info) raise_layer_missing("opaque");
    a->opaque.info->reference(a, s.size(), pointers.get(), counts.get(), result.get());
    return result.release();
}

// A(i) and A(i, j) of a real full array: one header, one element.
oxArray *reference_element(const oxArray *a, kwSize position) {
    const kwSize width = class_info(a->class_code).element_size;
    oxArray *result = allocate_header();
    void *element = result ? oxMallocEx(width) : nullptr;
    if (!element) {
        free_header(result);
        raise_out_of_memory();
    }
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        *static_cast<T *>(element) = data<T>(a)[position];
    });
    result->reserved = a->reserved;
    result->class_code = a->class_code;
    result->flag_word = a->flag_word & ~(empty_copy_clears | oxFLAG_HEADER_KEPT);
    result->set_flag(oxFLAG_SCALAR_DOUBLE, a->class_code == oxDOUBLE_CLASS);
    result->ndims = 2;
    result->mn[0] = result->mn[1] = 1;
    result->num.pdata = element;
    return result;
}

} // namespace

oxArray *gather_array(const oxArray *a, const Selection &from, const Extents &dims) {
    ArrayGuard result(make_result(a));
    const ElementLayout layout = element_layout(a);
    const kwSize parts = from.count;
    if (parts != 0 && layout.width != 0 && a->num.pdata) {
        RawBlock block = RawBlock::make(saturating_multiply(parts, layout.width)), imag_block;
        if (!block) raise_out_of_memory();
        gather(block.get(), a->num.pdata, layout.width, from);
        if (has_imag_block(a)) {
            imag_block = RawBlock::make(parts * layout.width);
            if (!imag_block) raise_out_of_memory();
            gather(imag_block.get(), a->num.pimag, layout.width, from);
        }
        if (!elements_are_bytes(a)) own_copied_elements(a, block.get(), parts);
        result->num.pdata = block.release();
        if (imag_block) result->num.pimag = imag_block.release();
    }
    store_shape(result.get(), dims);
    oxFreeImagIfZero(result.get());
    oxSetScalarDoubleFlagIfAppropiate(result.get());
    notify_object_copy(result.get(), a);
    return result.release();
}

namespace {

// Kept apart, so that single elements do not pay for its frame.
[[gnu::noinline]] oxArray *reference_any(const oxArray *a, kwSize nsubs,
                                         const oxArray *const *subs) {
    if (nsubs == 0) {
        oxArray *copy = shared_copy(a);
        if (!copy) raise_out_of_memory();
        return copy;
    }
    if (is_sparse(a)) return reference_sparse(a, nsubs, subs);
    if (a->has_flag(oxFLAG_COLON)) {
        const ArrayGuard expanded(expand_colon(a));
        if (!expanded) raise_out_of_memory();
        return reference(expanded.get(), nsubs, subs);
    }
    SubscriptSet s(nsubs);
    Extents extents(nsubs), counts(nsubs), dims;
    read_inside(a, s, subs, extents);
    for (kwSize k = 0; k < nsubs; ++k) counts[k] = s[k].count;
    oxCheckDim(counts.get(), nsubs, oxGetElementSize(a));
    result_shape(a, s, subs, dims);
    if (a->is_indexing_opaque()) return reference_opaque(a, s, dims);
    return gather_array(a, Selection(s, extents.get(), element_layout(a).parts), dims);
}

} // namespace

oxArray *reference(const oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    kwSize position;
    if (is_plain_array(a) && plain_element(a, nsubs, subs, &position))
        return reference_element(a, position);
    return reference_any(a, nsubs, subs);
}

} // namespace ox

using namespace ox;

oxArray *oxSubscriptedReference(const oxArray *a, kwSize nsubs, const oxArray *subs[]) {
    if (is_struct_like(a)) return oxStructureReference(a, nsubs, subs);
    return hand_over(reference(a, nsubs, subs));
}

oxArray *oxStructureReference(const oxArray *a, kwSize nsubs, const oxArray *subs[]) {
    const auto of_layer = object_layer().structure_reference;
    if (a->class_code == oxOBJECT_CLASS && of_layer) return of_layer(a, nsubs, subs);
    return hand_over(reference(a, nsubs, subs));
}
