// What each class does when it is released: the table behind core/class_ops.h.
#include <containers/object_layer.h>
#include <containers/slots.h>
#include <containers/unshare.h>
#include <core/class_ops.h>
#include <core/dispatch.h>

namespace ox {
namespace {

// A slot is emptied before its element goes, so that whatever the release sets off never meets an
// element that is half gone.
void release_slots(oxArray *a) {
    if (!a->cell.slots) return;
    const kwSize n = slot_count(a);
    for (kwSize i = 0; i < n; ++i) oxDestroyArray(std::exchange(a->cell.slots[i], nullptr));
}

void release_struct(oxArray *a) {
    release_slots(a);
    release_field_table(a);
}

void release_object(oxArray *a) {
    if (object_layer().object_release) object_layer().object_release(a);
    release_struct(a);
}

void release_handles(oxArray *a) {
    auto *release = object_layer().fh_release_element;
    if (!release || !a->num.pdata) return;
    const kwSize n = a->get_number_of_elements();
    for (kwSize i = 0; i < n; ++i) release(data<Bytes32>(a) + i);
}

void release_opaque(oxArray *a) {
    if (a->opaque.info) a->opaque.info->release(a);
}

bool unshare_unknown(oxArray *a) { return a->num.pdata != nullptr; }

constexpr ClassOps numbers{nullptr, unshare_numbers};
constexpr ClassOps unknown{nullptr, unshare_unknown};

} // namespace

constinit const ClassOps class_ops[class_count] = {
    unknown,                            // unknown
    {release_slots, unshare_slots},     // cell
    {release_struct, unshare_slots},    // struct
    numbers,                            // logical
    numbers,                            // char
    unknown,                            // void, the hole
    numbers,                            // double
    numbers,                            // single
    numbers,                            // int8
    numbers,                            // uint8
    numbers,                            // int16
    numbers,                            // uint16
    numbers,                            // int32
    numbers,                            // uint32
    numbers,                            // int64
    numbers,                            // uint64
    {release_handles, unshare_handles}, // function_handle
    {release_opaque, unshare_opaque},   // opaque
    {release_object, unshare_slots},    // object
};

} // namespace ox
