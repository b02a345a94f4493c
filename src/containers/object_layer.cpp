// The class layer: its registration, what stands behind it when it is not there, and the creators
// that reach it.
#include <containers/object_layer.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/create.h>
#include <core/destroy.h>
#include <errors/raise.h>

#include <cstring>
#include <utility>

namespace ox {
namespace {

constexpr ox_object_layer no_layer{};
constinit const ox_object_layer *registered = nullptr;

// An opaque array of null payloads without class information.
oxArray *bare_opaque(kwSize ndim, const kwSize *dims, xxInfo *info) {
    ArrayGuard a(make_header(oxOPAQUE_CLASS, 0, 0));
    if (!a || store_dimensions(a.get(), dims ? ndim : 0, dims) != 0) return nullptr;
    const kwSize n = a->get_number_of_elements();
    if (n > 0) {
        a->opaque.giblet = oxCallocEx(n, sizeof(void *));
        if (!a->opaque.giblet) return nullptr;
    }
    a->opaque.info = info;
    return a.release();
}

} // namespace

const ox_object_layer &object_layer() { return registered ? *registered : no_layer; }

void raise_layer_missing(const char *class_name) {
    oxErrMsgIdAndTxt("VELTRO:objectLayerMissing",
                     "Arrays of class '%s' need the object layer, which is not installed.",
                     class_name);
}

} // namespace ox

using namespace ox;

xxInfo::~xxInfo() = default;

oxClassID xxInfo::class_id(const oxArray *) const { return oxOPAQUE_CLASS; }
const char *xxInfo::class_name(const oxArray *) const { return "opaque"; }
bool xxInfo::is_class(const oxArray *a, const char *name) const {
    return name && std::strcmp(class_name(a), name) == 0;
}

void xxInfo::complete_dimensions(oxArray *) {}

void xxInfo::release(oxArray *) {}
void xxInfo::share(const oxArray *source, oxArray *) { raise_layer_missing(class_name(source)); }
bool xxInfo::copy_element(void **, void *) { raise_layer_missing("opaque"); }
oxArray *xxInfo::empty_copy() { raise_layer_missing("opaque"); }

oxArray *xxInfo::convert(const oxArray *, oxClassID) { return nullptr; }

bool xxInfo::has_get_property() const { return false; }
bool xxInfo::has_set_property() const { return false; }
oxArray *xxInfo::get_property(const oxArray *a, kwSize, const char *) {
    raise_layer_missing(class_name(a));
}
void xxInfo::set_property(oxArray *a, kwSize, const char *, const oxArray *) {
    raise_layer_missing(class_name(a));
}

void xxInfo::reference(const oxArray *a, kwSize, const kwIndex *const *, const kwSize *,
                       oxArray *) {
    raise_layer_missing(class_name(a));
}
void xxInfo::assign(oxArray *a, kwSize, const oxArray *const *, const oxArray *) {
    raise_layer_missing(class_name(a));
}
void xxInfo::erase(oxArray *a, kwSize, const oxArray *const *) {
    raise_layer_missing(class_name(a));
}

bool xxInfo::is_class_object() const { return false; }
oxArray *xxInfo::default_object(bool) { return nullptr; }

oxArray *xxInfo::permute(const oxArray *, const kwSize *, kwSize) { return nullptr; }

const void *xxInfo::identity() const { return this; }
bool xxInfo::bytewise(const oxArray *) const { return false; }
bool xxInfo::equal(const oxArray *a, const oxArray *b, bool) const {
    return a->opaque.giblet == b->opaque.giblet;
}

const char *xxInfo::subclass_name(const oxArray *a) const { return class_name(a); }
oxArray *xxInfo::save(const oxArray *, oiStreamRec_tag *) { return nullptr; }
bool xxInfo::load(oxArray *, const oxArray *, oiStreamRec_tag *) { return false; }

const ox_object_layer *ox_register_object_layer(const ox_object_layer *layer) {
    return std::exchange(registered, layer);
}

extern "C" {

oxArray *oxCreateOpaqueGiblet(xxInfo *info) {
    if (!info) raise_layer_missing("opaque");
    return hand_over(info->empty_copy());
}

oxArray *oxCreateOpaqueArray(kwSize ndim, const kwSize *dims, xxInfo *info) {
    auto *create = object_layer().create_opaque;
    return hand_over(create ? create(ndim, dims, info) : bare_opaque(ndim, dims, info));
}

oxArray *oxCreateFunctionHandle(const char *text) {
    auto *create = object_layer().fh_create;
    if (!create) raise_layer_missing("function_handle");
    return hand_over(create(text));
}

} // extern "C"
