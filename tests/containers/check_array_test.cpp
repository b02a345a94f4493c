// The structure checkers, of one array and of trees: for each rule an array that breaks it, and it
// alone. Sound arrays pass at the end of every test.
#include <containers/check_array.h>
#include <containers/field_table.h>
#include <core/array_list.h>
#include <core/check_header.h>
#include <core/name_index.h>
#include <support/suite.h>

namespace {

using CheckArray = HostTest;

oxArray *&slot(oxArray *a, kwSize i = 0) { return a->cell.slots[i]; }

using Mend = std::function<void()>;

// Puts another value into a place; the answer puts the old one back, so that it can be destroyed.
template<class T> Mend put(T &place, std::type_identity_t<T> value) {
    return [&place, old = std::exchange(place, value)] { place = old; };
}

const std::tuple<int, const char *, Mend (*)(oxArray *)> broken[] = {
    {rule_slots_named, "struct 1x1 a: {1}",
     [](oxArray *a) { return put(a->record.names, nullptr); }},
    {rule_table_owners, "struct 1x1 a: {1}",
     [](oxArray *a) {
         oxCreateSharedDataCopy(a);
         return put(a->record.names->reference_count, 1);
     }},
    {rule_cycle, "cell 1x1: {cell 1x2: {} {}}",
     [](oxArray *a) { return put(slot(slot(a), 1), a); }},
    {rule_slot_scope, "cell 1x1: {1}",
     [](oxArray *a) { return put(slot(a)->scope, oxSCOPE_TEMPORARY); }},
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

using CheckHeader = HostTest;

kwIndex falling[] = {0, 2, 1}, plenty[] = {0, 1, 9}, rising[] = {0, 1, 3}, repeated[] = {0, 1, 1};
name_index_info no_owner{1, 0, nullptr, {"a"}};
ox_dim32_cache no_vector{nullptr, 2};
oxArray other, third;

// Into a ring of two with a copy of itself.
oxArray &in_ring(oxArray &a) {
    other = a;
    other.cross_link = &a;
    a.cross_link = &other;
    return other;
}

// A broken state: the record as it is, with fields replaced; blocks are not written to. a is a copy
// of a sound one; its address matters for rings.
const std::tuple<int, const char *, void (*)(oxArray &a)> broken_records[] = {
    {rule_class, "5", [](oxArray &a) { a.class_code = 5; }},
    {rule_numeric_flag, "5", [](oxArray &a) { a.flag_word &= ~oxFLAG_NUMERIC; }},
    {rule_free_flags, "5", [](oxArray &a) { a.flag_word |= 2; }},
    {rule_ndims, "5", [](oxArray &a) { a.ndims = 1; }},
    {rule_element_count, "1 2", [](oxArray &a) { a.mn[0] = (kwSize{1} << 47); }},
    {rule_scalar_double, "1 2", [](oxArray &a) { a.flag_word |= oxFLAG_SCALAR_DOUBLE; }},
    {rule_destroyed, "5", [](oxArray &a) { a.scope = oxSCOPE_DESTROYED; }},
    {rule_ring, "1 2",
     [](oxArray &a) { third = in_ring(a), other.cross_link = &third, third.cross_link = &other; }},
    {rule_ring_data, "sparse double 2x2: (0,0)=1", [](oxArray &a) { in_ring(a).num.ir = rising; }},
    {rule_reusable, "1 2", [](oxArray &a) { in_ring(a), a.set_reusable(true); }},
    {rule_sparse, "double 1x1x2: 1 | 2", [](oxArray &a) { a.flag_word |= oxFLAG_SPARSE; }},
    {rule_colon, "logical 1x1: 1", [](oxArray &a) { a.flag_word |= oxFLAG_COLON; }},
    {rule_indexing_opaque, "5", [](oxArray &a) { a.flag_word |= oxFLAG_INDEXING_OPAQUE; }},
    {rule_dim32, "5", [](oxArray &a) { a.dim32 = &no_vector; }},
    {rule_no_imaginary, "logical 1x1: 1", [](oxArray &a) { a.num.pimag = &other; }},
    {rule_data, "1 2", [](oxArray &a) { a.num.pdata = nullptr; }},
    {rule_csc_class, "struct 1x1 a: {}", [](oxArray &a) { a.flag_word |= oxFLAG_SPARSE; }},
    {rule_csc_vectors, "sparse double 3x2: (0,0)=1", [](oxArray &a) { a.num.ir = nullptr; }},
    {rule_csc_starts, "sparse double 3x2 nzmax 9", [](oxArray &a) { a.num.jc = falling; }},
    {rule_csc_count, "sparse double 3x2 nzmax 8", [](oxArray &a) { a.num.jc = plenty; }},
    {rule_csc_rows, "sparse double 3x2 nzmax 9",
     [](oxArray &a) { a.num.jc = rising, a.num.ir = repeated; }},
    {rule_csc_capacity, "sparse double 3x2", [](oxArray &a) { a.num.nzmax = 0; }},
    {rule_field_table, "struct 1x1 a: {}", [](oxArray &a) { a.record.names = &no_owner; }},
};

TEST_F(CheckHeader, EveryRuleIsNoticedAndNoOther) {
    int seen = 0; // rows stand in the order of the rules
    for (const auto &[rule, array, breaks] : broken_records) {
        SCOPED_TRACE(std::string(rule_text(rule)) + " in " + array);
        oxArray a = *arr(array);
        breaks(a);
        EXPECT_EQ(check_header(&a, CheckDepth::storage), rule);
        EXPECT_EQ(check_header(&a, CheckDepth::header), rule <= last_header_rule ? rule : 0);
        EXPECT_EQ(rule, ++seen);
    }
    EXPECT_EQ(seen, last_storage_rule);
}

} // namespace
