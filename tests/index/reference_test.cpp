// Reference: shapes, errors, and what results share with their source.
#include "subs.h"

#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/faults.h>
#include <support/host.h>

#include <cstring>

using namespace ox::test;

namespace {

class Reference : public HostTest {};

struct Row {
    const char *a;
    std::vector<std::string> subs;
    const char *result;
};

TEST_F(Reference, ShapesOfOneSubscript) {
    const Row rows[] = {
        {"3x1: 5; 6; 7", {"1x2: 1 2"}, "double 2x1: 5; 6"},
        {"1x3: 5 6 7", {"2x1: 1; 2"}, "double 1x2: 5 6"},
        {"2x2: 5 6; 7 8", {"1x2: 1 2"}, "double 1x2: 5 7"},
        {"2x2: 5 6; 7 8", {"2x1: 1; 2"}, "double 2x1: 5; 7"},
        {"2x2: 5 6; 7 8", {"2x2: 4 3; 2 1"}, "double 2x2: 8 6; 7 5"},
        {"1x3: 5 6 7", {"2x2: 1 3; 2 1"}, "double 2x2: 5 7; 6 5"},
        {"2x3: 1 2 3; 4 5 6", {":"}, "double 6x1: 1; 4; 2; 5; 3; 6"},
        {"0x3", {":"}, "double 0x1"},
        {"2x2: 5 6; 7 8", {"1:1:3"}, "double 1x3: 5 7 6"}, // a range is no column
        {"3x1: 5; 6; 7", {"1:1:2"}, "double 2x1: 5; 6"},
        {"1x1: 5", {"1:1:1"}, "double 1x1: 5"},
        {"1x1: 5", {"3x1: 1; 1; 1"}, "double 3x1: 5; 5; 5"},
        {"1x1x3: 5|6|7", {"1x2: 3 1"}, "double 1x1x2: 7 | 5"},
        {"1x1x3: 5|6|7", {"1x1: 2"}, "double 1x1: 6"},
        {"2x2: 5 6; 7 8", {"logical 2x2: 1 0; 0 1"}, "double 2x1: 5; 8"},
        {"2x2: 5 6; 7 8", {"logical 1x4: 1 0 0 1"}, "double 1x2: 5 8"},
        {"1x3: 5 6 7", {"logical 3x1: 1; 0; 1"}, "double 1x2: 5 7"},
        {"1x3: 5 6 7", {"logical 1x1: 0"}, "double 0x0"},
        {"1x3: 5 6 7", {"logical 0x0"}, "double 0x0"},
        {"1x3: 5 6 7", {"logical 1x3: 0 0 0"}, "double 1x0"},
        {"2x2: 5 6; 7 8", {"logical 1x1: 1"}, "double 1x1: 5"},
        {"2x2: 5 6; 7 8", {"0x0"}, "double 0x0"},
        {"3x1: 5; 6; 7", {"0x0"}, "double 0x0"},
        {"3x1: 5; 6; 7", {"1x0"}, "double 0x1"}, // an empty row is a vector
        {"2x2: 5 6; 7 8", {"0x3"}, "double 0x3"},
        {"char 1x3: 'abc'", {"char 1x1: '\\u0002'"}, "char 1x1: 'b'"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(text(ref(sub(row.a), subs(row.subs))), row.result) << row.a << row.subs[0];
}

TEST_F(Reference, SeveralSubscriptsFoldTrailingDimensions) {
    oxArray *a = oxColonop(1, 1, 24, oxDOUBLE_CLASS);
    const kwSize dims[3] = {2, 3, 4};
    oxSetDimensions(a, dims, 3);
    const Row rows[] = {
        {"", {"2", "7"}, "double 1x1: 14"},
        {"", {"2", "3", "4"}, "double 1x1: 24"},
        {"", {"1", "1", "1", "1", "1"}, "double 1x1: 1"},
        {"", {":", "12"}, "double 2x1: 23; 24"},
        {"", {":", "2:1:3", "2"}, "double 2x2: 9 11; 10 12"},
        {"", {"2", ":", "4:-3:1"}, "double 1x3x2: 20 22 24 | 2 4 6"},
        {"",
         {"1x3: 1 1 2", "1x2: 3 1", "1x2: 4 1"},
         "double 3x2x2: 23 19; 23 19; 24 20 | 5 1; 5 1; 6 2"},
        {"", {"logical 1x2: 0 1", "logical 1x3: 1 0 1", "1"}, "double 1x2: 2 6"},
        {"", {":", "1x0", ":"}, "double 2x0x4"},
        {"", {":", ":", "1", "logical 1x1: 1"}, "double 2x3: 1 3 5; 2 4 6"},
    };
    for (const Row &row : rows) EXPECT_EQ(text(ref(a, subs(row.subs))), row.result);
    EXPECT_EQ(text(ref(a, {})), text(a));
}

TEST_F(Reference, LongSelectionsOfEveryWidthAgreeWithSingleElements) {
    for (int cls : {3, 4, 6, 7, 8, 11, 13, 15}) {
        oxArray *a = oxCreateNumericMatrix(40, 50, static_cast<oxClassID>(cls), oxREAL);
        const kwSize width = oxGetElementSize(a);
        auto *bytes = static_cast<unsigned char *>(oxGetData(a));
        for (kwSize k = 0; k < 2000 * width; ++k)
            bytes[k] = static_cast<unsigned char>(cls == 3 ? k % 3 == 0 : k * 7 % 251);
        oxArray *mask = oxCreateLogicalMatrix(40, 50), *list = oxCreateDoubleMatrix(1, 70, oxREAL);
        for (kwSize k = 0; k < 2000; ++k) oxGetLogicals(mask)[k] = k * k % 7 < 3;
        for (kwSize k = 0; k < 70; ++k) oxGetPr(list)[k] = static_cast<double>(1 + k * k % 40);
        for (const Subs &s :
             {Subs{mask}, Subs{list}, Subs{list, sub("1:2:49")}, Subs{sub("1:2:39"), sub(":")},
              Subs{sub("40:-1:1"), list}, Subs{sub("2:1:39"), sub("1x3: 3 1 2")}}) {
            oxArray *linear = oxColonop(1, 1, 2000, oxDOUBLE_CLASS);
            const kwSize dims[2] = {40, 50};
            oxSetDimensions(linear, dims, 2);
            const oxArray *at = ref(linear, s), *b = ref(a, s);
            for (kwSize k = 0; k < oxGetNumberOfElements(b); ++k) {
                const oxArray *position = oxCreateDoubleScalar(oxGetPr(at)[k]);
                const oxArray *one = ref(a, {position});
                ASSERT_EQ(std::memcmp(oxGetData(one), static_cast<char *>(oxGetData(b)) + k * width,
                                      width),
                          0)
                    << cls << ' ' << k;
            }
        }
    }
}

TEST_F(Reference, BadSubscriptsRaiseInOrder) {
    const Row rows[] = {
        {"1x4: 1 2 3 4", {"5"}, "Index exceeds matrix dimensions."},
        {"2x2: 1 2; 3 4", {"1", "1", "2"}, "Index exceeds matrix dimensions."},
        {"1x3: 1 2 3", {"int8 1x1: -1"}, "Index exceeds matrix dimensions."},
        {"2x2: 1 2; 3 4", {"3", "0"}, "Index exceeds matrix dimensions."},
        {"2x2: 1 2; 3 4",
         {"0", "3"},
         "Subscript indices must either be real positive integers or logicals."},
        {"2x2: 1 2; 3 4",
         {"1.5"},
         "Subscript indices must either be real positive integers or logicals."},
        {"1x3: 1 2 3", {"logical 1x5: 1 0 0 0 1"}, "Index exceeds matrix dimensions."},
        {"sparse double 2x2: (0,0)=1", {"3", "1"}, "Index exceeds matrix dimensions."},
        {"sparse double 2x2: (0,0)=1", {"5"}, "Index exceeds matrix dimensions."},
        {"sparse double 2x2: (0,0)=1",
         {"1.5", "1"},
         "Subscript indices must either be real positive integers or logicals."},
    };
    for (const Row &row : rows) {
        const oxArray *a = sub(row.a);
        const Subs s = subs(row.subs);
        EXPECT_RAISES("VELTRO:badsubscript", row.result, ref(a, s)) << row.a;
    }
    // What selects nothing is never out of bounds, and false may lie outside.
    EXPECT_EQ(text(ref(sub("1x3: 1 2 3"), {sub("logical 1x5: 1 0 0 0 0")})), "double 1x1: 1");
    const kwSize wide = kwSize{1} << 20;
    const oxArray *scalar = sub("1x1: 1");
    oxArray *repeats = oxCreateDoubleMatrix(1, wide, oxREAL);
    for (kwSize k = 0; k < wide; ++k) oxGetPr(repeats)[k] = 1;
    EXPECT_RAISES_ENTRY(FPMAXSIZE, ref(scalar, {repeats, repeats, repeats}));
}

TEST_F(Reference, PartsFlagsAndStates) {
    oxArray *a = sub("1x3: 1 2+3i 4");
    EXPECT_EQ(text(ref(a, {sub("2")})), "double 1x1: 2+3i");
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(ref(a, {sub("2")})));
    EXPECT_FALSE(oxIsComplex(ref(a, {sub("1x2: 1 3")})));
    oxSetUserBits(a, 5);
    oxSetEmptySqrBrktFlag(a, true);
    a->set_flag(oxFLAG_HEADER_KEPT, true);
    for (const oxArray *b : {ref(a, {sub("1")}), ref(a, {sub("1x2: 1 2")})}) {
        EXPECT_EQ(oxGetUserBits(b), 5);
        EXPECT_FALSE(b->has_flag(oxFLAG_HEADER_KEPT | oxFLAG_EMPTY_BRACKET | oxFLAG_REUSABLE));
    }
    a->set_flag(oxFLAG_HEADER_KEPT, false);
    const oxArray *range = sub("2:2:8");
    EXPECT_EQ(text(ref(range, {sub("1x2: 3 1")})), "double 1x2: 6 2");
    EXPECT_EQ(oxCountColonObj(range), 4u);
    EXPECT_EQ(text(ref(sub("sparse double 2x2: (1,0)=3 (0,1)=4"), {sub("1:1:3")})),
              text(sub("sparse double 1x3: (0,1)=3 (0,2)=4")));
}

TEST_F(Reference, ContainersShareTheirElements) {
    oxArray *c = sub("cell 1x3: {1} {} {3}");
    const oxArray *d = ref(c, {sub("1x3: 3 2 3")});
    EXPECT_EQ(text(d), "cell 1x3: {double 1x1: 3} {} {double 1x1: 3}");
    EXPECT_EQ(oxGetCell(d, 0), oxGetCell(c, 2));
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(c, 2)), 2u);
    oxArray *s = sub("struct 1x2 a,b: {1} {2} {3} {}");
    oxArray *t = ref(s, {sub("2")});
    EXPECT_EQ(text(t), "struct 1x1 a,b: {double 1x1: 3} {}");
    EXPECT_EQ(oxGetFieldNames(t), oxGetFieldNames(s));
    oxAddField(t, "c");
    EXPECT_EQ(oxGetNumberOfFields(s), 2);
    EXPECT_EQ(text(ref(sub("struct 2x2 a: {1} {2} {3} {4}"), {sub(":"), sub("2")})),
              "struct 2x1 a: {double 1x1: 3} {double 1x1: 4}");
    oxSetClassName(s, "Point");
    EXPECT_STREQ(oxGetClassName(ref(s, {sub("1")})), "Point");
}

