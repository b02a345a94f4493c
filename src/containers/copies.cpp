// Copies: by reference, with shared data, deep, empty, as a skeleton, and by claiming the data.
#include <containers/copies.h>
#include <containers/object_layer.h>
#include <containers/slots.h>
#include <containers/unshare.h>
#include <core/array_list.h>
#include <core/destroy.h>
#include <core/header_copy.h>
#include <ox/sharing.h>

namespace ox {
namespace {

// A header copy that has no data of its own yet, and none to release.
class BareCopy {
public:
    BareCopy(const oxArray *a, uint32_t clear, CopyDims dims) : a_(copy_header(a, clear, dims)) {}
    BareCopy(const BareCopy &) = delete;
    BareCopy &operator=(const BareCopy &) = delete;
    ~BareCopy() {
        if (a_) discard_header(a_);
    }
    explicit operator bool() const { return a_ != nullptr; }
    oxArray *operator->() const { return a_; }
    oxArray *get() const { return a_; }
    oxArray *release() { return std::exchange(a_, nullptr); }

private:
    oxArray *a_;
};

// Room for one element, so that the data word of a sparse array is never null.
bool attach_empty_sparse(oxArray *a) {
    auto jc = RawArray<kwIndex>::zeroed(1), ir = RawArray<kwIndex>::zeroed(1);
    RawBlock pr(
        static_cast<unsigned char *>(oxCallocEx(1, class_info(a->class_code).element_size)));
    if (!jc || !ir || !pr) return false;
    a->num.pdata = pr.release();
    a->num.ir = ir.release();
    a->num.jc = jc.release();
    a->num.nzmax = 1;
    return true;
}

kwSize storage_elements(const oxArray *a) {
    if (is_sparse(a)) return a->num.nzmax;
    return is_container(a) ? slot_count(a) : a->get_number_of_elements();
}

// Release looks into the elements of these classes, so even undefined contents are zeros there.
bool release_reads_elements(const oxArray *a) {
    return is_container(a) || a->class_code == oxFUNCTION_CLASS || a->class_code == oxOPAQUE_CLASS;
}

RawBlock undefined_storage(const oxArray *a) {
    const kwSize n = storage_elements(a), size = oxGetElementSize(a);
    return RawBlock(static_cast<unsigned char *>(release_reads_elements(a) ? oxCallocEx(n, size)
                                                                           : oxMallocEx(n * size)));
}

// A source that others hold, too, lives on beside dst, which is then one array more.
bool move_or_share(oxArray *dst, oxArray *src) {
    const bool shares = src && src != dst && src->reference_count > 0;
    if (!move_onto_header(dst, src)) return false;
    if (shares) notify_object_copy(dst, src);
    return true;
}

} // namespace

oxArray *shared_copy(const oxArray *a) {
    ArrayGuard copy(share_header(const_cast<oxArray *>(a)));
    if (!copy) return nullptr;
    notify_object_copy(copy.get(), a);
    return copy.release();
}

oxArray *deep_copy(const oxArray *a) {
    ArrayGuard copy(shared_copy(a));
    if (!copy || !own_storage(copy.get())) return nullptr;
    return copy.release();
}

oxArray *empty_copy(const oxArray *a) {
    if (a->class_code == oxOPAQUE_CLASS && a->is_indexing_opaque())
        return oxCreateOpaqueGiblet(a->opaque.info);
    BareCopy copy(a, empty_copy_clears, CopyDims::zero);
    if (!copy) return nullptr;
    if (is_sparse(a)) {
        if (!attach_empty_sparse(copy.get())) return nullptr;
    } else {
        copy->num.pdata = nullptr;
    }
    if (is_numeric(a)) copy->num.pimag = nullptr;
    notify_object_copy(copy.get(), a);
    return copy.release();
}

// Deliberate: the index vectors of a sparse copy are those of a although the two are in no ring;
// the caller replaces them before either array is destroyed.
oxArray *skeleton_copy(const oxArray *a, bool complex) {
    RawBlock real, imaginary;
    if (storage_elements(a) * oxGetElementSize(a) != 0) {
        real = undefined_storage(a);
        if (!real) return nullptr;
        complex = complex && is_numeric(a);
        if (complex) imaginary = undefined_storage(a);
        if (complex && !imaginary) return nullptr;
    }
    BareCopy copy(a, copy_clears, CopyDims::same);
    if (!copy) return nullptr;
    copy->num.pdata = real.get();
    if (is_numeric(a)) copy->num.pimag = imaginary.get();
    notify_object_copy(copy.get(), a);
    real.release();
    imaginary.release();
    return copy.release();
}

} // namespace ox

using namespace ox;

extern "C" {

void oxIncRefCount(oxArray *a) {
    a->set_flag(oxFLAG_REUSABLE, false);
    ++a->reference_count;
}

oxArray *oxCreateReference(oxArray *a) {
    if (a) oxIncRefCount(a);
    return a;
}

uint32_t oxGetReferenceCount(const oxArray *a) { return a->reference_count; }

void oxSetReferenceCount(oxArray *a, uint32_t count) {
    a->set_flag(oxFLAG_REUSABLE, false);
    a->reference_count = count;
}

oxArray *oxCreateSharedCopy(oxArray *a) { return array_hooks.temporary_copy(a); }

oxArray *oxCreateSharedDataCopy(const oxArray *a) {
    return a ? hand_over(shared_copy(a)) : nullptr;
}

// Once there is a list, the copy goes on it before its storage is made: if that fails, the copy is
// a temporary that still shares a's data.
oxArray *oxCreateDeepCopy(const oxArray *a) {
    if (!a) return nullptr;
    if (!array_hooks.created) return deep_copy(a);
    oxArray *copy = hand_over(shared_copy(a));
    if (!own_storage(copy)) return hand_over(nullptr);
    return copy;
}

oxArray *oxDuplicateArray(const oxArray *a) { return oxCreateDeepCopy(a); }

oxArray *oxCreateEmptyCopy(const oxArray *a) { return a ? hand_over(empty_copy(a)) : nullptr; }

oxArray *oxCreateSkeletonCopy(const oxArray *a, int complex) {
    return a ? hand_over(skeleton_copy(a, complex == oxCOMPLEX)) : nullptr;
}

// Releasing what a shares leaves the data with the copy; the ring, if there is more of it, stays
// whole.
oxArray *oxCreateClaimedDataCopy(oxArray *a) {
    if (!a) return nullptr;
    const bool reusable = a->has_flag(oxFLAG_REUSABLE); // sharing clears it
    oxArray *copy = hand_over(shared_copy(a));
    if (!copy || !reusable) return copy;
    release_contents(a);
    const int scope = a->scope;
    *a = oxArray{};
    a->scope = scope;
    a->ndims = 2;
    a->set_flag(oxFLAG_REUSABLE, true);
    return copy;
}

void oxMoveArrayOntoHeader(oxArray *dst, oxArray *src) {
    if (!move_or_share(dst, src)) hand_over(nullptr);
}

void oxMoveCopyOntoHeader(oxArray *dst, oxArray *src) {
    if (dst == src) return;
    oxCreateReference(src);
    if (move_or_share(dst, src)) return;
    oxDestroyArray(src);
    hand_over(nullptr);
}

} // extern "C"
