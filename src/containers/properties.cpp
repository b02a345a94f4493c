// Properties of class-system objects, through the class information of opaque arrays.
#include <core/array.h>
#include <errors/raise.h>
#include <ox/sharing.h>

namespace ox {
namespace {

// The class information of an array whose class supplies the access asked for; raises otherwise.
xxInfo *property_access(const oxArray *a, bool (xxInfo::*has)() const, const char *function) {
    xxInfo *info = a && a->class_code == oxOPAQUE_CLASS ? a->get_opaque_info() : nullptr;
    if (!info || !(info->*has)())
        oxErrMsgIdAndTxt("VELTRO:invalidInput", "%s works on public properties.", function);
    return info;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxGetPropertyShared(const oxArray *a, kwSize index, const char *name) {
    return property_access(a, &xxInfo::has_get_property, "oxGetProperty")
        ->get_property(a, index, name);
}

oxArray *oxGetProperty_730(const oxArray *a, kwSize index, const char *name) {
    oxArray *value = oxGetPropertyShared(a, index, name);
    return value ? oxUnshareEx(value) : nullptr;
}

void oxSetPropertyShared(oxArray *a, kwSize index, const char *name, const oxArray *value) {
    property_access(a, &xxInfo::has_set_property, "oxSetProperty")
        ->set_property(a, index, name, value);
}

void oxSetProperty_730(oxArray *a, kwSize index, const char *name, const oxArray *value) {
    oxSetPropertyShared(a, index, name, value);
}

} // extern "C"
