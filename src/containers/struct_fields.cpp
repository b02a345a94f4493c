// Adding and removing fields, and the object data of structs.
#include <containers/structs.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/position.h>
#include <errors/raise.h>

#include <algorithm>
#include <ut.h>

namespace ox {
namespace {

// Lays out k slots per element anew with one empty slot behind them; false without memory.
bool widen_slots(oxArray *a, kwSize k) {
    const kwSize elements = a->get_number_of_elements();
    const kwSize bytes =
        saturating_multiply(saturating_multiply(elements, k + 1), sizeof(oxArray *));
    auto **wide = static_cast<oxArray **>(oxMallocExCheck(bytes));
    if (!wide) return false;
    oxArray **src = a->record.slots, **dst = wide;
    for (kwSize i = 0; i < elements; ++i, src += k) {
        dst = std::copy_n(src, k, dst);
        *dst++ = nullptr;
    }
    oxFreeEx(a->record.slots);
    a->record.slots = wide;
    return true;
}

// Gives up the values of field n; those that go are null afterwards, so that a raise between two
// of them leaves the struct whole.
// Deliberate: a value that another container counts as its own, too, just loses a reference; as a
// temporary it would be destroyed under that container.
void release_values(oxArray *a, int32_t n) {
    const kwSize elements = a->record.slots ? a->get_number_of_elements() : 0;
    for (kwSize i = 0; i < elements; ++i) {
        oxArray **slot = field_slot(a, i, n);
        if (!*slot) continue;
        if ((*slot)->reference_count > 0)
            oxDestroyArray(*slot);
        else
            hand_over(*slot);
        *slot = nullptr;
    }
}

// Lays out k slots per element without slot n. A block that cannot shrink is kept.
void narrow_slots(oxArray *a, kwSize k, kwSize n) {
    if (!a->record.slots) return;
    const kwSize elements = a->get_number_of_elements();
    oxArray **dst = a->record.slots;
    for (const oxArray *const *src = dst, *const *end = src + elements * k; src != end; src += k) {
        dst = std::copy_n(const_cast<oxArray **>(src), n, dst);
        dst = std::copy(const_cast<oxArray **>(src) + n + 1, const_cast<oxArray **>(src) + k, dst);
    }
    const kwSize left = elements * (k - 1);
    void *smaller = oxReallocEx(a->record.slots, left * sizeof(oxArray *));
    if (smaller || left == 0) a->record.slots = static_cast<oxArray **>(smaller);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

// Deliberate: when the slots get no memory the name stays, so that the table has one name more than
// each element has slots; nothing repairs that.
int oxAddField(oxArray *a, const char *name) {
    const int number = oxGetFieldNumber(a, name);
    if (number >= 0) return number;
    const int k = field_count(a);
    if (!add_field_name(a, name)) return -1;
    if (a->get_number_of_elements() == 0) return k;
    return widen_slots(a, static_cast<kwSize>(k)) ? k : -1;
}

void oxAddFieldToStruct(oxArray *a, const char *name) {
    if (!oxIsValidVelName(name))
        oxErrMsgIdAndTxt("VELTRO:AddField:InvalidFieldName", "Invalid field name: '%s'.", name);
    if (oxAddField(a, name) < 0) raise_out_of_memory();
}

void oxRemoveField(oxArray *a, int n) {
    const int k = is_struct_like(a) ? field_count(a) : 0;
    if (n < 0 || n >= k) return;
    if (k > 1 && !own_field_table(a)) {
        hand_over(nullptr);
        return;
    }
    release_values(a, n);
    remove_field_name(a, n);
    narrow_slots(a, static_cast<kwSize>(k), static_cast<kwSize>(n));
}

int oxSetClassName(oxArray *a, const char *name) {
    if (!is_struct_like(a) || a->record.tag != 0) return 1;
    const char *interned = ut_namehash_add(name);
    if (!interned) return 1;
    set_class(a, oxOBJECT_CLASS);
    a->record.classname = interned;
    a->record.checksum = 0;
    return 0;
}

const char *oxGetObjectClassName(const oxArray *a) { return a->get_struct_object_classname(); }
void oxSetObjectClassName(oxArray *a, const char *name) { a->set_struct_object_classname(name); }
uint32_t oxGetObjectCheckSum(const oxArray *a) { return a->get_struct_object_chksum(); }
void oxSetObjectCheckSum(oxArray *a, uint32_t sum) { a->set_struct_object_chksum(sum); }
int oxGetObjectTagIndex(const oxArray *a) { return a->get_struct_object_tag(); }
void oxSetObjectTagIndex(oxArray *a, int tag) { a->set_struct_object_tag(tag); }

} // extern "C"
