// Deletion: what is left, errors, and who owns what goes.
#include "subs.h"

namespace {

class Delete : public HostTest {};

// A result, or the number of an error.
TEST_F(Delete, RulesAndErrors) {
    const std::tuple<const char *, std::vector<std::string>, const char *, oxErrorMessage> rows[] =
        {{"2x2: 1 2; 3 4", {"2"}, "double 1x3: 1 2 4", FNOMEM}, // a matrix becomes a row
         {"2x3: 1 2 3; 4 5 6", {":", "1:1:3"}, "double 2x0", FNOMEM},
         {"1x1: 1", {"1"}, "double 1x0", FNOMEM},
         {"2x2: 1 2; 3 4", {"logical 2x2: 0 0; 0 0"}, "double 2x2: 1 2; 3 4", FNOMEM},
         {"0x3", {":", ":", "1"}, "double 0x3x0", FNOMEM},
         {"2x2: 1 2; 3 4", {"1", "2"}, nullptr, FBADNULLASSIGN},
         {"3x3: 1 2 3; 4 5 6; 7 8 9", {":", "5"}, nullptr, FSUBSDELDIMMISMATCH},
         {"sparse double 2x2: (0,0)=1", {":", "3"}, nullptr, FSUBSDELDIMMISMATCH}};
    for (const auto &[from, at, result, number] : rows) {
        oxArray *a = sub(from);
        if (!result) EXPECT_RAISES_ENTRY(number, erase(a, subs(at))) << at[0];
        EXPECT_EQ(text(result ? erase(a, subs(at)) : a), result ? result : text(sub(from)));
    }
    oxArray *a = sub("1x1: 1"), *unknown = sub("0x0");
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(erase(a, {sub("0x0")})));
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(erase(a, {sub("logical 1x1: 0")}))); // but a false mask
    oxReInitArray2Type(unknown, oxUNKNOWN_CLASS);
    EXPECT_RAISES_ENTRY(FBADNULLINDEX, erase(unknown, {sub("1")}));
    EXPECT_RAISES("VELTRO:nindexIsZero", nullptr, erase(sub("1x1: 1"), {}));
}

TEST_F(Delete, LongVectorsOfEveryWidthAndUnknownEnds) {
    for (int cls : {3, 4, 6, 7, 8, 15}) {
        oxArray *a = oxColonop(0, 1, 199, oxINT16_CLASS);
        a = oxMustBe(a, static_cast<oxClassID>(cls == 4 || cls == 3 ? 9 : cls));
        oxArray *mask = oxCreateLogicalMatrix(1, 200);
        for (kwSize k = 0; k < 200; ++k) oxGetLogicals(mask)[k] = k % 3 != 1;
        const oxArray *kept = ref(a, {oxColonop(2, 3, 200, oxDOUBLE_CLASS)});
        EXPECT_EQ(text(erase(a, {mask})), text(kept));
    }
}

TEST_F(Delete, ElementsOfContainersAreReleased) {
    oxArray *c = sub("cell 1x3: {1} {2} {3}"), *sharer = oxCreateSharedDataCopy(c);
    oxArray *gone = oxGetCell(c, 1);
    EXPECT_EQ(text(erase(c, {sub("2")})), "cell 1x2: {double 1x1: 1} {double 1x1: 3}");
    EXPECT_EQ(oxGetCell(sharer, 1), gone);
    EXPECT_EQ(oxGetReferenceCount(gone), 0u);
    EXPECT_EQ(text(erase(sub("struct 2x2 a,b: {1} {2} {3} {4} {5} {6} {7} {8}"), subs({"1", ":"}))),
              "struct 1x2 a,b: {double 1x1: 3} {double 1x1: 4} {double 1x1: 7} {double 1x1: 8}");
    const WithLayer layer;
    const Contexts contexts;
    oxArray *o = sub("opaque 1x4: 4 5 6 7");
    EXPECT_EQ(text(erase(o, {sub("1x2: 2 3")})), "opaque 1x2: 4 7");
}

TEST_F(Delete, SurvivesFailingAllocations) {
    sweep_changes(
        {
            {"double 1x5: 1+1i 2 3+1i 4 5", "double 1x1: 2"},
            {"cell 1x7: {1} {2} {3} {4} {5} {6} {7}", "double 1x2: 1 3"},
            {"double 2x1x3: 1; 2 | 3; 4 | 5; 6", "char 1x1: ':'", "char 1x1: ':'", "double 1x1: 2"},
        },
        [](auto &in) { erase(in[0], Subs(in.begin() + 1, in.end())); });
}

} // namespace
