// Struct arrays: creation, fields, the shared table of names, object data.
#include <containers/field_table.h>
#include <core/array.h>
#include <core/name_index.h>
#include <core/tuning.h>
#include <ox/sharing.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>
#include <support/random.h>

#include <algorithm>
#include <iterator>

using namespace ox;
using namespace ox::test;

namespace {

using Structs = HostTest;
using StructsBare = BareTest;
using Names = std::vector<std::string>;

oxArray *struct_of(kwSize m, kwSize n, const Names &names) {
    std::vector<const char *> p;
    for (const std::string &s : names) p.push_back(s.c_str());
    return oxCreateStructMatrix(m, n, static_cast<int>(p.size()), p.data());
}

Names names_of(const oxArray *a) {
    Names names;
    for (int k = 0; k < oxGetNumberOfFields(a); ++k) names.push_back(oxGetFieldNameByNumber(a, k));
    return names;
}

TEST_F(Structs, CreationMakesATableForNamesAndABlockForElements) {
    struct Row {
        kwSize m, n;
        Names names;
        bool block, table;
    };
    const Row table[] = {{2, 1, {"p", "q"}, true, true},
                         {0, 5, {"p"}, false, true},
                         {2, 2, {}, false, false},
                         {kwSize{1} << 40, 0, {"p"}, false, true},
                         {kwSize{1} << 40, 9, {}, false, false}};
    for (const Row &r : table) {
        const oxArray *a = struct_of(r.m, r.n, r.names);
        EXPECT_EQ(oxGetM(a), r.m);
        EXPECT_EQ(oxGetN(a), r.n);
        EXPECT_EQ(oxGetFields(a) != nullptr, r.block);
        EXPECT_EQ(oxGetFieldInfo(a) != nullptr, r.table);
        EXPECT_EQ(oxGetFieldNames(a) != nullptr, r.table);
        EXPECT_EQ(names_of(a), r.names);
        EXPECT_EQ(oxGetFieldNumber(a, "none"), -1);
        EXPECT_EQ(oxGetField(a, 0, "none"), nullptr);
    }
    const char *x[] = {"p"};
    const kwSize dims[] = {2, 3, 1};
    EXPECT_EQ(text(oxCreateStructArray(3, dims, 1, x)), "struct 2x3x1 p: {} {} {} {} {} {}");
    EXPECT_EQ(text(oxCreateStructArray(1, dims, 1, x)), "struct 2x1 p: {} {}");
    EXPECT_EQ(text(oxCreateStructArray(0, nullptr, 1, x)), "struct 0x0 p");
    EXPECT_RAISES_ENTRY(FNOMEM, struct_of(kwSize{1} << 40, kwSize{1} << 40, {"p"}));
    EXPECT_EQ(oxGetFieldNameByNumber(struct_of(1, 1, {"p"}), 1), nullptr);
    EXPECT_EQ(oxGetFieldNameByNumber(struct_of(1, 1, {"p"}), -1), nullptr);
}

TEST_F(Structs, AmongDuplicateNamesTheHighestNumberWins) {
    Names names = {"a", "b", "a"};
    oxArray *small = struct_of(1, 1, names);
    EXPECT_EQ(oxGetFieldNumber(small, "a"), 2);
    EXPECT_EQ(oxGetFieldNumber(small, "A"), -1);
    for (int k = 0; k < 100; ++k) names.insert(names.begin() + 1, "f" + std::to_string(k));
    oxArray *hashed = struct_of(1, 1, names);
    EXPECT_EQ(oxGetFieldNumber(hashed, "a"), 102);
    oxRemoveField(hashed, 102); // the earlier one comes back
    EXPECT_EQ(oxGetFieldNumber(hashed, "a"), 0);
}

// A model of the names beside two structs that may share one table.
TEST_F(Structs, LookupAgreesWithAListUnderAddingAndRemoving) {
    Random random(11);
    const auto name = [&] { return "common_prefix_" + std::to_string(random.below(140)); };
    oxArray *a = struct_of(1, 0, {});
    Names model;
    for (int step = 0; step < 6000; ++step) {
        const Contexts contexts;
        const oxArray *sharer = random.chance(0.3) ? oxCreateEmptyCopy(a) : nullptr;
        const Names before = model;
        const std::string n = name();
        const auto found = std::find(model.rbegin(), model.rend(), n);
        const int number = static_cast<int>(std::distance(found, model.rend())) - 1;
        ASSERT_EQ(oxGetFieldNumber(a, n.c_str()), number) << "seed " << random.seed();
        if (random.chance((step / 1000) % 2 ? 0.3 : 0.6)) {
            const int expected = number < 0 ? static_cast<int>(model.size()) : number;
            if (number < 0) model.push_back(n);
            ASSERT_EQ(oxAddField(a, n.c_str()), expected);
        } else if (!model.empty()) {
            const auto k = static_cast<std::ptrdiff_t>(random.below(model.size()));
            model.erase(model.begin() + k);
            oxRemoveField(a, static_cast<int>(k));
        }
        ASSERT_EQ(names_of(a), model);
        const name_index_info *table = oxGetFieldInfo(a);
        ASSERT_EQ(table && table->hash, model.size() >= tuning::field_hash_min);
        if (sharer) {
            ASSERT_EQ(names_of(sharer), before);
        }
    }
}

TEST_F(Structs, NewFieldsAreEmptyAndOldSlotsStay) {
    oxArray *a = arr("struct 2x1 p,q: {1} {2} {3} {4}");
    EXPECT_EQ(oxAddField(a, "z"), 2);
    EXPECT_EQ(text(a), "struct 2x1 p,q,z: {double 1x1: 1} {double 1x1: 2} {} {double 1x1: 3} "
                       "{double 1x1: 4} {}");
    oxArray **slots = oxGetFields(a);
    EXPECT_EQ(oxAddField(a, "p"), 0);
    EXPECT_EQ(oxGetFields(a), slots);
    EXPECT_EQ(oxAddField(struct_of(0, 1, {}), "not checked!"), 0);
    EXPECT_RAISES("VELTRO:AddField:InvalidFieldName", "Invalid field name: '1a'.",
                  oxAddFieldToStruct(a, "1a"));
    oxAddFieldToStruct(a, "w");
    EXPECT_EQ(oxGetFieldNumber(a, "w"), 3);
}

TEST_F(Structs, ArraysThatShareATableChangeItAlone) {
    const oxArray *b = arr("struct 1x1 p,q: {1} {2}");
    oxArray *a = oxDuplicateArray(b);
    ASSERT_EQ(oxGetFieldInfo(a), oxGetFieldInfo(b));
    EXPECT_EQ(oxGetFieldInfo(a)->reference_count, 2);
    oxAddField(a, "z");
    EXPECT_EQ(names_of(b), (Names{"p", "q"}));
    EXPECT_EQ(oxGetFieldInfo(b)->reference_count, 1);
    EXPECT_EQ(oxGetFieldNameByNumber(a, 0), oxGetFieldNameByNumber(b, 0)); // one interned text
}

TEST_F(Structs, RemovedValuesBecomeTemporaries) {
    oxArray *a = arr("struct 1x2 a,b: {1} {2} {3} {4}"), *first = oxGetField(a, 0, "a");
    oxRemoveField(a, 0);
    EXPECT_EQ(text(a), "struct 1x2 b: {double 1x1: 2} {double 1x1: 4}");
    EXPECT_TRUE(oxIsTemp(first));
    for (const int n : {-1, 1}) oxRemoveField(a, n);
    oxRemoveField(arr("double 1x1: 1"), 0);
    EXPECT_EQ(oxGetNumberOfFields(a), 1);
    oxRemoveField(a, 0);
    EXPECT_EQ(oxGetFieldInfo(a), nullptr);
    EXPECT_EQ(oxGetFields(a), nullptr);
}

TEST_F(Structs, ARemovedValueOfAnotherContainerOnlyLosesAReference) {
    oxArray *a = struct_of(1, 1, {"a"}), *cell = arr("cell 1x1: {7}");
    oxArray *v = oxGetCell(cell, 0);
    oxIncRefCount(v);
    oxSetField(a, 0, "a", v);
    oxRemoveField(a, 0);
    EXPECT_EQ(oxGetReferenceCount(v), 0u);
    EXPECT_FALSE(oxIsTemp(v));
}

TEST_F(Structs, SettingAnAbsentFieldOverwritesTheElementBefore) {
    oxArray *a = struct_of(2, 1, {"p", "q"}), *v = arr("5");
    oxSetField(a, 1, "none", v);
    EXPECT_EQ(oxGetFieldByNumber(a, 0, 1), v);
    EXPECT_EQ(oxGetArrayScopeField(v), oxSCOPE_CONTAINED);
    oxSetField(a, 0, "q", nullptr); // the old value is left to its last owner
    EXPECT_EQ(oxGetField(a, 0, "q"), nullptr);
    oxDestroyArray(v);
}

TEST_F(Structs, TheFieldsBlockMovesFromTheCallersListToTheArray) {
    oxArray *a = struct_of(1, 1, {"p"});
    oxFreeEx(oxGetFields(a));
    auto **slots = static_cast<oxArray **>(oxCalloc(1, sizeof(oxArray *)));
    oxSetFields(a, slots);
    EXPECT_EQ(oxGetFields(a), slots);
    EXPECT_FALSE(oxIsOnAllocList(slots));
}

TEST_F(Structs, AClassNameMakesAnObject) {
    oxArray *a = struct_of(1, 1, {"p"});
    oxSetObjectCheckSum(a, 77);
    EXPECT_EQ(oxSetClassName(a, "widget"), 0);
    EXPECT_TRUE(oxIsObject(a));
    EXPECT_FALSE(oxIsNumeric(a));
    EXPECT_STREQ(oxGetObjectClassName(a), "widget");
    EXPECT_EQ(oxGetObjectCheckSum(a), 0u);
    EXPECT_EQ(oxSetClassName(a, "gadget"), 0);
    oxSetObjectTagIndex(a, 3);
    EXPECT_EQ(oxSetClassName(a, "other"), 1);
    EXPECT_EQ(oxSetClassName(arr("double 1x1: 1"), "other"), 1);
    EXPECT_STREQ(oxGetClassName(a), "gadget");
    EXPECT_EQ(oxGetObjectTagIndex(a), 3);
}

// The name is there, the slots are not: nothing repairs that, so the test does.
TEST_F(Structs, AFailedFieldLeavesItsNameBehind) {
    struct_of(0, 0, {"p_new"}); // interns it, which allocates now and then
    oxArray *a = arr("struct 1x1 p: {}");
    oxArray **slots = oxGetFields(a);
    {
        FailingAllocation slots_fail(2);
        EXPECT_RAISES_ENTRY(FNOMEM, oxAddField(a, "p_new"));
    }
    EXPECT_EQ(names_of(a), (Names{"p", "p_new"}));
    EXPECT_EQ(oxGetFields(a), slots);
    oxFreeEx(slots);
    oxSetFields(a, nullptr);
}

TEST_F(StructsBare, FailuresAnswerMinusOneAndRemovedValuesStayWithTheCaller) {
    oxArray *a = struct_of(1, 1, {"p"}), *v = oxCreateDoubleScalar(1);
    {
        FailingAllocation all(1, FailingAllocation::Then::stays);
        EXPECT_EQ(oxAddField(a, "q"), -1);
    }
    EXPECT_EQ(names_of(a), Names{"p"});
    oxSetField(a, 0, "p", v);
    oxRemoveField(a, 0);
    EXPECT_EQ(oxGetScalar(v), 1);
    oxDestroyArray(v);
    oxDestroyArray(a);
}

TEST_F(Structs, StackOfAnError) {
    const char *file[] = {"f.vel", "g.vel"}, *name[] = {"f", ""};
    const double line[] = {3, 14};
    EXPECT_EQ(text(oxCreateStackStruct(2, file, name, line)),
              "struct 2x1 file,name,line: {char 1x5: 'f.vel'} {char 1x1: 'f'} {double 1x1: 3} "
              "{char 1x5: 'g.vel'} {char 0x0} {double 1x1: 14}");
}

TEST_F(Structs, FailedAllocations) {
    static Names many;
    for (int k = 0; k < 70; ++k) many.push_back("f" + std::to_string(k));
    static const kwSize dims[] = {2, 1, 2};
    static const char *names[] = {"p", "q"};
    static const double line[] = {3, 14};
    const Sweep table[] = {
        {"matrix",
         {},
         [](auto &) {
             return struct_of(2, 1, {"p", "q"});
         }},
        {"many names", {}, [](auto &) { return struct_of(1, 1, many); }},
        {"array", {}, [](auto &) { return oxCreateStructArray(3, dims, 2, names); }},
        {.name = "stack", // its texts ask for a second block
         .make = [](auto &) { return oxCreateStackStruct(2, names, names, line); },
         .may_survive = true},
        {.name = "field without elements",
         .inputs = {"struct 0x1 p,q"},
         .act = [](auto &in) { return oxAddField(in[0], "z") == 2; },
         .silent = true,
         .changes_inputs = true},
        {.name = "field of a shared table",
         .act = [](auto &in) { return oxAddField(in[0], "z") == 70; },
         .silent = true,
         .changes_inputs = true,
         .setup =
             [] {
                 oxArray *a = struct_of(0, 1, many);
                 return Arrays{a, oxDuplicateArray(a)};
             }}};
    for (const Sweep &s : table) sweep(s);
}

} // namespace
