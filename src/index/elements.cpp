// Ownership of elements that were copied as bytes: references, and copies by the class layer.
#include <containers/object_layer.h>
#include <core/array_list.h>
#include <core/dispatch.h>
#include <errors/raise.h>
#include <index/elements.h>

namespace ox {

namespace {

void own_slots(oxArray **slots, kwSize n) {
    for (kwSize i = 0; i < n; ++i)
        if (oxArray *e = slots[i]) {
            e->set_reusable(false);
            ++e->reference_count;
        }
    kwSize i = 0;
    try {
        for (; i < n; ++i)
            if (slots[i]) slots[i] = contained(slots[i]);
    } catch (...) { // the hook has consumed the element that it raised for
        for (kwSize k = 0; k < n; ++k)
            if (k != i) oxDestroyArray(slots[k]);
        throw;
    }
}

void own_handles(Bytes32 *handles, kwSize n) {
    const auto copy = object_layer().fh_copy_element;
    if (!copy) return;
    for (kwSize i = 0; i < n; ++i) {
        const Bytes32 source = handles[i];
        if (copy(&handles[i], &source)) continue;
        if (const auto release = object_layer().fh_release_element)
            while (i > 0) release(&handles[--i]);
        raise_out_of_memory();
    }
}

// A class releases whole arrays, so the payloads are shown to it as one.
void release_payloads(xxInfo *info, void *payloads, kwSize n) {
    if (!info || n == 0) return;
    oxArray shown{};
    shown.class_code = oxOPAQUE_CLASS;
    shown.ndims = 2;
    shown.mn[0] = 1;
    shown.mn[1] = n;
    shown.opaque.giblet = payloads;
    shown.opaque.info = info;
    info->release(&shown);
}

void own_payloads(xxInfo *info, void **payloads, kwSize n) {
    if (!info) return;
    for (kwSize i = 0; i < n; ++i)
        if (payloads[i] && !info->copy_element(&payloads[i], payloads[i])) {
            release_payloads(info, payloads, i);
            raise_out_of_memory();
        }
}

} // namespace

void own_copied_elements(const oxArray *a, void *data, kwSize n) {
    if (is_container(a))
        own_slots(static_cast<oxArray **>(data), n);
    else if (a->class_code == oxFUNCTION_CLASS)
        own_handles(static_cast<Bytes32 *>(data), n);
    else if (a->class_code == oxOPAQUE_CLASS)
        own_payloads(a->opaque.info, static_cast<void **>(data), n);
}

void release_elements(const oxArray *a, void *data, kwSize n) {
    if (is_container(a)) {
        for (kwSize i = 0; i < n; ++i) oxDestroyArray(static_cast<oxArray **>(data)[i]);
    } else if (a->class_code == oxFUNCTION_CLASS) {
        if (const auto release = object_layer().fh_release_element)
            for (kwSize i = 0; i < n; ++i) release(static_cast<Bytes32 *>(data) + i);
    } else if (a->class_code == oxOPAQUE_CLASS) {
        release_payloads(a->opaque.info, data, n);
    }
}

} // namespace ox
