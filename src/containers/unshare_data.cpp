// Private storage for a header that shares its data: one operation per kind of class.
#include <containers/copies.h>
#include <containers/object_layer.h>
#include <containers/slots.h>
#include <containers/unshare.h>
#include <core/array_list.h>
#include <core/dispatch.h>
#include <core/imaginary.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

// A block of `room` bytes that starts with the first `used` of source; none for none. False
// without memory.
bool copy_block(const void *source, kwSize room, kwSize used, RawBlock &copy) {
    if (!source || room == 0) return true;
    copy = RawBlock::make(room);
    if (copy) std::memcpy(copy.get(), source, used);
    return static_cast<bool>(copy);
}

// The function-handle elements copied so far; given back to the layer unless release() is called.
class HandleBlock {
public:
    explicit HandleBlock(kwSize n) : block_(RawArray<Bytes32>::make(n)) {}
    HandleBlock(const HandleBlock &) = delete;
    HandleBlock &operator=(const HandleBlock &) = delete;
    ~HandleBlock() {
        auto *give_back = object_layer().fh_release_element;
        while (give_back && block_ && done_ > 0) give_back(&block_[--done_]);
    }
    explicit operator bool() const { return static_cast<bool>(block_); }
    bool copy(const Bytes32 &source) {
        block_[done_] = source;
        auto *copy_element = object_layer().fh_copy_element;
        if (copy_element && !copy_element(&block_[done_], &source)) return false;
        ++done_;
        return true;
    }
    Bytes32 *release() { return block_.release(); }

private:
    RawArray<Bytes32> block_;
    kwSize done_ = 0;
};

// The payload copies of an opaque array under construction. A class releases whole arrays only, so
// an unfinished block is released through a stand-in for the array that it was meant for.
class PayloadBlock {
public:
    PayloadBlock(const oxArray *a, kwSize n) : stand_in_(*a), block_(RawArray<void *>::zeroed(n)) {}
    PayloadBlock(const PayloadBlock &) = delete;
    PayloadBlock &operator=(const PayloadBlock &) = delete;
    ~PayloadBlock() {
        if (!block_) return;
        stand_in_.opaque.giblet = block_.get();
        stand_in_.opaque.info->release(&stand_in_);
    }
    explicit operator bool() const { return static_cast<bool>(block_); }
    void *&operator[](kwSize i) const { return block_[i]; }
    void **release() { return block_.release(); }

private:
    oxArray stand_in_;
    RawArray<void *> block_;
};

} // namespace

// Of a sparse array the capacity is allocated and the used part copied. The imaginary marker is no
// block: the copy is marked as well.
bool unshare_numbers(oxArray *a) {
    const bool sparse = is_sparse(a);
    if (sparse && !a->num.pdata) return true;
    const kwSize size = class_info(a->class_code).element_size;
    const kwSize n = sparse ? cols(a) : 0;
    const kwSize used = sparse ? a->num.jc[n] : a->get_number_of_elements();
    const kwSize room = sparse ? std::max({a->num.nzmax, used, kwSize{1}}) : used;

    RawBlock pr, pi, ir, jc;
    const bool own_imag = has_imag_block(a);
    if (!copy_block(a->num.pdata, room * size, used * size, pr)) return false;
    if (own_imag && !copy_block(a->num.pimag, room * size, used * size, pi)) return false;
    if (sparse && !copy_block(a->num.ir, room * sizeof(kwIndex), used * sizeof(kwIndex), ir))
        return false;
    if (sparse && !copy_block(a->num.jc, (n + 1) * sizeof(kwIndex), (n + 1) * sizeof(kwIndex), jc))
        return false;

    a->num.pdata = pr.release();
    if (own_imag) a->num.pimag = pi.release();
    if (sparse) {
        a->num.ir = reinterpret_cast<kwIndex *>(ir.release());
        a->num.jc = reinterpret_cast<kwIndex *>(jc.release());
    }
    return true;
}

bool unshare_slots(oxArray *a) {
    const kwSize n = slot_count(a);
    if (!a->cell.slots || n == 0) {
        a->cell.slots = nullptr;
        return true;
    }
    SlotBlock copies(n);
    if (!copies) return false;
    for (kwSize i = 0; i < n; ++i) {
        oxArray *copy = nullptr;
        if (a->cell.slots[i]) {
            copy = deep_copy(a->cell.slots[i]);
            if (!copy) return false;
        }
        copies.push(contained(copy));
    }
    a->cell.slots = copies.release();
    return true;
}

bool unshare_handles(oxArray *a) {
    const kwSize n = a->get_number_of_elements();
    if (!a->num.pdata || n == 0) {
        a->num.pdata = nullptr;
        return true;
    }
    HandleBlock copies(n);
    if (!copies) return false;
    for (kwSize i = 0; i < n; ++i)
        if (!copies.copy(data<Bytes32>(a)[i])) return false;
    a->num.pdata = copies.release();
    return true;
}

// An indexing-opaque array keeps its payload: its class shared it when the copy was made.
bool unshare_opaque(oxArray *a) {
    if (a->is_indexing_opaque() || !a->opaque.giblet) return true;
    if (!a->opaque.info) raise_layer_missing("opaque");
    const kwSize n = a->get_number_of_elements();
    if (n == 0) {
        a->opaque.giblet = nullptr;
        return true;
    }
    PayloadBlock copies(a, n);
    if (!copies) return false;
    auto *sources = static_cast<void **>(a->opaque.giblet);
    for (kwSize i = 0; i < n; ++i)
        if (!a->opaque.info->copy_element(&copies[i], sources[i])) return false;
    a->opaque.giblet = copies.release();
    return true;
}

} // namespace ox
