// Is this array well formed, with everything in it? The rules of one header, then those of trees.
#pragma once
#include <core/check_header.h>

namespace ox {

// Rules of containers, numbered on from those of one array.
inline constexpr int rule_slots_named = last_storage_rule + 1; // none where there are no fields
inline constexpr int rule_table_owners = rule_slots_named + 1; // one for each header that uses it
inline constexpr int rule_cycle = rule_table_owners + 1;       // nothing contains itself
inline constexpr int rule_slot_scope = rule_cycle + 1;         // no temporaries, none destroyed
inline constexpr int rule_slot_listed = rule_slot_scope + 1;   // elements are on no list
inline constexpr int rule_slot_owners = rule_slot_listed + 1;  // one for each slot
inline constexpr int last_tree_rule = rule_slot_owners;

struct Finding {
    int rule = rule_none;
    const oxArray *array = nullptr; // where it does not hold
    explicit operator bool() const { return rule != rule_none; }
};

// The first rule that does not hold in a, its ring, or anything that it contains, elements before
// what contains them. Reads only; never allocates or raises.
Finding check_array(const oxArray *a);

// What a rule demands, for messages, also for the rules of one array.
const char *check_rule_text(int rule);

} // namespace ox