TEST_F(Reference, ClassesThatIndexThemselvesGetPositions) {
    struct Own : xxInfo {
        mutable std::string seen;
        void reference(const oxArray *, kwSize n, const kwIndex *const *positions,
                       const kwSize *counts, oxArray *result) override {
            for (kwSize k = 0; k < n; ++k) {
                seen += positions[k] ? "" : ":";
                for (kwSize i = 0; positions[k] && i < counts[k]; ++i)
                    seen += std::to_string(positions[k][i]) + ' ';
                seen += '/' + std::to_string(counts[k]) + ' ';
            }
            seen += std::to_string(oxGetM(result)) + 'x' + std::to_string(oxGetN(result));
        }
        oxArray *empty_copy() override {
            oxArray *a = lazy_class()->empty_copy();
            a->opaque.info = this;
            return a;
        }
        void complete_dimensions(oxArray *) override {}
    } own;
    const WithLayer layer;
    const Contexts contexts; // left before the layer
    oxArray *a = sub("lazy 2x3: 4");
    xxInfo *info = a->opaque.info;
    oxGetM(a);
    a->opaque.info = &own;
    ref(a, {sub(":"), sub("1x2: 9 1")}); // beyond the extent: the class decides
    EXPECT_EQ(own.seen, ":/2 8 0 /2 2x2");
    a->opaque.info = info;
    EXPECT_RAISES("VELTRO:objectLayerMissing", nullptr, ref(a, {sub("1")}));
    const oxArray *o = sub("opaque 1x3: 4 5 6");
    EXPECT_EQ(text(ref(o, {sub("1x2: 3 1")})), "opaque 1x2: 6 4");
    EXPECT_EQ(layer_calls.element_copies, 2);
    EXPECT_EQ(text(ref(sub("function_handle 1x1: 7"), {sub("1")})), "function_handle 1x1: 7");
}

