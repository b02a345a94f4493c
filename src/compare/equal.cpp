// Equality of whole arrays: one recursion, by class, under one of two NaN rules.
#include <compare/sparse.h>
#include <compare/values.h>
#include <containers/field_table.h>
#include <containers/object_layer.h>
#include <core/class_table.h>
#include <core/imaginary.h>
#include <ox/compare.h>
#include <sparse/storage/csc.h>

#include <cstring>

namespace ox {
namespace {

bool equal(const oxArray *a, const oxArray *b, bool nan_equal);

// Numeric, char and logical arrays compare with each other by value.
bool has_values(const oxArray *a) {
    return is_numeric(a) || a->class_code == oxCHAR_CLASS || a->class_code == oxLOGICAL_CLASS;
}

bool equals_null(const oxArray *a) { return has_values(a) && a->get_number_of_elements() == 0; }

bool equal_slots(oxArray *const *a, oxArray *const *b, kwSize n, bool nan_equal) {
    for (kwSize k = 0; k < n; ++k)
        if (!equal(a[k], b[k], nan_equal)) return false;
    return true;
}

bool equal_text(const char *a, const char *b) { return std::strcmp(a ? a : "", b ? b : "") == 0; }

bool same_names_in_order(const name_index_info *a, const name_index_info *b) {
    if (a == b) return true;
    for (int32_t k = a->count; k-- > 0;)
        if (a->names[k] != b->names[k]) return false;
    return true;
}

// Fields of a by name in b, field after field, so that no list of numbers is needed.
bool equal_by_name(const oxArray *a, const oxArray *b, kwSize count, bool nan_equal) {
    const int32_t fields = field_count(a);
    for (int32_t f = 0; f < fields; ++f) {
        const int32_t g = find_field(b->record.names, a->record.names->names[f]);
        if (g < 0) return false;
        for (kwSize e = 0; e < count; ++e)
            if (!equal(a->record.slots[e * fields + f], b->record.slots[e * fields + g], nan_equal))
                return false;
    }
    return true;
}

bool equal_structs(const oxArray *a, const oxArray *b, bool nan_equal) {
    if (!equal_text(a->record.classname, b->record.classname)) return false;
    const kwSize count = a->get_number_of_elements(), fields = field_count(a);
    if (field_count(b) != field_count(a)) return false;
    if (fields == 0) return true;
    if (same_names_in_order(a->record.names, b->record.names))
        return equal_slots(a->record.slots, b->record.slots, count * fields, nan_equal);
    // Deliberate: the order of fields matters for objects, not for structs.
    return a->class_code == oxSTRUCT_CLASS && equal_by_name(a, b, count, nan_equal);
}

bool equal_bytes(const oxArray *a, const oxArray *b) {
    const kwSize bytes = a->get_number_of_elements() * class_info(a->class_code).element_size;
    return a->num.pdata == b->num.pdata || bytes == 0 ||
           (a->num.pdata && b->num.pdata && std::memcmp(a->num.pdata, b->num.pdata, bytes) == 0);
}

bool equal_handles(const oxArray *a, const oxArray *b, bool nan_equal) {
    const auto by_layer = object_layer().fh_equal;
    return by_layer ? by_layer(a, b, !nan_equal) : equal_bytes(a, b);
}

bool same_class_identity(const oxArray *a, const oxArray *b) {
    const xxInfo *x = a->opaque.info, *y = b->opaque.info;
    return x == y || (x && y && x->identity() == y->identity());
}

bool equal_opaque(const oxArray *a, const oxArray *b, bool nan_equal) {
    if (nan_equal && a->opaque.giblet == b->opaque.giblet) return true;
    const xxInfo *x = a->opaque.info, *y = b->opaque.info;
    if (!x || !y) return a->opaque.giblet == b->opaque.giblet;
    const bool stored = !a->is_indexing_opaque() && !b->is_indexing_opaque();
    if (stored && x->bytewise(a) && y->bytewise(b) && equal_bytes(a, b)) return true;
    return x->equal(a, b, !nan_equal);
}

// The imaginary block that only one of two arrays has.
bool imag_is_zero(const oxArray *a) {
    const kwSize n = is_sparse(a) ? nonzeros(a) : a->get_number_of_elements();
    return all_zero(a->class_code, a->num.pimag, 0, n);
}

bool equal_values(const oxArray *a, const oxArray *b, bool nan_equal) {
    const bool complex_a = has_imag_block(a), complex_b = has_imag_block(b);
    if (complex_a != complex_b && !imag_is_zero(complex_a ? a : b)) return false;
    if (is_sparse(a))
        return is_sparse(b) ? equal_sparse_pair(a, b, nan_equal)
                            : equal_sparse_full(a, b, nan_equal);
    if (is_sparse(b)) return equal_sparse_full(b, a, nan_equal);
    const kwSize n = a->get_number_of_elements();
    return equal_runs(a->class_code, a->num.pdata, b->class_code, b->num.pdata, n, nan_equal) &&
           (!complex_a || !complex_b ||
            equal_runs(a->class_code, a->num.pimag, b->class_code, b->num.pimag, n, nan_equal));
}

bool comparable(const oxArray *a, const oxArray *b) {
    if (has_values(a) && has_values(b)) return true;
    return a->class_code == b->class_code &&
           (a->class_code != oxOPAQUE_CLASS || same_class_identity(a, b));
}

bool equal(const oxArray *a, const oxArray *b, bool nan_equal) {
    if (!a || !b) return a == b || equals_null(a ? a : b);
    if (a == b && nan_equal) return true;
    if (!comparable(a, b) || !same_dimensions(a, b)) return false;
    if (has_values(a)) return equal_values(a, b, nan_equal);
    if (a->class_code == oxCELL_CLASS)
        return equal_slots(a->cell.slots, b->cell.slots, a->get_number_of_elements(), nan_equal);
    if (is_struct_like(a)) return equal_structs(a, b, nan_equal);
    if (a->class_code == oxFUNCTION_CLASS) return equal_handles(a, b, nan_equal);
    if (a->class_code == oxOPAQUE_CLASS) return equal_opaque(a, b, nan_equal);
    return true; // arrays of no class hold nothing
}

} // namespace
} // namespace ox

extern "C" {

int oxAreMatricesEqualNanOptional(const oxArray *a, const oxArray *b, int nan_unequal) {
    return ox::equal(a, b, nan_unequal == 0);
}
int oxAreMatricesEqual(const oxArray *a, const oxArray *b) {
    return oxAreMatricesEqualNanOptional(a, b, 1);
}

} // extern "C"
