// Reference: shapes, errors, and what results share with their source.
#include <support/calls.h>

namespace {

using Reference = HostTest;

TEST_F(Reference, RepeatsBeyondTheSizeLimit) {
    const kwSize many = kwSize{1} << 20;
    oxArray *repeats = oxCreateDoubleMatrix(1, many, oxREAL);
    std::fill_n(oxGetPr(repeats), many, 1.0);
    EXPECT_RAISES_ENTRY(FPMAXSIZE, ref(sub("1"), {repeats, repeats, repeats}));
}

TEST_F(Reference, PartsKeepUserBitsAndNoState) {
    oxArray *a = sub("1 2+3i 4");
    oxSetUserBits(a, 5);
    oxSetEmptySqrBrktFlag(a, true);
    a->set_flag(oxFLAG_HEADER_KEPT, true);
    for (const char *s : {"1", "1 2"}) {
        const oxArray *b = ref(a, {sub(s)});
        EXPECT_EQ(oxGetUserBits(b), 5);
        EXPECT_FALSE(b->has_flag(oxFLAG_HEADER_KEPT | oxFLAG_EMPTY_BRACKET | oxFLAG_REUSABLE));
    }
    a->set_flag(oxFLAG_HEADER_KEPT, false);
}

TEST_F(Reference, PartsOfStructsShareTheirFieldNames) {
    oxArray *s = sub("struct 1x2 a,b: {1} {2} {3} {}");
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
                const kwIndex *p = positions[k];
                seen += p ? testing::PrintToString(std::vector(p, p + counts[k])) : ": ";
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
    const oxArray *b = ref(a, {sub(":"), sub("9 1")}); // beyond the extent: the class decides
    EXPECT_EQ(oxGetM(b) * 10 + oxGetN(b), 22u);
    assign(a, subs({"9", "9"}), sub("1 2")); // neither shape nor extent is looked at
    erase(a, subs({"9"}));
    EXPECT_EQ(own.seen, ": { 8, 0 } assigned 2 erased 1");
    a->opaque.info = info;
    EXPECT_RAISES("VELTRO:objectLayerMissing", nullptr, ref(a, {sub("1")}));
    ref(sub("opaque 1x3: 4 5 6"), {sub("3 1")});
    EXPECT_EQ(layer_calls.element_copies, 2);
}

TEST_F(Reference, CountsOfSubscripts) {
    const oxArray *a = oxCreateCellArray(3, Dims{2, 3, 4}.data());
    const std::tuple<const char *, kwSize, bool, kwSize> rows[] = {
        {":", 4, true, 1},
        {"2:2:9", 1, true, 4},
        {"logical 1x3: 1 0 1", 1, true, 2},
        {"sparse logical 1x3: (0,0)=1", 1, true, 3}, // all elements, not the true ones
        {"1+1i 2", 1, true, 2},
        {"1 2", 1, false, 0},
    };
    kwSize count = 77;
    for (const auto &[s, k, known, expected] : rows) {
        EXPECT_EQ(oxSubsCount(a, sub(s), k, k, &count), known) << s;
        EXPECT_EQ(count, expected) << s << ' ' << k;
    }
}

TEST_F(Reference, ScalarPositions) {
    // leading index, array, subscripts
    const auto at = [](const Arrays &in) {
        const kwSize leading = static_cast<kwSize>(oxGetScalar(in[0]));
        Subs s(in.begin() + 2, in.end());
        const kwSize k = oxScalarRefConst(in[1], s.size(), s.data(), leading);
        return oxCreateDoubleScalar(static_cast<double>(k));
    };
    const std::string m = "1 2 3; 4 5 6";
    expect_rows(at, {{{"0", m, "2", "3"}, "5"},
                     {{"0", m, "5"}, "4"},
                     {{"1", m, "2"}, "1"},
                     {{"0", "1 2 3", "logical 1x1: 1"}, "0"},
                     {{"2", "struct 1x2 a,b: {1} {2} {3} {4}", "2"}, "3"},
                     {{"0", m, "1", "1", "2"}, "!badsubscript Index exceeds matrix dimensions."},
                     {{"0", m},
                      "!nindexIsZero The \"subs\" field for the subscript argument to SUBSREF and "
                      "SUBSASGN must be a non-empty cell or character array."}});
    for (const char *bad : {"0", "1.5", "-1", "1 2", "double 0x0", ":", "logical 1x1: 0", "1:1:1"})
        expect_rows(
            at, {{{"0", m, bad}, "!cellIndexIsZero Cell contents indices must be greater than 0"}});
}

TEST_F(Reference, ScalarPositionsGrowTheirArray) {
    const auto grow = [](const Arrays &in) {
        const kwSize before = oxGetNumberOfElements(in[0]);
        const oxArray *s = in[1];
        bool grew = false;
        const kwSize at = oxScalarRef(in[0], 1, &s, 0, &grew);
        EXPECT_EQ(static_cast<double>(at + 1), oxGetScalar(s));
        EXPECT_EQ(grew, at >= before);
        return in[0];
    };
    expect_rows(grow, {{{"cell 1x2: {1} {2}", "4"}, "cell 1x4: {1} {2} {} {}"},
                       {{"cell 0x0", "2"}, "cell 1x2: {} {}"}, // a row, not a column
                       {{"1; 2", "3"}, "1; 2; 0"},
                       {{"1 3; 2 4", "4"}, "1 3; 2 4"}});
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

// What the random references have not: other classes, and failing allocations.
TEST_F(Reference, EveryKindOfArray) {
    const WithLayer layer;
    expect_rows(
        [](auto &in) { return ref(in[0], Subs(in.begin() + 1, in.end())); },
        {{{"1 2 3", "2"}, "2"},
         {{"1+1i 2 3", "1 3 2 1 3 2 1 3 2 1 3"}, "1+1i 3 2 1+1i 3 2 1+1i 3 2 1+1i 3"},
         {{"double 2x1x2: 1; 3 | 5; 7", "1 2", "1", "logical 1x2: 1 1"},
          "double 2x1x2: 1; 3 | 5; 7"},
         {{"cell 1x2: {1} {2}", "2 1"}, "cell 1x2: {2} {1}"},
         {{"struct 1x2 a: {1} {2}", "2 1"}, "struct 1x2 a: {2} {1}"},
         {{"opaque 1x3: 4 5 6", "3 1 3"}, "opaque 1x3: 6 4 6"},
         {{"function_handle 1x1: 7", "1 1"}, "function_handle 1x2: 7 7"},
         {{"sparse double 2x2: (0,0)=1", "1", "2"}, "sparse double 1x1"},
         // Deliberate: a sparse result keeps an imaginary part of zeros.
         {{"sparse double 2x2: (0,0)=1 (1,1)=2+1i", "1 3"}, "sparse double 1x2: (0,0)=1+0i"}});
}

} // namespace