struct CountRow {
    const char *sub;
    kwSize k, nsubs;
    bool known;
    kwSize count;
};

TEST_F(Reference, CountsOfSubscripts) {
    oxArray *a = oxColonop(1, 1, 24, oxDOUBLE_CLASS);
    const kwSize dims[3] = {2, 3, 4};
    oxSetDimensions(a, dims, 3);
    const CountRow rows[] = {
        {":", 1, 1, true, 24},
        {":", 1, 3, true, 2},
        {":", 2, 2, true, 12},
        {":", 3, 3, true, 4},
        {":", 4, 4, true, 1},
        {"2:2:9", 1, 1, true, 4},
        {"logical 1x3: 1 0 1", 1, 1, true, 2},
        {"sparse logical 1x3: (0,0)=1", 1, 1, true, 3}, // all elements, not the true ones
        {"char 1x3: 'abc'", 1, 1, true, 3},
        {"1x2: 1+1i 2", 1, 1, true, 2},
        {"1x2: 1 2", 1, 1, false, 0},
        {"int8 1x2: 1 2", 1, 1, false, 0},
    };
    for (const CountRow &r : rows) {
        kwSize count = 77;
        EXPECT_EQ(oxSubsCount(a, sub(r.sub), r.k, r.nsubs, &count), r.known) << r.sub;
        EXPECT_EQ(count, r.count) << r.sub << ' ' << r.k;
    }
    kwSize count = 77;
    EXPECT_TRUE(oxSubsCount(sub("0x3"), sub(":"), 3, 3, &count));
    EXPECT_EQ(count, 0u);
}

