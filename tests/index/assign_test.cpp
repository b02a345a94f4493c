// Assignment and deletion: growth, shapes, conversion, what is shared and what an error leaves.
#include "subs.h"

namespace {

class Assign : public HostTest {};

TEST_F(Assign, ConversionWarnsAndGrowthAloneConvertsNothing) {
    EXPECT_WARNS("VELTRO:intConvertOverflow",
                 "Out of range value converted to intmin('int8') or intmax('int8').",
                 assign(sub("int8 1x2: 1 2"), {sub("2")}, sub("1x1: 300")));
    oxArray *a = sub("int8 1x2: 1 2");
    Subs s{sub("4")};
    EXPECT_NO_WARNING(
        oxSubscriptedAssignmentWithFiller(a, 1, s.data(), sub("1x1: 300"), nullptr, true));
    s = {sub("6")};
    const oxArray *filler = sub("sparse double 1x1: (0,0)=5");
    EXPECT_EQ(oxSubscriptedAssignmentWithFiller(a, 1, s.data(), sub("1x1: 9"), filler, false),
              nullptr);
    EXPECT_EQ(text(a), "int8 1x6: 1 2 0 0 5 9");
}

TEST_F(Assign, ErrorsLeaveTheTargetAlone) {
    constexpr const char *shapes = "VELTRO:subsassigndimmismatch",
                         *mismatch = "Subscripted assignment dimension mismatch.",
                         *too_large = "VELTRO:pmaxsize", *one = "struct 1x1 a: {1}";
    const struct {
        const char *a;
        std::vector<std::string> subs;
        const char *rhs, *id, *text;
    } rows[] = {
        // clang-format off
        {"1x3: 1 2 3", {"1x1: 281474976710655"}, "1x1: 1", too_large,
         "Maximum variable size allowed by the program is exceeded."},
        {"1x3: 1 2 3", {"int64 1x1: -1"}, "1x1: 1", too_large, nullptr},
        {"logical 1x2: 1 0", {"9"}, "1x1: NaN", "VELTRO:nologicalnan", nullptr},
        {one, {"2"}, "struct 1x1 a,b: {1} {2}", shapes, mismatch},
        {one, {"2"}, "1x1: 1", "VELTRO:invalidConversion", "Conversion to struct from double is not possible."},
        {one, {}, one, "VELTRO:nindexIsZero", nullptr},
        // clang-format on
    };
    for (const auto &row : rows) {
        oxArray *a = sub(row.a), *sharer = oxCreateSharedDataCopy(a);
        const std::string before = text(a);
        EXPECT_RAISES(row.id, row.text, assign(a, subs(row.subs), sub(row.rhs))) << row.a;
        EXPECT_EQ(text(a), before);
        EXPECT_TRUE(oxIsSharedArray(sharer));
    }
}

TEST_F(Assign, TakesTheClassOfWhatIsAssignedWhenItHasNone) {
    const kwSize none[2] = {0, 0};
    const auto into = [&](oxArray *a, bool unknown, const std::vector<std::string> &at,
                          const char *rhs, const char *result) {
        oxSetEmptySqrBrktFlag(a, !unknown);
        if (unknown) oxReInitArray2Type(a, oxUNKNOWN_CLASS), oxSetDimensions(a, none, 2);
        EXPECT_EQ(text(assign(a, subs(at), sub(rhs))), result);
        EXPECT_FALSE(a->has_flag(oxFLAG_EMPTY_BRACKET));
    };
    into(sub("0x0"), true, {"2"}, "cell 1x1: {7}", "cell 1x2: {} {double 1x1: 7}");
    into(sub("0x3"), false, {"2", "1"}, "int8 1x1: 7", "int8 2x3: 0 0 0; 7 0 0");
    into(sub("0x0"), false, {":"}, "sparse double 1x2: (0,1)=3", "double 1x2: 0 3");
    EXPECT_EQ(text(assign(sub("0x0"), subs({"2"}), sub("int8 1x1: 7"))), "double 1x2: 0 7");
    EXPECT_EQ(text(assign(sub("struct 0x0"), subs({"2"}), sub("struct 1x1 a: {7}"))),
              "struct 1x2 a: {} {double 1x1: 7}");
}

TEST_F(Assign, OneElementAtATimeAndFromItself) {
    oxArray *row = sub("0x0"), *column = sub("2x1: 1; 2");
    for (int k = 1; k <= 300; ++k) {
        const oxArray *v = oxCreateDoubleScalar(k);
        assign(row, {v}, v);
        assign(column, {oxCreateDoubleScalar(k + 2)}, v);
    }
    ASSERT_EQ(oxGetN(row), 300u);
    ASSERT_EQ(oxGetM(column), 302u);
    for (int k = 0; k < 300; ++k) EXPECT_EQ(oxGetPr(row)[k] + oxGetPr(column)[k + 2], 2 * (k + 1));
    EXPECT_EQ(text(erase(row, {row})), "double 1x0");
}

TEST_F(Assign, ContainersOwnWhatTheyHold) {
    oxArray *c = sub("cell 1x3: {1} {2} {3}"), *sharer = oxCreateSharedDataCopy(c),
            *rhs = sub("cell 1x2: {8} {9}"), *kept = oxGetCell(c, 1);
    assign(c, {sub("1x2: 1 1")}, rhs); // the first value leaves again
    EXPECT_EQ(text(c), "cell 1x3: {double 1x1: 9} {double 1x1: 2} {double 1x1: 3}");
    EXPECT_EQ(text(sharer), "cell 1x3: {double 1x1: 1} {double 1x1: 2} {double 1x1: 3}");
    EXPECT_EQ(oxGetCell(c, 1), kept); // a new slot block, the same elements
    EXPECT_EQ(oxGetReferenceCount(kept), 1u);
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(rhs, 0)), 0u);
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(rhs, 1)), 1u);
    oxArray *s = sub("struct 1x2 a,b: {1} {2} {3} {4}");
    assign(s, {sub("1x2: 2 3")}, sub("struct 1x1 b,a: {8} {9}"));
    EXPECT_EQ(text(s), text(sub("struct 1x3 a,b: {1} {2} {9} {8} {9} {8}")));
}

