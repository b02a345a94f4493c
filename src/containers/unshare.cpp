// Making a header the sole owner of its storage before it is changed.
#include <containers/slots.h>
#include <containers/unshare.h>
#include <core/array_list.h>
#include <core/imaginary.h>
#include <core/ring.h>
#include <ox/sharing.h>

#include <cstring>

namespace ox {
namespace {

bool unshare_data(oxArray *a) { return class_ops[class_index(a->class_code)].unshare_data(a); }

// A private block must never be freed by the library, so its mark goes to a header that keeps the
// block whenever the marked one gets storage of its own.
void hand_on_private_mark(oxArray *a) {
    if (!a->is_private_data()) return;
    a->set_private_data(false);
    a->cross_link->set_private_data(true);
}

void take_private_mark(oxArray *a) {
    bool marked = a->is_private_data();
    ring_for_others(a, [&](oxArray *p) {
        marked = marked || p->is_private_data();
        p->set_private_data(false);
    });
    a->set_private_data(marked);
}

void take_storage_of(oxArray *a, const oxArray *b, bool imaginary) {
    a->num.pdata = b->num.pdata;
    if (imaginary) a->num.pimag = b->num.pimag;
    if (!is_sparse(a)) return;
    a->num.ir = b->num.ir;
    a->num.jc = b->num.jc;
    a->num.nzmax = b->num.nzmax;
}

// The header to write to: a when nobody else refers to it, else a sharer in its place. Then its
// storage is made its own; if that fails, a is as it was and the hook gets null.
template<class Own> oxArray *sole_owner(oxArray *a, Own own) {
    oxArray *h = a->reference_count > 0 ? array_hooks.replace_by_copy(a) : a;
    if (h && own(h)) return h;
    if (h && h != a) {
        oxIncRefCount(a);
        oxDestroyArray(h);
    }
    return hand_over(nullptr);
}

} // namespace

bool own_slots(oxArray *a) {
    if (!a->cross_link) return true;
    const kwSize n = a->cell.slots ? slot_count(a) : 0;
    auto slots = RawArray<oxArray *>::make(n);
    if (n > 0 && !slots) return false;
    if (n > 0) std::memcpy(slots.get(), a->cell.slots, n * sizeof(oxArray *));
    for_each_element(a, [](oxArray *element) { oxIncRefCount(element); });
    a->cell.slots = slots.release();
    hand_on_private_mark(a);
    ring_unlink(a);
    return true;
}

bool own_storage(oxArray *a) {
    if (!a->cross_link) return true;
    if (!unshare_data(a)) return false;
    hand_on_private_mark(a);
    ring_unlink(a);
    return true;
}

// The next member gets storage of its own, passes it on to the rest of the ring, and then takes
// a's place in it.
int unshare_others(oxArray *a) {
    oxArray *b = a->cross_link;
    if (!b) return 0;
    if (!unshare_data(b)) return 1;
    take_private_mark(a);
    ring_unlink(b);
    if (!a->cross_link) return 0;
    const bool imaginary = is_complex(a);
    ring_for_others(a, [&](oxArray *p) { take_storage_of(p, b, imaginary); });
    ring_replace(a, b);
    return 0;
}

} // namespace ox

using namespace ox;

extern "C" {

bool oxIsSharedArray(const oxArray *a) { return a && a->is_shared(); }

oxArray *oxUnreference(oxArray *a) {
    return a && a->reference_count > 0 ? array_hooks.replace_by_copy(a) : a;
}

oxArray *oxUnshare(oxArray *a) { return a && a->is_shared() ? sole_owner(a, own_storage) : a; }

oxArray *oxUnshareEx(oxArray *a) { return oxUnshare(a); }

oxArray *oxUnshareShallow(oxArray *a) {
    if (!a || !a->is_shared()) return a;
    return sole_owner(a, is_container(a) ? own_slots : own_storage);
}

oxArray *oxUnshareShallowEx(oxArray *a) { return oxUnshareShallow(a); }

bool oxUnshareArray(oxArray *a, int shallow) {
    if (!oxIsSharedArray(a)) return false;
    return (shallow ? oxUnshareShallow(a) : oxUnshare(a)) == nullptr;
}

int oxUnshareOtherArrays(oxArray *a) {
    if (!a || unshare_others(a) == 0) return 0;
    hand_over(nullptr);
    return 1;
}

oxArray *oxUnshareAndEmptyOtherArrays(oxArray *a) {
    if (!a || !a->cross_link) return nullptr;
    take_private_mark(a);
    ring_for_others(a, [](oxArray *p) {
        p->num.pdata = nullptr;
        if (is_numeric(p)) p->num.pimag = nullptr;
        oxSetM_730(p, 0);
    });
    oxArray *next = a->cross_link;
    ring_unlink(a);
    return next;
}

// The record decides, so two headers of more than two dimensions, each with a vector of its own,
// are never exact copies of one another.
bool oxIsExactSharedCopy(const oxArray *a, const oxArray *b) {
    if (a == b) return true;
    if (!a || !b) return false;
    oxArray x = *a, y = *b;
    for (oxArray *p : {&x, &y}) {
        p->reserved = nullptr;
        p->scope = oxSCOPE_NONE;
        p->cross_link = nullptr;
        p->reference_count = 0;
        p->set_flag(oxFLAG_REUSABLE, false);
    }
    return std::memcmp(&x, &y, sizeof x) == 0;
}

} // extern "C"