TEST_F(Reference, ScalarPositions) {
    oxArray *m = sub("2x3: 1 2 3; 4 5 6"), *row = sub("1x3: 1 2 3"),
            *s = sub("struct 1x2 a,b: {1} {2} {3} {4}");
    auto at = [](const oxArray *a, const std::vector<std::string> &texts, kwSize leading) {
        Subs list = subs(texts);
        return oxScalarRefConst(a, list.size(), list.data(), leading);
    };
    EXPECT_EQ(at(m, {"2", "3"}, 0), 5u);
    EXPECT_EQ(at(m, {"5"}, 0), 4u);
    EXPECT_EQ(at(row, {"3"}, 0), 2u);
    EXPECT_EQ(at(row, {"logical 1x1: 1"}, 0), 0u);
    EXPECT_EQ(at(s, {"2"}, 2), 3u);
    EXPECT_EQ(at(m, {"2"}, 1), 1u);
    for (const char *t : {"0", "1.5", "-1", "1x2: 1 2", "0x0", ":", "logical 1x1: 0", "1:1:1"})
        EXPECT_RAISES("VELTRO:cellIndexIsZero", "Cell contents indices must be greater than 0",
                      at(m, {t}, 0))
            << t;
    for (const auto &texts : {std::vector<std::string>{"7"}, {"3", "1"}, {"1", "1", "2"}})
        EXPECT_RAISES("VELTRO:badsubscript", "Index exceeds matrix dimensions.", at(m, texts, 0));
    EXPECT_RAISES("VELTRO:badsubscript", "Index exceeds matrix dimensions.", at(s, {"1"}, 3));
    EXPECT_RAISES("VELTRO:nindexIsZero",
                  "The \"subs\" field for the subscript argument to SUBSREF and SUBSASGN must be a "
                  "non-empty cell or character array.",
                  at(m, {}, 0));
}