// A class of numbers whose arrays grow.
struct Growing : xxInfo {
    bool empty = false, none = false;
    const char *class_name(const oxArray *) const override { return "Growing"; }
    bool is_class_object() const override { return true; }
    oxArray *default_object(bool) override {
        return none ? nullptr : sub(empty ? "opaque 0x0" : "opaque 1x1: 5");
    }
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
    info.none = true;
    EXPECT_EQ(text(assign(a, subs({"5"}), rhs)), "opaque 1x5: 1 5 2 -1 2");
    info.none = false;
    info.empty = true;
    EXPECT_RAISES("VELTRO:index:defaultObjectEmpty",
                  "When expanding an array, the default constructor for 'Growing' class returned "
                  "empty.",
                  assign(a, {sub("9")}, rhs));
    EXPECT_EQ(text(a), "opaque 1x5: 1 5 2 -1 2");
    static std::string called;
    info.none = true; // a heterogeneous one asks its static method then
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
    oxArray *unknown = sub("0x0"), *handle = sub("function_handle 1x1: 8");
    oxReInitArray2Type(unknown, oxUNKNOWN_CLASS);
    oxSetM(unknown, 0);
    EXPECT_RAISES_ENTRY(FSUBSASSIGNNUMELMISMATCH, assign(unknown, {sub("0x0")}, a));
    EXPECT_RAISES("VELTRO:index:internalError", "Arrays of function handles cannot grow.",
                  assign(sub("function_handle 1x1: 7"), {sub("2")}, handle));
    EXPECT_EQ(text(assign(sub("function_handle 1x1: 7"), {sub("1")}, handle)), text(handle));
}

TEST_F(Assign, Resizing) {
    const std::tuple<const char *, Dims, const char *> rows[] = {
        {"2x2: 1 2; 3 4", {3, 3}, "double 3x3: 1 2 0; 3 4 0; 0 0 0"},
        {"2x2x2: 1 2; 3 4 | 5 6; 7 8", {2, 3}, "double 2x3: 1 2 0; 3 4 0"},
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
    oxArray *a = sub("1x1: 4");
    oxResize(a, 1, 2);
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(a));
    EXPECT_RAISES_ENTRY(FPMAXSIZE, oxResize(a, kwSize{1} << 46, 4));
    double outside[4] = {1, 2, 3, 4};
    oxArray *priv = oxCreateDoubleMatrix(1, 0, oxREAL);
    oxSetDataPrivateFlag(priv, true);
    oxSetPr(priv, outside);
    oxSetN(priv, 4);
    EXPECT_EQ(text(assign(priv, subs({"5"}), sub("1x1: 5"))), "double 1x5: 1 2 3 4 5");
    EXPECT_FALSE(oxIsDataPrivate(priv)); // the block is the array's own now
}

TEST_F(Assign, SurvivesFailingAllocations) {
    const WithLayer layer;
    sweep_changes(
        {
            {"double 1x1: 1", "double 1x1: 5", "double 1x1: 1", "double 1x1: 1", "double 1x1: 2"},
            {"cell 1x2: {1} {2}", "cell 1x1: {3}", "double 1x2: 4 1"},
            {"struct 1x2 a,b: {1} {2} {3} {4}", "struct 1x1 b,a: {3} {4}", "double 1x1: 2"},
            {"opaque 1x3: 4 5 6", "opaque 1x1: 7", "double 1x2: 1 3"},
            {"function_handle 1x1: 7", "function_handle 1x1: 8", "double 1x1: 1"},
        },
        [](auto &in) { assign(in[0], Subs(in.begin() + 2, in.end()), in[1]); });
}

class Delete : public HostTest {};

TEST_F(Delete, ScalarsAndWhatHasNoClass) {
    oxArray *a = sub("1x1: 1"), *unknown = sub("0x0");
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(erase(a, {sub("0x0")})));
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(erase(a, {sub("logical 1x1: 0")}))); // but a false mask
    oxReInitArray2Type(unknown, oxUNKNOWN_CLASS);
    EXPECT_RAISES_ENTRY(FBADNULLINDEX, erase(unknown, {sub("1")}));
    EXPECT_RAISES("VELTRO:nindexIsZero", nullptr, erase(sub("1x1: 1"), {}));
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
