// Destroying arrays: references, the list, the ring, and then storage by class.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/check_header.h>
#include <core/class_ops.h>
#include <core/destroy.h>
#include <core/imaginary.h>
#include <core/ring.h>

#include <cassert>

namespace ox {
namespace {

// Shared storage stays with the other members, unless it is private: then a's block may vanish
// with its owner at any time, and the others get storage of their own.
// Without memory for that this raises; before there is a list, the others keep the private block.
void leave_ring(oxArray *a) {
    if (a->is_private_data()) {
        if (unshare_others(a) == 0) return;
        hand_over(nullptr);
        ring_for_others(a, [](oxArray *p) { p->set_private_data(true); });
    }
    ring_unlink(a);
    a->num.pdata = nullptr;
    if (is_numeric(a)) a->num.pimag = nullptr;
    if (is_sparse(a)) a->num.ir = a->num.jc = nullptr;
}

// Index vectors go only with data: a sparse array that was emptied beside its ring still points at
// vectors of the member that kept the data.
void free_data(oxArray *a) {
    if (a->num.pdata) {
        oxFreeEx(a->num.pdata);
        if (is_sparse(a)) {
            oxFreeEx(a->num.ir);
            oxFreeEx(a->num.jc);
        }
    }
    if (is_numeric(a)) drop_imag(a);
}

// Not under construction, and no header that an earlier destruction has kept.
[[maybe_unused]] bool in_use(const oxArray *a) {
    return a->scope != oxSCOPE_NONE && a->scope != oxSCOPE_DESTROYED;
}

} // namespace

void free_dim32(oxArray *a) {
    if (!a->dim32) return;
    oxFreeEx(a->dim32->dims);
    oxFreeEx(a->dim32);
    a->dim32 = nullptr;
}

void release_contents(oxArray *a) {
    if (a->cross_link) leave_ring(a);
    free_dim32(a);
    const bool known = a->class_code > 0 && a->class_code < class_count;
    // Compressed columns own no more than their blocks, whatever class they were given.
    const auto release = known && !is_sparse(a) ? class_ops[a->class_code].release : nullptr;
    if (release) release(a);
    if (a->ndims > 2) {
        oxFreeEx(a->dim_vector);
        a->ndims = 2;
    }
    if (known && !a->has_flag(oxFLAG_PRIVATE_DATA | oxFLAG_INDEXING_OPAQUE)) free_data(a);
}

} // namespace ox

using namespace ox;

extern "C" void oxDestroyArray(oxArray *a) {
    if (!a) return;
    if (a->reference_count > 0) {
        --a->reference_count;
        return;
    }
    assert(!in_use(a) || well_formed(a));
    if (array_hooks.leave) array_hooks.leave(a);
    if (a->has_flag(oxFLAG_HEADER_KEPT)) return;
    release_contents(a);
    free_header(a);
}
