// Struct arrays: creation, and the fields' values.
#include <containers/structs.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/position.h>
#include <core/size_check.h>

namespace ox {
namespace {

// Slots and table of a struct whose dimensions are set; a count above the limit is no memory.
bool attach_fields(oxArray *a, int32_t nfields, const char *const *names) {
    if (nfields <= 0) return true;
    kwSize elements;
    if (!check_size(a->get_dimensions(), a->ndims, 1, &elements)) return false;
    if (elements > 0) {
        const kwSize slots = saturating_multiply(elements, static_cast<kwSize>(nfields));
        a->record.slots = static_cast<oxArray **>(oxCallocEx(slots, sizeof(oxArray *)));
        if (!a->record.slots) return false;
    }
    a->record.names = make_field_table(nfields, names);
    return a->record.names != nullptr;
}

} // namespace

oxArray *make_struct(kwSize m, kwSize n, int32_t nfields, const char *const *names) {
    ArrayGuard a(make_header(oxSTRUCT_CLASS, m, n));
    return a && attach_fields(a.get(), nfields, names) ? a.release() : nullptr;
}

oxArray *make_struct_nd(kwSize ndim, const kwSize *dims, int32_t nfields,
                        const char *const *names) {
    if (!dims || ndim == 0) return make_struct(0, 0, nfields, names);
    if (ndim <= 2) return make_struct(dims[0], ndim == 2 ? dims[1] : 1, nfields, names);
    ArrayGuard a(make_header(oxSTRUCT_CLASS, 0, 0));
    if (!a || store_dimensions(a.get(), ndim, dims) != 0) return nullptr;
    return attach_fields(a.get(), nfields, names) ? a.release() : nullptr;
}

} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxCreateStructMatrix_730(kwSize m, kwSize n, int nfields, const char **names) {
    return hand_over(make_struct(m, n, nfields, names));
}

oxArray *oxCreateStructArray_730(kwSize ndim, const kwSize *dims, int nfields, const char **names) {
    return hand_over(make_struct_nd(ndim, dims, nfields, names));
}

int oxGetNumberOfFields(const oxArray *a) { return field_count(a); }

const char **oxGetFieldNames(const oxArray *a) {
    return a->record.names ? a->record.names->names : nullptr;
}

const char *oxGetFieldNameByNumber(const oxArray *a, int n) {
    return n >= 0 && n < field_count(a) ? a->record.names->names[n] : nullptr;
}

int oxGetFieldNumber(const oxArray *a, const char *name) {
    return find_field(a->record.names, name);
}

oxArray *oxGetFieldByNumber_730(const oxArray *a, kwSize i, int n) { return *field_slot(a, i, n); }

oxArray *oxGetField_730(const oxArray *a, kwSize i, const char *name) {
    const int n = oxGetFieldNumber(a, name);
    return n < 0 ? nullptr : *field_slot(a, i, n);
}

void oxSetFieldByNumber_730(oxArray *a, kwSize i, int n, oxArray *v) {
    oxArray *stored = contained(v); // may raise; then nothing is stored
    *field_slot(a, i, n) = stored;
}

// Deliberate: a name that is no field gives number -1, and so the last field of the element before
// i is overwritten; callers add the field first.
void oxSetField_730(oxArray *a, kwSize i, const char *name, oxArray *v) {
    oxSetFieldByNumber_730(a, i, oxGetFieldNumber(a, name), v);
}

name_index_info *oxGetFieldInfo(const oxArray *a) { return a->record.names; }
oxArray **oxGetFields(const oxArray *a) { return a->record.slots; }
void oxSetFields(oxArray *a, oxArray **slots) { a->set_struct_fields_untrusted(slots); }

} // extern "C"
