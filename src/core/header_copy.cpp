// Copying a header, and moving one array onto another's header.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/destroy.h>
#include <core/header_copy.h>
#include <core/name_index.h>
#include <core/ring.h>

#include <cstring>

namespace ox {
namespace {

constexpr uint32_t kept_by_target = oxFLAG_LIST_MARK | oxFLAG_HEADER_KEPT;

// Gives a a dimension vector of its own with the contents of dims; false without memory.
bool own_dimensions(oxArray *a, const kwSize *dims) {
    auto *own = static_cast<kwSize *>(oxMallocEx(a->ndims * sizeof(kwSize)));
    if (!own) return false;
    std::memcpy(own, dims, a->ndims * sizeof(kwSize));
    a->dim_vector = own;
    return true;
}

// Replaces everything but what belongs to the target header itself.
void overwrite(oxArray *dst, const oxArray &fields) {
    const oxArray kept = *dst;
    *dst = fields;
    dst->scope = kept.scope;
    dst->reference_count = kept.reference_count;
    dst->flag_word = (fields.flag_word & ~kept_by_target) | (kept.flag_word & kept_by_target);
    dst->cross_link = nullptr;
    dst->dim32 = nullptr;
}

void consume(oxArray *dst, oxArray *src) {
    release_contents(dst);
    if (array_hooks.leave) array_hooks.leave(src);
    overwrite(dst, *src);
    if (src->cross_link) ring_replace(src, dst);
    free_dim32(src);
    free_header(src);
}

} // namespace

oxArray *copy_header(const oxArray *src, uint32_t clear, CopyDims dims) {
    oxArray *a = allocate_header();
    if (!a) return nullptr;
    *a = *src;
    a->cross_link = nullptr;
    a->dim32 = nullptr;
    a->reference_count = 0;
    a->scope = oxSCOPE_NONE;
    a->flag_word &= ~clear;
    if (dims == CopyDims::zero) {
        a->ndims = 2;
        a->mn[0] = a->mn[1] = 0;
    } else if (a->ndims > 2 && !own_dimensions(a, src->dim_vector)) {
        free_header(a);
        return nullptr;
    }
    if (is_struct_like(a) && a->record.names) ++a->record.names->reference_count;
    return a;
}

oxArray *share_header(oxArray *src) {
    oxArray *a = copy_header(src, copy_clears);
    if (!a || !(a->num.pdata || (is_numeric(a) && a->num.pimag))) return a;
    if (!src->is_indexing_opaque()) {
        ring_link_after(src, a);
        return a;
    }
    try {
        if (src->opaque.info) src->opaque.info->share(src, a);
    } catch (...) {
        discard_header(a);
        throw;
    }
    return a;
}

// The source still holds the table, so its count cannot reach zero here.
void discard_header(oxArray *a) {
    if (a->ndims > 2) oxFreeEx(a->dim_vector);
    if (is_struct_like(a) && a->record.names) --a->record.names->reference_count;
    free_header(a);
}

bool move_onto_header(oxArray *dst, oxArray *src) {
    if (dst == src) return true;
    if (!src) {
        release_contents(dst);
        oxArray nothing{};
        nothing.ndims = 2;
        overwrite(dst, nothing);
        return true;
    }
    if (src->reference_count == 0) {
        consume(dst, src);
        return true;
    }
    oxArray *sharer = share_header(src);
    if (!sharer) return false;
    --src->reference_count;
    consume(dst, sharer);
    return true;
}

} // namespace ox
