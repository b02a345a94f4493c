// Reference: shapes, errors, and what results share with their source.
#include "subs.h"

#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/faults.h>
#include <support/host.h>

#include <algorithm>
#include <cstring>

using namespace ox::test;

namespace {

class Reference : public HostTest {};

TEST_F(Reference, Shapes) {
    const struct {
        const char *a;
        std::vector<std::string> subs;
        const char *result;
    } rows[] = {
        {"2x2: 5 6; 7 8", {"1:1:3"}, "double 1x3: 5 7 6"}, // a range is no column
        {"1x1x3: 5|6|7", {"1x2: 3 1"}, "double 1x1x2: 7 | 5"},
        {"2x2: 5 6; 7 8", {"logical 1x4: 1 0 0 1"}, "double 1x2: 5 8"},
        {"1x3: 5 6 7", {"logical 3x1: 1; 0; 1"}, "double 1x2: 5 7"},
        {"1x3: 5 6 7", {"logical 1x1: 0"}, "double 0x0"},
        {"3x1: 5; 6; 7", {"1x0"}, "double 0x1"}, // an empty row is a vector
        {"2x2: 5 6; 7 8", {"0x3"}, "double 0x3"},
        {"2x2x2: 1 2; 3 4 | 5 6; 7 8", {"2", "3"}, "double 1x1: 7"}, // trailing dimensions fold
        {"2x2x2: 1 2; 3 4 | 5 6; 7 8", {":", ":", "1", "logical 1x1: 1"}, "double 2x2: 1 2; 3 4"},
        {"2x2x2: 1 2; 3 4 | 5 6; 7 8", {":", "1x0", ":"}, "double 2x0x2"},
        {"1x2: 5 6", {}, "double 1x2: 5 6"},
        {"char 1x3: 'abc'", {"char 1x1: '\\u0002'"}, "char 1x1: 'b'"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(text(ref(sub(row.a), subs(row.subs))), row.result) << row.a;
}

TEST_F(Reference, LongSelectionsOfEveryWidthAgreeWithSingleElements) {
    for (int cls : {3, 6, 7, 8, 11}) {
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
    constexpr const char *bad = "VELTRO:badsubscript",
                         *outside = "Index exceeds matrix dimensions.";
    const oxArray *a = sub("2x2: 1 2; 3 4"), *row = sub("1x3: 1 2 3"), *scalar = sub("1x1: 1");
    EXPECT_RAISES(bad, outside, ref(a, subs({"3", "0"})));
    EXPECT_RAISES(bad, "Subscript indices must either be real positive integers or logicals.",
                  ref(a, subs({"0", "3"})));
    EXPECT_RAISES(bad, outside, ref(row, subs({"int8 1x1: -1"})));
    EXPECT_RAISES(bad, outside, ref(row, subs({"logical 1x5: 1 0 0 0 1"})));
    // What selects nothing is never out of bounds, and false may lie outside.
    EXPECT_EQ(text(ref(row, subs({"logical 1x5: 1 0 0 0 0"}))), "double 1x1: 1");
    const kwSize wide = kwSize{1} << 20;
    oxArray *repeats = oxCreateDoubleMatrix(1, wide, oxREAL);
    std::fill_n(oxGetPr(repeats), wide, 1.0);
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

TEST_F(Reference, CountsOfSubscripts) {
    oxArray *a = oxColonop(1, 1, 24, oxDOUBLE_CLASS);
    const kwSize dims[3] = {2, 3, 4};
    oxSetDimensions(a, dims, 3);
    const struct {
        const char *sub;
        kwSize k, nsubs;
        bool known;
        kwSize count;
    } rows[] = {
        {":", 2, 2, true, 12},
        {":", 4, 4, true, 1},
        {"2:2:9", 1, 1, true, 4},
        {"logical 1x3: 1 0 1", 1, 1, true, 2},
        {"sparse logical 1x3: (0,0)=1", 1, 1, true, 3}, // all elements, not the true ones
        {"char 1x3: 'abc'", 1, 1, true, 3},
        {"1x2: 1+1i 2", 1, 1, true, 2},
        {"1x2: 1 2", 1, 1, false, 0},
        {"int8 1x2: 1 2", 1, 1, false, 0},
    };
    for (const auto &r : rows) {
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
    EXPECT_EQ(at(row, {"logical 1x1: 1"}, 0), 0u);
    EXPECT_EQ(at(s, {"2"}, 2), 3u);
    EXPECT_EQ(at(m, {"2"}, 1), 1u);
    for (const char *t : {"0", "1.5", "-1", "1x2: 1 2", "0x0", ":", "logical 1x1: 0", "1:1:1"})
        EXPECT_RAISES("VELTRO:cellIndexIsZero", "Cell contents indices must be greater than 0",
                      at(m, {t}, 0))
            << t;
    for (const auto &texts : {std::vector<std::string>{"7"}, {"3", "1"}, {"1", "1", "2"}})
        EXPECT_RAISES("VELTRO:badsubscript", "Index exceeds matrix dimensions.", at(m, texts, 0));
    EXPECT_RAISES("VELTRO:nindexIsZero",
                  "The \"subs\" field for the subscript argument to SUBSREF and SUBSASGN must be a "
                  "non-empty cell or character array.",
                  at(m, {}, 0));
}

TEST_F(Reference, ScalarPositionsGrowTheirArray) {
    const struct {
        const char *a, *sub;
        kwSize offset;
        const char *grown;
    } rows[] = {
        {"cell 1x2: {1} {2}", "4", 3, "cell 1x4: {double 1x1: 1} {double 1x1: 2} {} {}"},
        {"cell 0x0", "2", 1, "cell 1x2: {} {}"}, // a row, not a column
        {"2x1: 1; 2", "3", 2, "double 3x1: 1; 2; 0"},
        {"2x2: 1 3; 2 4", "4", 3, nullptr},
    };
    for (const auto &row : rows) {
        oxArray *a = sub(row.a);
        const oxArray *s = sub(row.sub);
        bool grew = !row.grown;
        EXPECT_EQ(oxScalarRef(a, 1, &s, 0, &grew), row.offset);
        EXPECT_EQ(grew, row.grown != nullptr);
        EXPECT_EQ(text(a), row.grown ? row.grown : text(sub(row.a)));
    }
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
    const std::vector<std::string> calls[] = {
        {"double 1x3: 1 2 3", "double 1x1: 2"},
        {"double 1x3: 1+1i 2 3", "double 1x11: 1 3 2 1 3 2 1 3 2 1 3"},
        {"double 2x1x2: 1; 3 | 5; 7", "double 1x2: 1 2", "double 1x1: 1", "logical 1x2: 1 1"},
        {"cell 1x2: {1} {2}", "double 1x2: 2 1"},
        {"struct 1x2 a: {1} {2}", "double 1x2: 2 1"},
        {"opaque 1x3: 4 5 6", "double 1x3: 3 1 3"},
        {"function_handle 1x1: 7", "double 1x2: 1 1"},
        {"sparse double 2x2: (0,0)=1", "double 1x1: 1", "double 1x1: 2"},
        {"sparse double 2x2: (0,0)=1", "double 1x2: 1 3"},
    };
    for (const auto &inputs : calls)
        sweep({.name = inputs[0].c_str(),
               .inputs = inputs,
               .make = [](auto &in) { return ref(in[0], Subs(in.begin() + 1, in.end())); },
               .bare = false});
}

} // namespace
