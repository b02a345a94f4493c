// Assignment and deletion beside the random ones: conversion, what has no class, ownership, classes
// that grow, resizing, and failing allocations.
#include <support/calls.h>

namespace {

using Assign = HostTest;

// Target, right side, subscripts.
oxArray *assign_row(const Arrays &in) { return assign(in[0], {in.begin() + 2, in.end()}, in[1]); }

TEST_F(Assign, ResultsAndErrors) {
    const WithLayer layer;
    const std::string one = "struct 1x1 a: {1}", handle = "function_handle 1x1: 8",
                      too_large = "!pmaxsize Maximum variable size allowed by the program is "
                                  "exceeded.";
    expect_rows(
        assign_row,
        {{{"1", "5", "1", "1", "2"}, "double 1x1x2: 1 | 5"},
         {{"cell 1x2: {1} {2}", "cell 1x1: {3}", "4 1"}, "cell 1x4: {3} {2} {} {3}"},
         {{"struct 1x1 a,b: {1} {2}", "struct 1x1 b,a: {8} {9}", "2"}, // by name
          "struct 1x2 a,b: {1} {2} {9} {8}"},
         {{"opaque 1x3: 4 5 6", "opaque 1x1: 7", "1 3"}, "opaque 1x3: 7 5 7"},
         {{"function_handle 1x1: 7", handle, "1"}, handle},
         {{"function_handle 1x1: 7", handle, "2"},
          "!index:internalError Arrays of function handles cannot grow."},
         {{"int8 1x2: 1 2", "300", "2"},
          "int8 1x2: 1 127",
          {{"VELTRO:intConvertOverflow",
            "Out of range value converted to intmin('int8') or intmax('int8')."}}},
         {{"struct 0x0", "struct 1x1 a: {7}", "2"}, "struct 1x2 a: {} {7}"},
         {{"1 2 3", "1", "281474976710655"}, too_large},
         {{"1 2 3", "1", "int64 1x1: -1"}, too_large},
         {{"logical 1x2: 1 0", "NaN", "9"}, "!nologicalnan"},
         {{one, "struct 1x1 a,b: {1} {2}", "2"},
          "!subsassigndimmismatch Subscripted assignment dimension mismatch."},
         {{one, "1", "2"}, "!invalidConversion Conversion to struct from double is not possible."},
         {{one, one}, "!nindexIsZero"}});
    expect_rows(
        [](auto &in) {
            return erase(in[0], {in.begin() + 1, in.end()});
        },
        {{{"1+1i 2 3+1i 4 5", "2"}, "1+1i 3+1i 4 5"},
         {{"cell 1x7: {1} {2} {3} {4} {5} {6} {7}", "1 3"}, "cell 1x5: {2} {4} {5} {6} {7}"},
         {{"double 2x1x3: 1; 2 | 3; 4 | 5; 6", ":", ":", "2"}, "double 2x1x2: 1; 2 | 5; 6"},
         {{"opaque 1x6: 4 5 6 7 8 9", "2 3"}, "opaque 1x4: 4 7 8 9"},
         {{"1"}, "!nindexIsZero"}});
}

TEST_F(Assign, GrowthAloneConvertsNothing) {
    oxArray *a = sub("int8 1x2: 1 2");
    Subs s{sub("4")};
    EXPECT_NO_WARNING(oxSubscriptedAssignmentWithFiller(a, 1, s.data(), sub("300"), nullptr, true));
    s = {sub("6")};
    const oxArray *filler = sub("sparse double 1x1: (0,0)=5");
    EXPECT_EQ(oxSubscriptedAssignmentWithFiller(a, 1, s.data(), sub("9"), filler, false), nullptr);
    EXPECT_EQ(text(a), "int8 1x6: 1 2 0 0 5 9");
}

TEST_F(Assign, TakesTheClassOfWhatIsAssignedWhenItHasNone) {
    oxArray *unknown = sub("double 0x0");
    oxReInitArray2Type(unknown, oxUNKNOWN_CLASS);
    oxSetDimensions(unknown, Dims{0, 0}.data(), 2);
    EXPECT_RAISES_ENTRY(FBADNULLINDEX, erase(unknown, {sub("1")}));
    EXPECT_RAISES_ENTRY(FSUBSASSIGNNUMELMISMATCH, assign(unknown, {sub("double 0x0")}, sub("1 2")));
    EXPECT_EQ(text(assign(unknown, {sub("2")}, sub("cell 1x1: {7}"))),
              text(sub("cell 1x2: {} {7}")));
    const auto into = [](oxArray *bracket, const Subs &at, const char *rhs) {
        oxSetEmptySqrBrktFlag(bracket, true);
        EXPECT_FALSE(assign(bracket, at, sub(rhs))->has_flag(oxFLAG_EMPTY_BRACKET));
        return text(bracket);
    };
    EXPECT_EQ(text(assign(sub("double 0x0"), {sub("2")}, sub("int8 1x1: 7"))), "double 1x2: 0 7");
    EXPECT_EQ(into(sub("double 0x3"), subs({"2", "1"}), "int8 1x1: 7"), "int8 2x3: 0 0 0; 7 0 0");
    EXPECT_EQ(into(sub("double 0x0"), {sub(":")}, "sparse double 1x2: (0,1)=3"), "double 1x2: 0 3");
}

TEST_F(Assign, ElementsOfContainersAreCounted) {
    oxArray *c = sub("cell 1x3: {1} {2} {3}"), *sharer = oxCreateSharedDataCopy(c),
            *rhs = sub("cell 1x2: {8} {9}"), *kept = oxGetCell(c, 1);
    assign(c, {sub("1 1")}, rhs);     // the first value leaves again
    EXPECT_EQ(oxGetCell(c, 1), kept); // a new slot block, the same elements
    EXPECT_EQ(oxGetReferenceCount(kept), 1u);
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(rhs, 0)), 0u);
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(rhs, 1)), 1u);
    erase(c, {sub("2")});
    EXPECT_EQ(oxGetReferenceCount(kept), 0u);
    EXPECT_EQ(text(sharer), text(sub("cell 1x3: {1} {2} {3}")));
    EXPECT_EQ(text(c), text(sub("cell 1x2: {9} {3}")));
}

