// The structure checker for trees: for each rule an array that breaks it, and it alone.
#include <containers/check_array.h>
#include <containers/field_table.h>
#include <core/array_list.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/host.h>

using namespace ox;
using namespace ox::test;

namespace {

class CheckArray : public HostTest {};

oxArray *&slot(oxArray *a, kwSize i = 0) { return a->cell.slots[i]; }

// Breaks the array and returns how to mend it, so that it can be destroyed.
using Mend = std::function<void()>;
struct Broken {
    int rule;
    const char *array;
    std::function<Mend(oxArray *)> break_it;
};

const Broken broken[] = {
    {rule_slots_named, "struct 1x1 a: {1}",
     [](oxArray *a) -> Mend {
         name_index_info *names = std::exchange(a->record.names, nullptr);
         return [=] { a->record.names = names; };
     }},
    {rule_table_owners, "struct 1x1 a: {1}",
     [](oxArray *a) -> Mend {
         oxArray *sharer = oxCreateSharedDataCopy(a);
         --a->record.names->reference_count;
         return [=] { ++a->record.names->reference_count, oxDestroyArray(sharer); };
     }},
    {rule_cycle, "cell 1x1: {cell 1x2: {} {}}",
     [](oxArray *a) -> Mend {
         slot(slot(a), 1) = a;
         return [=] { slot(slot(a), 1) = nullptr; };
     }},
    {rule_slot_scope, "cell 1x1: {1}",
     [](oxArray *a) -> Mend {
         slot(a)->scope = oxSCOPE_TEMPORARY;
         return [=] { slot(a)->scope = oxSCOPE_CONTAINED; };
     }},
    {rule_slot_scope, "struct 1x1 a,b: {1} {cell 1x1: {2}}",
     [](oxArray *a) -> Mend {
         oxArray *e = slot(slot(a, 1));
         e->scope = oxSCOPE_DESTROYED;
         e->set_flag(oxFLAG_HEADER_KEPT, true);
         return [=] { e->scope = oxSCOPE_CONTAINED, e->set_flag(oxFLAG_HEADER_KEPT, false); };
     }},
    {rule_slot_listed, "cell 1x1: {1}",
     [](oxArray *a) -> Mend {
         oxArray *e = slot(a);
         array_list_append(e);
         return [=] { array_list_remove(e); };
     }},
    {rule_slot_owners, "cell 1x3: {1} {2} {}",
     [](oxArray *a) -> Mend {
         slot(a, 2) = slot(a);
         return [=] { slot(a, 2) = nullptr; };
     }},
    {rule_scalar_double, "cell 1x1: {cell 1x1: {1 2}}",
     [](oxArray *a) -> Mend { // a rule of one array, deep below
         oxArray *e = slot(slot(a));
         oxSetScalarDoubleFlag(e);
         return [=] { oxClearScalarDoubleFlag(e); };
     }},
    {rule_ring_data, "cell 1x1: {1}",
     [](oxArray *a) -> Mend {
         oxArray *sharer = oxCreateSharedDataCopy(a);
         oxArray **block = std::exchange(sharer->cell.slots, nullptr);
         return [=] { sharer->cell.slots = block; };
     }},
};

TEST_F(CheckArray, FindsEachFaultAndNoOther) {
    for (const Broken &b : broken) {
        SCOPED_TRACE(check_rule_text(b.rule));
        oxArray *a = arr(b.array);
        EXPECT_FALSE(check_array(a));
        const Mend mend = b.break_it(a);
        EXPECT_EQ(check_array(a).rule, b.rule) << check_rule_text(check_array(a).rule);
        mend();
        EXPECT_FALSE(check_array(a));
    }
}

} // namespace
