// Reference: shapes, errors, and what results share with their source.
#include "subs.h"

#include <algorithm>
#include <cstring>

namespace {

class Reference : public HostTest {};

TEST_F(Reference, BadSubscriptsRaiseInOrder) {
    constexpr const char *bad = "VELTRO:badsubscript",
                         *outside = "Index exceeds matrix dimensions.";
    const oxArray *a = sub("2x2: 1 2; 3 4"), *scalar = sub("1x1: 1");
    EXPECT_RAISES(bad, outside, ref(a, subs({"3", "0"})));
    EXPECT_RAISES(bad, "Subscript indices must either be real positive integers or logicals.",
                  ref(a, subs({"0", "3"})));
    const kwSize wide = kwSize{1} << 20;
    oxArray *repeats = oxCreateDoubleMatrix(1, wide, oxREAL);
    std::fill_n(oxGetPr(repeats), wide, 1.0);
    EXPECT_RAISES_ENTRY(FPMAXSIZE, ref(scalar, {repeats, repeats, repeats}));
}

TEST_F(Reference, PartsFlagsAndStates) {
    oxArray *a = sub("1x3: 1 2+3i 4");
    oxSetUserBits(a, 5);
    oxSetEmptySqrBrktFlag(a, true);
    a->set_flag(oxFLAG_HEADER_KEPT, true);
    for (const oxArray *b : {ref(a, {sub("1")}), ref(a, {sub("1x2: 1 2")})}) {
        EXPECT_EQ(oxGetUserBits(b), 5);
        EXPECT_FALSE(b->has_flag(oxFLAG_HEADER_KEPT | oxFLAG_EMPTY_BRACKET | oxFLAG_REUSABLE));
    }
    a->set_flag(oxFLAG_HEADER_KEPT, false);
}

TEST_F(Reference, ContainersShareTheirElements) {
    oxArray *c = sub("cell 1x3: {1} {} {3}"), *s = sub("struct 1x2 a,b: {1} {2} {3} {}");
    const oxArray *d = ref(c, {sub("1x3: 3 2 3")});
    EXPECT_EQ(oxGetCell(d, 0), oxGetCell(c, 2));
    EXPECT_EQ(oxGetReferenceCount(oxGetCell(c, 2)), 2u);
    oxArray *t = ref(s, {sub("2")});
    EXPECT_EQ(oxGetFieldNames(t), oxGetFieldNames(s));
    oxAddField(t, "c");
    EXPECT_EQ(oxGetNumberOfFields(s), 2);
}

TEST_F(Reference, ClassesThatIndexThemselvesGetTheSubscripts) {
    struct Own : xxInfo {
        std::string seen;
        void reference(const oxArray *, kwSize n, const kwIndex *const *positions,
                       const kwSize *counts, oxArray *) override {
            for (kwSize k = 0; k < n; ++k) {
                seen += positions[k] ? "" : ":";
                for (kwSize i = 0; positions[k] && i < counts[k]; ++i)
                    seen += std::to_string(positions[k][i]) + ' ';
            }
        }
        void assign(oxArray *, kwSize n, const oxArray *const *, const oxArray *) override {
            seen += " assigned " + std::to_string(n);
        }
        void erase(oxArray *, kwSize n, const oxArray *const *) override {
            seen += " erased " + std::to_string(n);
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
    const oxArray *b = ref(a, {sub(":"), sub("1x2: 9 1")}); // beyond the extent: the class decides
    EXPECT_EQ(oxGetM(b) * 10 + oxGetN(b), 22u);
    assign(a, subs({"9", "9"}), sub("1x2: 1 2")); // neither shape nor extent is looked at
    erase(a, subs({"9"}));
    EXPECT_EQ(own.seen, ":8 0  assigned 2 erased 1");
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
    const std::tuple<const char *, kwSize, bool, kwSize> rows[] = {
        {":", 4, true, 1},
        {"2:2:9", 1, true, 4},
        {"logical 1x3: 1 0 1", 1, true, 2},
        {"sparse logical 1x3: (0,0)=1", 1, true, 3}, // all elements, not the true ones
        {"1x2: 1+1i 2", 1, true, 2},
        {"1x2: 1 2", 1, false, 0},
    };
    kwSize count = 77;
    for (const auto &[s, k, known, expected] : rows) {
        EXPECT_EQ(oxSubsCount(a, sub(s), k, k, &count), known) << s;
        EXPECT_EQ(count, expected) << s << ' ' << k;
    }
}

TEST_F(Reference, ScalarPositions) {
    oxArray *m = sub("2x3: 1 2 3; 4 5 6"), *row = sub("1x3: 1 2 3"),
            *s = sub("struct 1x2 a,b: {1} {2} {3} {4}");
    auto at = [](const oxArray *a, const std::vector<std::string> &texts, kwSize leading) {
        Subs list = subs(texts);
        return oxScalarRefConst(a, list.size(), list.data(), leading);
    };
    EXPECT_TRUE(at(m, {"2", "3"}, 0) == 5 && at(m, {"5"}, 0) == 4 && at(m, {"2"}, 1) == 1);
    EXPECT_TRUE(at(row, {"logical 1x1: 1"}, 0) == 0 && at(s, {"2"}, 2) == 3);
    for (const char *t : {"0", "1.5", "-1", "1x2: 1 2", "0x0", ":", "logical 1x1: 0", "1:1:1"})
        EXPECT_RAISES("VELTRO:cellIndexIsZero", "Cell contents indices must be greater than 0",
                      at(m, {t}, 0))
            << t;
    EXPECT_RAISES("VELTRO:badsubscript", "Index exceeds matrix dimensions.",
                  at(m, {"1", "1", "2"}, 0));
    EXPECT_RAISES("VELTRO:nindexIsZero",
                  "The \"subs\" field for the subscript argument to SUBSREF and SUBSASGN must be a "
                  "non-empty cell or character array.",
                  at(m, {}, 0));
}

TEST_F(Reference, ScalarPositionsGrowTheirArray) {
    for (const auto &[from, position, result] :
         {std::tuple{"cell 1x2: {1} {2}", 4, "cell 1x4: {1} {2} {} {}"},
          {"cell 0x0", 2, "cell 1x2: {} {}"}, // a row, not a column
          {"2x1: 1; 2", 3, "3x1: 1; 2; 0"},
          {"2x2: 1 3; 2 4", 4, "2x2: 1 3; 2 4"}}) {
        oxArray *a = sub(from);
        const oxArray *s = oxCreateDoubleScalar(position);
        const bool grows = std::string(from) != result;
        bool grew = !grows;
        EXPECT_EQ(oxScalarRef(a, 1, &s, 0, &grew), static_cast<kwSize>(position) - 1);
        EXPECT_EQ(grew, grows);
        EXPECT_EQ(text(a), text(sub(result)));
    }
}

TEST_F(Reference, IndexedCopyFunctions) {
    const kwIndex index[3] = {2, 0, 1};
    const float src[] = {1, 2, 3, 4, 5, 6, 7};
    std::vector<float> dst(6);
    oxGetIndexedSourceCopyFcn(oxSINGLE_CLASS)(dst.data(), src, index, 3, 2, 1);
    EXPECT_EQ(dst, (std::vector<float>{6, 2, 4, 0, 0, 0}));
    oxGetIndexedDestinationCopyFcn(oxSINGLE_CLASS)(dst.data(), index, src, 3, 2, 1, false);
    EXPECT_EQ(dst, (std::vector<float>{6, 2, 4, 3, 0, 1}));
    oxGetIndexedDestinationCopyFcn(oxSINGLE_CLASS)(dst.data(), nullptr, src + 6, 2, 1, 0, true);
    EXPECT_EQ(dst, (std::vector<float>{7, 7, 4, 3, 0, 1}));
    EXPECT_FALSE(oxGetIndexedSourceCopyFcn(oxVOID_CLASS));
    EXPECT_FALSE(oxGetIndexedDestinationCopyFcn(oxUNKNOWN_CLASS));
}

TEST_F(Reference, SurvivesFailingAllocations) {
    const WithLayer layer;
    const Inputs calls = {
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
    sweep_makes(calls, [](auto &in) { return ref(in[0], Subs(in.begin() + 1, in.end())); });
}

} // namespace
