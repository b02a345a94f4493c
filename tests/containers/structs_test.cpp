// Struct arrays: creation, fields, the shared table of names, object data, properties.
#include <containers/field_table.h>
#include <core/create.h>
#include <core/tuning.h>
#include <support/suite.h>

#include <algorithm>
#include <ut.h>

namespace {

using Structs = HostTest;
using Names = std::vector<std::string>;

oxArray *struct_of(kwSize m, kwSize n, const Names &names) {
    std::vector<const char *> p;
    for (const std::string &s : names) p.push_back(s.c_str());
    return oxCreateStructMatrix(m, n, static_cast<int>(p.size()), p.data());
}

Names names_of(const oxArray *a) {
    return Names(oxGetFieldNames(a), oxGetFieldNames(a) + oxGetNumberOfFields(a));
}

TEST_F(Structs, TooManySlotsAndAStack) {
    const char *p[] = {"p"}, *none[] = {""};
    const double line = 14;
    EXPECT_RAISES_ENTRY(FNOMEM, struct_of(kwSize{1} << 40, kwSize{1} << 40, {"p"}));
    EXPECT_EQ(text(oxCreateStackStruct(1, p, none, &line)),
              "struct 1x1 file,name,line: {char 1x1: 'p'} {char 0x0} {double 1x1: 14}");
}

TEST_F(Structs, AmongDuplicateNamesTheHighestNumberWins) {
    Names names = {"a", "b", "a"};
    EXPECT_EQ(oxGetFieldNumber(struct_of(1, 1, names), "a"), 2);
    for (int k = 0; k < 100; ++k) names.insert(names.begin() + 1, "f" + std::to_string(k));
    oxArray *hashed = struct_of(1, 1, names);
    EXPECT_EQ(oxGetFieldNumber(hashed, "a"), 102);
    oxRemoveField(hashed, 102); // the earlier one comes back
    EXPECT_EQ(oxGetFieldNumber(hashed, "a"), 0);
}

// A list of names is the model; now and then another array shares the table.
TEST_F(Structs, LookupAgreesWithAListUnderAddingAndRemoving) {
    Random random(11);
    oxArray *a = struct_of(1, 0, {});
    Names model;
    for (int step = 0; step < 6000; ++step) {
        const Contexts contexts;
        const oxArray *sharer = random.chance(0.3) ? oxCreateEmptyCopy(a) : nullptr;
        const Names before = model;
        const std::string name = "common_prefix_" + std::to_string(random.below(140));
        auto number = static_cast<int>(std::find(model.begin(), model.end(), name) - model.begin());
        if (number == static_cast<int>(model.size())) number = -1;
        ASSERT_EQ(oxGetFieldNumber(a, name.c_str()), number) << "seed " << random.seed();
        if (random.chance((step / 1000) % 2 ? 0.3 : 0.6)) {
            if (number < 0) model.push_back(name);
            const int last = static_cast<int>(model.size()) - 1;
            ASSERT_EQ(oxAddField(a, name.c_str()), number < 0 ? last : number);
        } else if (!model.empty()) {
            const auto k = static_cast<std::ptrdiff_t>(random.below(model.size()));
            model.erase(model.begin() + k);
            oxRemoveField(a, static_cast<int>(k));
        }
        ASSERT_EQ(names_of(a), model);
        const name_index_info *table = oxGetFieldInfo(a);
        ASSERT_EQ(table && table->hash, model.size() >= tuning::field_hash_min);
        ASSERT_EQ(sharer ? names_of(sharer) : before, before);
    }
}

TEST_F(Structs, NewFieldsAreEmptyAndRemovedValuesBecomeTemporaries) {
    oxArray *a = arr("struct 2x1 p,q: {1} {2} {3} {4}"), *first = oxGetField(a, 0, "p");
    EXPECT_TRUE(oxAddField(a, "z") == 2 && oxAddField(a, "p") == 0);
    EXPECT_RAISES("VELTRO:AddField:InvalidFieldName", "Invalid field name: '1a'.",
                  oxAddFieldToStruct(a, "1a"));
    for (const int n : {0, -1, 2}) oxRemoveField(a, n);
    EXPECT_EQ(text(a), text(arr("struct 2x1 q,z: {2} {} {4} {}")));
    EXPECT_TRUE(oxIsTemp(first));
    // A value of another container only loses a reference.
    oxArray *b = struct_of(1, 1, {"p"}), *v = oxGetCell(arr("cell 1x1: {7}"), 0);
    oxSetField(b, 0, "p", oxCreateReference(v));
    oxRemoveField(b, 0);
    EXPECT_TRUE(oxGetReferenceCount(v) == 0 && !oxIsTemp(v));
}

TEST_F(Structs, SettingAnAbsentFieldOverwritesTheElementBefore) {
    oxArray *a = struct_of(2, 1, {"p", "q"}), *v = arr("5");
    oxSetField(a, 1, "none", v);
    EXPECT_EQ(oxGetFieldByNumber(a, 0, 1), v);
    oxSetField(a, 0, "q", nullptr); // the old value is left to its last owner
    EXPECT_EQ(oxGetArrayScopeField(v), oxSCOPE_CONTAINED);
    oxDestroyArray(v);
}

TEST_F(Structs, AClassNameMakesAnObjectUnlessThereIsATag) {
    oxArray *a = struct_of(1, 1, {});
    oxSetObjectCheckSum(a, 77);
    EXPECT_TRUE(oxSetClassName(a, "widget") == 0 && oxGetObjectCheckSum(a) == 0);
    oxSetObjectTagIndex(a, 3);
    EXPECT_EQ(oxSetClassName(a, "other") + oxSetClassName(arr("1"), "other"), 2);
}

// Nothing repairs that the name has no slots, so the test does.
TEST_F(Structs, AFailedFieldLeavesItsNameBehind) {
    struct_of(0, 0, {"p_new"}); // interns it, which allocates now and then
    oxArray *a = arr("struct 1x1 p: {}"), **slots = oxGetFields(a);
    {
        FailingAllocation slots_fail(2);
        EXPECT_RAISES_ENTRY(FNOMEM, oxAddField(a, "p_new"));
    }
    EXPECT_TRUE(names_of(a) == (Names{"p", "p_new"}) && oxGetFields(a) == slots);
    oxFreeEx(slots);
    oxSetFields(a, nullptr);
}

TEST_F(Structs, NamesAreALetterThenLettersDigitsAndUnderscores) {
    for (const char *bad : {"", "1a", "_a", "a b", "\xE9", "a\x80"})
        EXPECT_TRUE(!oxIsValidVelName(bad) && oxIsValidVelName("Z9__")) << bad;
    EXPECT_TRUE(oxIsValidVelNamePart("ab c", 2) && oxIsValidVelNamePart("a", 0));
    EXPECT_FALSE(oxIsValidVelNamePart("1", 0)); // still looks at the first byte
}

TEST_F(Structs, LongNamesAreCutAfterTheWarning) {
    const std::string fits(63, 'x'), whole = fits + "y";
    std::string name = whole;
    const std::string told = "'" + whole + "'\n exceeds VELTRO's maximum name length of 63 " +
                             "characters and has been truncated to\n '" + fits + "'.";
    EXPECT_WARNS("VELTRO:namelengthmaxexceeded", told, oxTruncateVelName(name.data()));
    EXPECT_STREQ(name.c_str(), fits.c_str());
    EXPECT_NO_WARNING(oxTruncateVelName(name.data())); // it fits now
    name = whole;                                      // and stays so where the warning is raised
    utSetWarningStatus(utGetWarningManagerContext(), "VELTRO:namelengthmaxexceeded", 2);
    EXPECT_RAISES("VELTRO:namelengthmaxexceeded", nullptr, oxTruncateVelName(name.data()));
    EXPECT_EQ(name, whole);
}

struct Gauge : xxInfo {
    bool open = true;
    oxArray *value = nullptr; // of every property; setting one replaces it