TEST_F(Reference, ScalarPositionsGrowTheirArray) {
    auto grown = [](oxArray *a, const std::vector<std::string> &texts, kwSize offset, bool grows) {
        Subs list = subs(texts);
        bool flag = !grows;
        EXPECT_EQ(oxScalarRef(a, list.size(), list.data(), 0, &flag), offset);
        EXPECT_EQ(flag, grows);
        return text(a);
    };
    EXPECT_EQ(grown(sub("cell 1x2: {1} {2}"), {"4"}, 3, true),
              "cell 1x4: {double 1x1: 1} {double 1x1: 2} {} {}");
    EXPECT_EQ(grown(sub("cell 0x0"), {"2"}, 1, true), "cell 1x2: {} {}"); // a row, not a column
    EXPECT_EQ(grown(sub("2x1: 1; 2"), {"3"}, 2, true), "double 3x1: 1; 2; 0");
    EXPECT_EQ(grown(sub("2x2: 1 3; 2 4"), {"3", "2"}, 5, true), "double 3x2: 1 3; 2 4; 0 0");
    EXPECT_EQ(grown(sub("2x2: 1 3; 2 4"), {"2", "2"}, 3, false), "double 2x2: 1 3; 2 4");
}

TEST_F(Reference, IndexedCopyFunctions) {
    const kwIndex index[3] = {2, 0, 1};
    const float src[] = {1, 2, 3, 4, 5, 6, 7};
    float dst[8] = {};
    oxGetIndexedSourceCopyFcn(oxSINGLE_CLASS)(dst, src, index, 3, 2, 1);
    EXPECT_EQ(dst[0] * 100 + dst[1] * 10 + dst[2], 624);
    oxGetIndexedSourceCopyFcn(oxUINT32_CLASS)(dst, src, nullptr, 3, 3, 0);
    EXPECT_EQ(dst[0] * 100 + dst[1] * 10 + dst[2], 147);
    oxGetIndexedDestinationCopyFcn(oxSINGLE_CLASS)(dst, index, src, 3, 2, 1, false);
    EXPECT_EQ(dst[1] * 100 + dst[3] * 10 + dst[5], 231);
    oxGetIndexedDestinationCopyFcn(oxSINGLE_CLASS)(dst, nullptr, src + 6, 2, 1, 0, true);
    EXPECT_EQ(dst[0] * 10 + dst[1], 77);
    for (int cls = 0; cls < 19; ++cls) {
        const bool none = cls == oxUNKNOWN_CLASS || cls == oxVOID_CLASS;
        EXPECT_EQ(oxGetIndexedSourceCopyFcn(static_cast<oxClassID>(cls)) == nullptr, none) << cls;
        EXPECT_EQ(oxGetIndexedDestinationCopyFcn(static_cast<oxClassID>(cls)) == nullptr, none);
    }
}

TEST_F(Reference, SurvivesFailingAllocations) {
    const WithLayer layer;
    const struct {
        const char *name;
        std::vector<std::string> inputs;
    } rows[] = {
        {"element", {"double 1x3: 1 2 3", "double 1x1: 2"}},
        {"list", {"double 1x3: 1+1i 2 3", "double 1x11: 1 3 2 1 3 2 1 3 2 1 3"}},
        {"three dimensions",
         {"double 2x2x2: 1 2; 3 4|5 6; 7 8", "double 1x2: 1 2", "double 1x1: 1",
          "logical 1x2: 1 1"}},
        {"cell", {"cell 1x2: {1} {2}", "double 1x2: 2 1"}},
        {"struct", {"struct 1x2 a: {1} {2}", "double 1x2: 2 1"}},
        {"opaque", {"opaque 1x3: 4 5 6", "double 1x3: 3 1 3"}},
        {"handle", {"function_handle 1x1: 7", "double 1x2: 1 1"}},
        {"sparse", {"sparse double 2x2: (0,0)=1", "double 1x1: 1", "double 1x1: 2"}},
        {"sparse linear", {"sparse double 2x2: (0,0)=1", "double 1x2: 1 3"}},
    };
    for (const auto &row : rows)
        sweep({.name = row.name,
               .inputs = row.inputs,
               .make = [](auto &in) { return ref(in[0], Subs(in.begin() + 1, in.end())); },
               .bare = false});
}

} // namespace
