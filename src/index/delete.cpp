// Deletion: what stays moves down in place, run by run, and the block is cut.
#include <containers/object_layer.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <index/growth.h>
#include <index/kernels.h>
#include <index/operands/positions.h>
#include <index/operands/shapes.h>
#include <index/sparse_route.h>
#include <ox.h>

namespace ox {

namespace {

// The one subscript that is not ':', or nsubs. Raises when there are two.
kwSize find_subscript(kwSize nsubs, const oxArray *const *subs) {
    kwSize found = nsubs;
    for (kwSize k = 0; k < nsubs; ++k) {
        if (is_colon_character(subs[k])) continue;
        if (found != nsubs) oxErrMsg(FBADNULLASSIGN);
        found = k;
    }
    return found;
}

bool has_no_data(const oxArray *sub) {
    return !sub->num.pdata || sub->get_number_of_elements() == 0;
}

// One dimension of an array, which is inner-by-extent-by-outer parts.
struct Slices {
    kwSize inner, extent, outer;
};

// Which positions of the dimension stay: 1 or 0 each.
struct Kept {
    RawArray<uint8_t> mask;
    kwSize count;
};

Kept complement(const Subscript &s, kwSize extent) {
    Kept kept{RawArray<uint8_t>::make(extent), 0};
    if (!kept.mask) raise_out_of_memory();
    uint8_t *mask = kept.mask.get();
    std::memset(mask, 1, extent);
    s.for_each([mask](kwIndex p) { mask[p] = 0; });
    kept.count = count_true(mask, extent);
    return kept;
}

// Calls f(begin, length) for every run of positions whose mask byte is `value`.
template<class F> void for_each_run(const Kept &kept, kwSize extent, uint8_t value, F &&f) {
    for (kwSize i = 0; i < extent;) {
        const kwSize begin = i;
        while (i < extent && kept.mask[i] == value) ++i;
        if (i > begin) f(begin, i - begin);
        while (i < extent && kept.mask[i] != value) ++i;
    }
}

void compact(void *block, kwSize width, const Slices &d, const Kept &kept) {
    auto *bytes = static_cast<unsigned char *>(block);
    if (d.inner == 1 && d.outer == 1 && width == 8) {
        auto *p = static_cast<uint64_t *>(block);
        return compress64(p, p, kept.mask.get(), d.extent, kept.count);
    }
    unsigned char *to = bytes;
    const kwSize row = d.inner * width;
    for (kwSize k = 0; k < d.outer; ++k, bytes += d.extent * row)
        for_each_run(kept, d.extent, 1, [&](kwSize begin, kwSize n) {
            std::memmove(to, bytes + begin * row, n * row);
            to += n * row;
        });
}

void release_deleted(const oxArray *a, kwSize width, const Slices &d, const Kept &kept) {
    auto *bytes = data<unsigned char>(a);
    for (kwSize k = 0; k < d.outer; ++k, bytes += d.extent * d.inner * width)
        for_each_run(kept, d.extent, 0, [&](kwSize begin, kwSize n) {
            release_elements(a, bytes + begin * d.inner * width, n * d.inner);
        });
}

// A smaller block, or the same where there is no memory for one.
void *shrink(void *block, kwSize bytes) {
    void *smaller = oxReallocEx(block, bytes);
    return smaller ? smaller : block;
}

// The dimensions of A(kept) or A(:, kept, :), as reference would make them.
void shape_after(const oxArray *a, kwSize nsubs, kwSize k, kwSize kept, Extents &dims) {
    const kwSize *old = a->get_dimensions();
    kwSize along;
    if (nsubs == 1) {
        is_vector_shape(a, &along) ? dims.orient(a->ndims, along, kept)
                                   : dims.assign(kwSize{1}, kept);
    } else {
        dims.resize(nsubs);
        for (kwSize i = 0; i < nsubs; ++i)
            dims[i] = i == k ? kept : effective_extent(old, a->ndims, i, nsubs);
    }
    dims.trim();
}

void delete_everything(oxArray *a, kwSize nsubs, kwSize k) {
    Extents dims;
    if (k < nsubs)
        shape_after(a, nsubs, k, 0, dims);
    else if (nsubs == 1)
        dims.assign(kwSize{0}, 0);
    else
        shape_after(a, nsubs, 0, 0, dims);
    resize_array(a, dims, nullptr);
    oxClearScalarDoubleFlag(a);
}

// An array without data: one dimension becomes what is kept of it.
void delete_from_nothing(oxArray *a, kwSize nsubs, kwSize k, kwSize kept) {
    Extents dims(a->get_dimensions(), a->ndims);
    if (nsubs < a->ndims) {
        shape_after(a, nsubs, k, kept, dims);
    } else {
        while (dims.size() <= k) {
            dims.resize(dims.size() + 1);
            dims[dims.size() - 1] = 1;
        }
        dims[k] = kept;
        dims.trim();
    }
    if (store_dimensions(a, dims.size(), dims.get()) != 0) raise_out_of_memory();
}

void delete_slices(oxArray *a, kwSize nsubs, kwSize k, kwSize extent, const Kept &kept) {
    const ElementLayout layout = element_layout(a);
    const kwSize *old = a->get_dimensions();
    Slices d{layout.parts, extent, 1};
    for (kwSize i = 0; i < k; ++i) d.inner *= effective_extent(old, a->ndims, i, nsubs);
    for (kwSize i = k + 1; i < nsubs; ++i) d.outer *= effective_extent(old, a->ndims, i, nsubs);
    Extents dims;
    shape_after(a, nsubs, k, kept.count, dims);
    // From here on nothing fails but storing more than two dimensions, so that comes first.
    if (!own_for_writing(a)) raise_out_of_memory();
    if (store_dimensions(a, dims.size(), dims.get()) != 0) raise_out_of_memory();
    const kwSize bytes = d.inner * kept.count * d.outer * layout.width;
    if (bytes != 0 && a->num.pdata) {
        if (!elements_are_bytes(a)) release_deleted(a, layout.width, d, kept);
        compact(a->num.pdata, layout.width, d, kept);
        if (has_imag_block(a)) compact(a->num.pimag, layout.width, d, kept);
        if (!a->is_private_data()) {
            a->num.pdata = shrink(a->num.pdata, bytes);
            if (has_imag_block(a)) a->num.pimag = shrink(a->num.pimag, bytes);
        }
    }
    oxFreeImagIfZero(a);
    oxSetScalarDoubleFlagIfAppropiate(a);
}

void erase(oxArray *a, kwSize nsubs, const oxArray *const *subs) {
    const kwSize k = find_subscript(nsubs, subs);
    if (k != nsubs && has_no_data(subs[k])) return;
    if (is_sparse(a)) return delete_sparse(a, nsubs, k, k == nsubs ? nullptr : subs[k]);
    if (k == nsubs) return delete_everything(a, nsubs, k);
    const kwSize extent = effective_extent(a->get_dimensions(), a->ndims, k, nsubs);
    Subscript s;
    s.read_or_raise(subs[k], extent);
    if (!s.inside(extent)) oxErrMsg(FSUBSDELDIMMISMATCH);
    // Deliberate: a subscript that has elements but selects nothing clears the flag, even that of
    // a 1-by-1 double.
    if (s.is_none()) return oxClearScalarDoubleFlag(a);
    const Kept kept = complement(s, extent);
    if (kept.count == 0)
        delete_everything(a, nsubs, k);
    else if (a->get_number_of_elements() == 0)
        delete_from_nothing(a, nsubs, k, kept.count);
    else
        delete_slices(a, nsubs, k, extent, kept);
}

} // namespace
} // namespace ox

using namespace ox;

void oxSubscriptedDelete(oxArray *a, kwSize nsubs, const oxArray *subs[]) {
    if (nsubs == 0) raise_no_subscripts();
    if (a->class_code == oxUNKNOWN_CLASS) oxErrMsg(FBADNULLINDEX);
    if (a->is_indexing_opaque()) {
        if (!a->opaque.info) raise_layer_missing("opaque");
        return a->opaque.info->erase(a, nsubs, subs);
    }
    oxExpandColonObj(a);
    erase(a, nsubs, subs);
}