    bool has_get_property() const override { return open; }
    bool has_set_property() const override { return open; }
    oxArray *get_property(const oxArray *, kwSize, const char *) override { return value; }
    void set_property(oxArray *, kwSize, const char *, const oxArray *v) override {
        value = oxCreateSharedDataCopy(v);
    }
};

TEST_F(Structs, PropertiesGoThroughTheClassOfAnOpaqueArrayOnly) {
    Gauge info;
    const Contexts inner; // its arrays go before the information does
    oxArray *a = ox::hand_over(ox::make_header(oxOPAQUE_CLASS, 1, 1)), *v = arr("1 2");
    a->set_opaque_info(&info);
    EXPECT_EQ(oxGetProperty(a, 6, "level"), nullptr);
    oxSetProperty(a, 6, "level", v);
    EXPECT_TRUE(oxIsSharedArray(oxGetPropertyShared(a, 6, "level")));
    EXPECT_FALSE(oxIsSharedArray(oxGetProperty(a, 6, "level")));
    info.open = false;
    for (oxArray *closed : {a, arr("struct 1x1 level: {1}")}) {
        EXPECT_RAISES("VELTRO:invalidInput", "oxGetProperty works on public properties.",
                      oxGetProperty(closed, 6, "level"));
        EXPECT_RAISES("VELTRO:invalidInput", "oxSetProperty works on public properties.",
                      oxSetPropertyShared(closed, 6, "level", v));
    }
}

TEST_F(Structs, FailedAllocations) {
    static Names many;
    for (int k = 0; k < 70; ++k) many.push_back("f" + std::to_string(k));
    static const char *names[] = {"p", "q"};
    static const double line[] = {3, 14};
    sweep_everywhere({{}}, [](auto &) { return struct_of(1, 1, many); });
    sweep({.name = "stack", // texts ask for a second block
           .make = [](auto &) { return oxCreateStackStruct(2, names, names, line); },
           .may_survive = true});
    const auto sharers = [] {
        oxArray *a = struct_of(0, 1, many);
        return Arrays{a, oxDuplicateArray(a)};
    };
    sweep({.name = "shared",
           .act = [](auto &in) { return oxAddField(in[0], "z") == 70; },
           .silent = true,
           .changes_inputs = true,
           .setup = sharers});
}

} // namespace
