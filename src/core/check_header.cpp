// The structure checker for one array: header rules, then storage rules.
#include <core/array_list.h>
#include <core/check_header.h>
#include <core/class_table.h>
#include <core/csc_rules.h>
#include <core/name_index.h>
#include <core/size_check.h>

namespace ox {
namespace {

constexpr uint32_t meaningful_flags =
    oxFLAG_SCALAR_DOUBLE | oxFLAG_EMPTY_BRACKET | oxFLAG_GLOBAL_WS | oxFLAG_LIST_MARK |
    oxFLAG_SPARSE | oxFLAG_HEADER_KEPT | oxFLAG_COLON | oxFLAG_PRIVATE_DATA | oxFLAG_NUMERIC |
    oxFLAG_COMMA_LIST | oxFLAG_INDEXING_OPAQUE | oxFLAG_REUSABLE | oxUSER_BITS_MASK;

// As stored: completing them would run code of the class layer.
const kwSize *stored_dimensions(const oxArray *a) { return a->ndims <= 2 ? a->mn : a->dim_vector; }

bool count_elements(const oxArray *a, kwSize *count) {
    return check_size(stored_dimensions(a), a->ndims, 1, count);
}

bool all_ones(const oxArray *a) {
    const kwSize *d = stored_dimensions(a);
    for (kwSize k = 0; k < a->ndims; ++k)
        if (d[k] != 1) return false;
    return true;
}

// Two walkers, one twice as fast: a ring that never comes back to a traps them both.
bool ring_closes(const oxArray *a) {
    const oxArray *slow = a, *fast = a;
    do {
        for (int step = 0; step < 2; ++step) {
            fast = fast->cross_link;
            if (!fast) return false;
            if (fast == a) return true;
        }
        slow = slow->cross_link;
    } while (slow != fast);
    return false;
}

bool same_blocks(const oxArray *a, const oxArray *b) {
    if (a->num.pdata != b->num.pdata) return false;
    if (is_numeric(a) && is_numeric(b) && a->num.pimag != b->num.pimag) return false;
    return !is_sparse(a) || !is_sparse(b) || (a->num.ir == b->num.ir && a->num.jc == b->num.jc);
}

int check_class_and_flags(const oxArray *a) {
    if (a->class_code != class_index(a->class_code)) return rule_class;
    if (is_numeric(a) != class_info(a->class_code).numeric) return rule_numeric_flag;
    return a->flag_word & ~meaningful_flags ? rule_free_flags : rule_none;
}

int check_dimensions(const oxArray *a) {
    kwSize count;
    if (a->ndims < 2 || (a->ndims > 2 && !a->dim_vector)) return rule_ndims;
    const bool counted = !a->is_indexing_opaque() && !is_sparse(a); // sparse: as far as jc goes
    if (counted && !count_elements(a, &count)) return rule_element_count;
    if (!a->has_flag(oxFLAG_SCALAR_DOUBLE)) return rule_none;
    return a->class_code == oxDOUBLE_CLASS && all_ones(a) ? rule_none : rule_scalar_double;
}

int check_owners(const oxArray *a) {
    if (a->scope == oxSCOPE_DESTROYED && !a->has_flag(oxFLAG_HEADER_KEPT)) return rule_destroyed;
    if (!a->cross_link)
        return a->has_flag(oxFLAG_REUSABLE) && a->reference_count ? rule_reusable : rule_none;
    if (a->cross_link == a || !ring_closes(a)) return rule_ring;
    for (const oxArray *p = a->cross_link; p != a; p = p->cross_link)
        if (!same_blocks(a, p)) return rule_ring_data;
    return a->has_flag(oxFLAG_REUSABLE) ? rule_reusable : rule_none;
}

int check_kind(const oxArray *a) {
    const bool chars = a->class_code == oxCHAR_CLASS;
    if (is_sparse(a) && a->ndims != 2) return rule_sparse;
    if (a->has_flag(oxFLAG_COLON) && !is_numeric(a) && !chars) return rule_colon;
    if (a->is_indexing_opaque() && a->class_code != oxOPAQUE_CLASS) return rule_indexing_opaque;
    if (a->dim32 && (a->dim32->length < 0 || (a->dim32->length > 0 && !a->dim32->dims)))
        return rule_dim32;
    return rule_none;
}

// A sparse array that was emptied beside its ring has no data, and vectors that are not its own.
int check_csc(const oxArray *a) {
    const kwSize m = a->mn[0], n = a->mn[1];
    if (!holds_values(a->class_code) || a->class_code == oxCHAR_CLASS) return rule_csc_class;
    if (!a->num.pdata) return m == 0 ? rule_none : rule_data;
    if (!a->num.ir || !a->num.jc) return rule_csc_vectors;
    const int broken = broken_csc_rule(m, n, a->num.nzmax, a->num.jc, a->num.ir);
    return broken ? rule_csc_starts + broken - 1 : rule_none;
}

int check_record(const oxArray *a, kwSize count) {
    const name_index_info *names = a->record.names;
    if (!names) return rule_none; // no fields, no slots
    if (names->count <= 0 || names->reference_count <= 0) return rule_field_table;
    for (int32_t k = 0; k < names->count; ++k)
        if (!names->names[k]) return rule_field_table;
    return count && !a->record.slots ? rule_data : rule_none;
}

int check_storage(const oxArray *a) {
    if (a->class_code == oxUNKNOWN_CLASS || a->is_indexing_opaque()) return rule_none;
    if (holds_values(a->class_code) && !is_numeric(a) && a->num.pimag) return rule_no_imaginary;
    if (is_sparse(a)) return check_csc(a);
    kwSize count = 0;
    count_elements(a, &count);
    if (is_struct_like(a)) return check_record(a, count);
    const bool needs_block = holds_values(a->class_code) || a->class_code == oxCELL_CLASS;
    return needs_block && count && !a->num.pdata ? rule_data : rule_none;
}

constexpr const char *texts[] = {
    "well formed",
    "the class code is one of the table",
    "the numeric flag is that of the class",
    "flags without a meaning are clear",
    "at least two dimensions, with a vector for more",
    "the element count is within the limit",
    "the scalar-double flag is on a double of sizes 1",
    "an array that was destroyed is not in use",
    "the ring leads back to the array",
    "members of a ring hold the same blocks",
    "reusable data have one owner",
    "sparse arrays are 2-D",
    "colon objects hold numbers or characters",
    "only opaque arrays compute their dimensions",
    "the 32-bit dimension cache has its vector",
    "logical and char arrays have no imaginary part",
    "elements have a data block",
    "sparse arrays hold numbers or truth values",
    "sparse data have index vectors",
    "column starts rise from 0",
    "stored elements fit the capacity",
    "rows of a column rise and are below the row count",
    "a sparse array has room for an element",
    "the field table has owners and every name",
};
static_assert(sizeof texts / sizeof *texts == last_storage_rule + 1);

} // namespace

int check_header(const oxArray *a, CheckDepth depth) {
    for (const auto check : {check_class_and_flags, check_dimensions, check_owners, check_kind})
        if (const int rule = check(a)) return rule;
    return depth == CheckDepth::storage ? check_storage(a) : rule_none;
}

bool listed_as_its_scope_says(const oxArray *a) {
    return array_list_contains(a) == (array_list_installed() && oxIsTemp(a));
}

const char *rule_text(int rule) {
    return rule >= 0 && rule <= last_storage_rule ? texts[rule] : "unknown rule";
}

} // namespace ox
