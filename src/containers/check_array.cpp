// The structure checker for trees of arrays.
#include <containers/check_array.h>
#include <containers/slots.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/name_index.h>
#include <core/ring.h>
#include <core/tuning.h>

#include <algorithm>

namespace ox {
namespace {

// The way from the root to an array, on the stack of the walk.
struct Path {
    const oxArray *a;
    const Path *up;
    bool contains(const oxArray *x) const {
        for (const Path *p = this; p; p = p->up)
            if (p->a == x) return true;
        return false;
    }
};

// Every header of a ring that has the same fields owns one reference to the table.
int check_table(const oxArray *a) {
    const name_index_info *table = a->record.names;
    if (!table) return a->record.slots ? rule_slots_named : int{rule_none};
    int32_t headers = 1;
    ring_for_others(a, [&](const oxArray *p) { headers += p->record.names == table; });
    return table->reference_count < headers ? rule_table_owners : int{rule_none};
}

// Slots that hold the same element as slot i and stand close behind it: far ones would make the
// check quadratic, and what stores an element twice does so side by side.
kwSize same_element_near(oxArray *const *slots, kwSize i, kwSize n) {
    const kwSize end = std::min(n, i + 1 + tuning::check_slot_window);
    return static_cast<kwSize>(std::count(slots + i + 1, slots + end, slots[i]));
}

int check_slot(const oxArray *a, kwSize i, kwSize n, const Path &path) {
    const oxArray *e = a->cell.slots[i];
    if (path.contains(e)) return rule_cycle;
    if (oxIsTemp(e) || e->scope == oxSCOPE_DESTROYED) return rule_slot_scope;
    if (e->reference_count < same_element_near(a->cell.slots, i, n)) return rule_slot_owners;
    return array_list_contains(e) ? rule_slot_listed : int{rule_none};
}

Finding check_below(const Path &path);

// What would make the walk itself unsafe first, then the elements.
Finding check_slots(const oxArray *a, const Path &path) {
    const kwSize n = a->cell.slots ? slot_count(a) : 0;
    for (kwSize i = 0; i < n; ++i) {
        if (!a->cell.slots[i]) continue;
        if (const int rule = check_slot(a, i, n, path)) return {rule, a->cell.slots[i]};
        if (const Finding f = check_below({a->cell.slots[i], &path})) return f;
    }
    return {};
}

Finding check_below(const Path &path) {
    const oxArray *a = path.a;
    if (const int rule = check_header(a, CheckDepth::storage)) return {rule, a};
    if (!is_container(a)) return {};
    if (const int rule = is_struct_like(a) ? check_table(a) : int{rule_none}) return {rule, a};
    return check_slots(a, path);
}

constexpr const char *tree_texts[] = {
    "a struct without fields has no slots",
    "the field table has an owner for each header that uses it",
    "nothing contains itself",
    "an element is neither temporary nor destroyed",
    "an element is on no list",
    "an element has an owner for each slot that holds it",
};
static_assert(sizeof tree_texts / sizeof *tree_texts == last_tree_rule - int{last_storage_rule});

} // namespace

Finding check_array(const oxArray *a) {
    if (const Finding f = check_below({a, nullptr})) return f;
    for (const oxArray *p = a->cross_link; p && p != a; p = p->cross_link)
        if (const int rule = check_header(p, CheckDepth::storage)) return {rule, p};
    return {};
}

const char *check_rule_text(int rule) {
    return rule > last_storage_rule && rule <= last_tree_rule
               ? tree_texts[rule - last_storage_rule - 1]
               : rule_text(rule);
}

} // namespace ox
