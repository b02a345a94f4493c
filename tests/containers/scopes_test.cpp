// Scopes: temporaries, arrays that a container or a property owns, and copies in their place.
#include <core/array_list.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>

using namespace ox;
using namespace ox::test;

namespace {

class Scopes : public HostTest {};

// An array on its way into an owner, and a sharer of its data that may already have the scope.
struct Pair {
    oxArray *a, *sharer;
};

Pair make_pair_of(const char *of) {
    oxArray *a = arr(of), *sharer = oxCreateSharedDataCopy(a);
    oxSetArrayScope(sharer, oxSCOPE_PROPERTY);
    return {a, sharer};
}

TEST_F(Scopes, AnArrayOfItsOwnChangesItsScopeAndLeavesTheList) {
    oxArray *a = arr("double 0x0");
    oxSetEmptySqrBrktFlag(a, true);
    const kwSize listed = array_list_length();
    EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
    EXPECT_TRUE(a->scope == oxSCOPE_PROPERTY && !a->has_flag(oxFLAG_EMPTY_BRACKET));
    EXPECT_EQ(array_list_length(), listed - 1);
    oxIncRefCount(a); // with the scope already, it is returned whoever else holds it
    EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
    oxArray *copy = contained(a); // another scope: a copy, and one reference less
    EXPECT_TRUE(copy != a && copy->scope == oxSCOPE_CONTAINED);
    EXPECT_EQ(oxGetReferenceCount(a), 0u);
    EXPECT_EQ(oxPreparePropertyValueForContainment(nullptr), nullptr);
    for (oxArray *p : {a, copy}) oxDestroyArray(p);
}

TEST_F(Scopes, ASharerThatHasTheScopeStandsForTheArray) {
    for (const char *of : {"7", "double 1x1x2: 1 | 2", "struct 1x1 a: {1}", "cell 1x1: {1}"}) {
        SCOPED_TRACE(of);
        const auto [a, sharer] = make_pair_of(of);
        oxClearScalarDoubleFlag(sharer);
        EXPECT_EQ(oxPreparePropertyValueForContainment(a), sharer);
        EXPECT_EQ(oxGetReferenceCount(sharer), 1u);
        EXPECT_FALSE(sharer->cross_link);
        EXPECT_EQ(oxIsScalarDoubleFlagSet(sharer), of[0] == '7');
        for (int owner = 0; owner < 2; ++owner) oxDestroyArray(sharer);
    }
}

TEST_F(Scopes, ASharerThatDiffersDoesNot) {
    const std::pair<const char *, void (*)(oxArray *)> differences[] = {
        {"scope", [](oxArray *s) { oxSetArrayScope(s, 9); }},
        {"empty bracket", [](oxArray *s) { oxSetEmptySqrBrktFlag(s, true); }},
        {"list mark", [](oxArray *s) { s->set_flag(oxFLAG_LIST_MARK, true); }},
        {"dimensions", [](oxArray *s) { oxSetM_730(s, 2), oxSetN_730(s, 1); }},
        {"class", [](oxArray *s) { s->class_code = oxOBJECT_CLASS; }},
        {"fields", [](oxArray *s) { oxUnshareOtherArrays(s), oxAddField(s, "more"); }},
    };
    for (const auto &[name, differ] : differences) {
        SCOPED_TRACE(name);
        const auto [a, sharer] = make_pair_of("struct 1x2 a: {1} {2}");
        differ(sharer);
        EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
        EXPECT_EQ(a->scope, oxSCOPE_PROPERTY);
        for (oxArray *p : {a, sharer}) oxDestroyArray(p);
    }
}

// Deliberate: what an enclosing context listed stays on its list, unless it is moved first.
TEST_F(Scopes, AnArrayOfAnEnclosingContextIsMovedBeforeItIsContained) {
    oxArray *a = arr("1"), *b = arr("2");
    const int outer = oxEnterNewArrayListContext();
    oxMoveArrayFromPreviousContext(outer, a);
    EXPECT_EQ(contained(a), a);
    EXPECT_FALSE(array_list_contains(a));
    EXPECT_EQ(contained(b), b);
    EXPECT_TRUE(array_list_contains(b));
    oxExitArrayListContext(outer, nullptr, 0, true);
    oxSetArrayScope(b, 4); // enters it a second time
    array_list_remove(b);  // and off again; the first entry goes with the context
    oxDestroyArray(a);
}

TEST(ScopesAtLoad, ChangesTouchNoList) {
    reset_library();
    oxArray *a = arr("1 2");
    oxSetArrayScope(a, 4);
    EXPECT_EQ(array_list_length(), 0u);
    EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
    EXPECT_EQ(contained(a), a);
    EXPECT_EQ(a->scope, oxSCOPE_PROPERTY);
    oxDestroyArray(a);
}

TEST(ScopesSweep, CopiesThatAreNotListedRaiseEvenWithoutManagers) {
    sweep({.name = "not listed", .inputs = {"1 2"}, .act = [](auto &in) {
               oxDestroyArray(oxCreateSharedCopyNotOnArrayList(in[0]));
               return true;
           }});
    sweep({.name = "temporary",
           .inputs = {"1 2"},
           .make = [](auto &in) { return oxCreateSharedCopy(in[0]); },
           .bare = false});
    reset_library();
    oxArray *a = arr("1");
    const FailingAllocation fault(1);
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateSharedCopyNotOnArrayList(a));
    oxDestroyArray(a);
}

} // namespace