// A class of numbers whose arrays grow by what `fill` makes.
struct Growing : xxInfo {
    const char *fill = "opaque 1x1: 5";
    const char *class_name(const oxArray *) const override { return "Growing"; }
    bool is_class_object() const override { return true; }
    oxArray *default_object(bool) override { return fill ? sub(fill) : nullptr; }
    void release(oxArray *a) override { opaque_class()->release(a); }
    bool copy_element(void **dst, void *src) override {
        return opaque_class()->copy_element(dst, src);
    }
};

TEST_F(Assign, GrowingClassObjectsAskForADefault) {
    const WithLayer layer;
    Growing info;
    const Contexts contexts; // left while the class lives
    oxArray *a = sub("opaque 1x1: 1"), *rhs = sub("opaque 1x1: 2");
    a->opaque.info = &info;
    const oxArray *s = sub("3");
    EXPECT_EQ(text(oxSubscriptedAssignmentWithFiller(a, 1, &s, rhs, nullptr, false)),
              "opaque 1x1: 5");
    EXPECT_EQ(text(a), "opaque 1x3: 1 5 2");
    info.fill = nullptr;
    EXPECT_EQ(text(assign(a, subs({"5"}), rhs)), "opaque 1x5: 1 5 2 -1 2");
    info.fill = "opaque 0x0";
    EXPECT_RAISES("VELTRO:index:defaultObjectEmpty",
                  "When expanding an array, the default constructor for 'Growing' class returned "
                  "empty.",
                  assign(a, {sub("9")}, rhs));
    EXPECT_EQ(text(a), "opaque 1x5: 1 5 2 -1 2");
    static std::string called;
    info.fill = nullptr; // a heterogeneous one asks its static method then
    ox_object_layer asks{};
    asks.call_static = [](const char *name) {
        called = name;
        return sub("opaque 1x1: 6");
    };
    const ox_object_layer *previous = ox_register_object_layer(&asks);
    a->set_opaque_heterogeneous(true);
    EXPECT_EQ(text(assign(a, {sub("7")}, rhs)), "opaque 1x7: 1 5 2 -1 2 6 2");
    EXPECT_EQ(called, "Growing.getDefaultObject");
    ox_register_object_layer(previous);
}

TEST_F(Assign, Resizing) {
    const std::tuple<const char *, Dims, const char *> rows[] = {
        {"double 2x2x2: 1 2; 3 4 | 5 6; 7 8", {2, 3}, "double 2x3: 1 2 0; 3 4 0"},
        {"cell 2x2: {1} {2} {3} {4}", {3, 1}, "cell 3x1: {1} {2} {}"},
        {"struct 1x2 a,b: {1} {2} {3} {4}", {2, 1}, "struct 2x1 a,b: {1} {2} {} {}"},
        {"sparse double 2x2: (0,0)=1 (1,1)=2", {1, 3}, "sparse double 1x3 nzmax 2: (0,0)=1"},
    };
    for (const auto &[from, dims, result] : rows) {
        oxArray *a = sub(from), *sharer = oxCreateSharedDataCopy(a);
        oxResizeArray(a, dims.size(), dims.data());
        EXPECT_EQ(text(a), text(sub(result)));
        EXPECT_EQ(text(sharer), text(sub(from)));
    }
    oxArray *a = sub("4");
    oxResize(a, 1, 2);
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(a));
    EXPECT_RAISES_ENTRY(FPMAXSIZE, oxResize(a, kwSize{1} << 46, 4));
    double outside[4] = {1, 2, 3, 4};
    oxArray *priv = oxCreateDoubleMatrix(1, 0, oxREAL);
    oxSetDataPrivateFlag(priv, true);
    oxSetPr(priv, outside);
    oxSetN(priv, 4);
    EXPECT_EQ(text(assign(priv, subs({"5"}), sub("5"))), "double 1x5: 1 2 3 4 5");
    EXPECT_FALSE(oxIsDataPrivate(priv)); // the block is the array's own now
}

// Deliberate: a false mask deletes nothing, but the scalar loses its flag.
TEST_F(Assign, ADeletionByAFalseMaskDropsTheScalarFlag) {
    oxArray *a = sub("1");
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(erase(a, {sub("double 0x0")})));
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(erase(a, {sub("logical 1x1: 0")})));
}

} // namespace
