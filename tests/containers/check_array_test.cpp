// The structure checker for trees: for each rule an array that breaks it, and it alone.
#include <containers/check_array.h>
#include <containers/field_table.h>
#include <core/array_list.h>
#include <support/suite.h>

namespace {

class CheckArray : public HostTest {};

oxArray *&slot(oxArray *a, kwSize i = 0) { return a->cell.slots[i]; }

using Mend = std::function<void()>;

// Puts another value into a place; the answer puts the old one back, so that it can be destroyed.
template<class T> Mend put(T &place, std::type_identity_t<T> value) {
    return [&place, old = std::exchange(place, value)] { place = old; };
}

const struct {
    int rule;
    const char *array;
    Mend (*breaks)(oxArray *);
} broken[] = {
    {rule_slots_named, "struct 1x1 a: {1}",
     [](oxArray *a) { return put(a->record.names, nullptr); }},
    {rule_table_owners, "struct 1x1 a: {1}",
     [](oxArray *a) -> Mend {
         oxArray *sharer = oxCreateSharedDataCopy(a);
         --a->record.names->reference_count;
         return [=] { ++a->record.names->reference_count, oxDestroyArray(sharer); };
     }},
    {rule_cycle, "cell 1x1: {cell 1x2: {} {}}",
     [](oxArray *a) { return put(slot(slot(a), 1), a); }},
    {rule_slot_scope, "cell 1x1: {1}",
     [](oxArray *a) { return put(slot(a)->scope, oxSCOPE_TEMPORARY); }},
    {rule_slot_scope, "struct 1x1 a,b: {1} {cell 1x1: {2}}",
     [](oxArray *a) -> Mend {
         oxArray *e = slot(slot(a, 1));
         e->set_flag(oxFLAG_HEADER_KEPT, true);
         const Mend scope = put(e->scope, oxSCOPE_DESTROYED);
         return [=] { scope(), e->set_flag(oxFLAG_HEADER_KEPT, false); };
     }},
    {rule_slot_listed, "cell 1x1: {1}",
     [](oxArray *a) -> Mend {
         array_list_append(slot(a));
         return [=] { array_list_remove(slot(a)); };
     }},
    {rule_slot_owners, "cell 1x3: {1} {2} {}", [](oxArray *a) { return put(slot(a, 2), slot(a)); }},
    {rule_scalar_double, "cell 1x1: {cell 1x1: {1 2}}", // a rule of one array, deep below
     [](oxArray *a) {
         return put(slot(slot(a))->flag_word, oxFLAG_NUMERIC | oxFLAG_SCALAR_DOUBLE);
     }},
    {rule_ring_data, "cell 1x1: {1}",
     [](oxArray *a) { return put(oxCreateSharedDataCopy(a)->cell.slots, nullptr); }},
};

TEST_F(CheckArray, FindsEachFaultAndNoOther) {
    for (const auto &[rule, array, breaks] : broken) {
        SCOPED_TRACE(check_rule_text(rule));
        oxArray *a = arr(array);
        EXPECT_FALSE(check_array(a));
        const Mend mend = breaks(a);
        EXPECT_EQ(check_array(a).rule, rule) << check_rule_text(check_array(a).rule);
        mend();
        EXPECT_FALSE(check_array(a));
    }
}

} // namespace
