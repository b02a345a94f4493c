// Ranges: operands, counts, values, and colon objects.
#include <support/calls.h>

#include <array>
#include <cmath>

namespace {

using Colon = HostTest;

TEST_F(Colon, CountsWithATolerance) {
    const std::array<double, 4> rows[] = {{0, 0.1, 1, 11},
                                          {0, 0.1, 0.95, 10},
                                          {1, -0.1, 0, 11},
                                          {0.1 + 0.2, 0.1, 0.3, 0},
                                          {0, 1, INFINITY, INFINITY},
                                          {0, INFINITY, 5, 1},
                                          {-0x1p60, 0x1p60, 0x1p60, 3},
                                          {-1e308, 1e308, 1e308, 3}};
    for (const auto &[first, step, last, count] : rows)
        EXPECT_EQ(oxColonop_size(first, step, last, oxDOUBLE_CLASS), count) << first << ':' << last;
    EXPECT_TRUE(std::isnan(oxColonop_size(1, NAN, 3, oxDOUBLE_CLASS)));
    EXPECT_EQ(oxColonop_size(0, 0.1F, 1, oxSINGLE_CLASS), 11);
    EXPECT_EQ(oxColonop_size(-0x1p63, 1, 0x1p63, oxINT64_CLASS), 0x1p64 + 1);
}

TEST_F(Colon, ExpandsToArrays) {
    const std::tuple<double, double, double, oxClassID, const char *> rows[] = {
        {0, 0.25, 1, oxDOUBLE_CLASS, "double 1x5: 0 0.25 0.5 0.75 1"},
        {1, NAN, 3, oxDOUBLE_CLASS, "double 1x1: NaN"},
        {97, 2, 101, oxCHAR_CLASS, "char 1x3: 'ace'"},
        {9223372036854774784.0, 512, 0x1p63, oxINT64_CLASS,
         "int64 1x3: 9223372036854774784 9223372036854775296 9223372036854775807"},
        {0, 0.5, 1, oxUINT64_CLASS, "uint64 1x3: 0 1 1"}};
    for (const auto &[first, step, last, cls, result] : rows)
        EXPECT_EQ(text(oxColonop(first, step, last, cls)), result);
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(oxColonop(4, 1, 4, oxDOUBLE_CLASS)));
    EXPECT_EQ(text(oxIntColonop(1, 1, 2, oxUINT8_CLASS)), "uint8 1x2: 1 2");
    for (double end : {1e300, double{INFINITY}})
        EXPECT_RAISES_ENTRY(FPMAXSIZE, oxColonop(0, 1, end, oxDOUBLE_CLASS));
    EXPECT_EQ(oxColonop(1, 1, 2, oxCELL_CLASS), nullptr);
    kwSize n = 9;
    int64_t *p = oxSignedIndexColonop(3, -2, -2, &n);
    EXPECT_EQ(std::vector<int64_t>(p, p + n), (std::vector<int64_t>{3, 1, -1}));
    oxFree(p);
    EXPECT_TRUE(!oxSignedIndexColonop(3, 1, 2, &n) && n == 0);
}

TEST_F(Colon, ReversedRangesAreMirrorsAndEndExactly) {
    Random r{5};
    for (int i = 0; i < 1000; ++i) {
        const double step = r.real(0.001, 2), first = r.real(-10, 10);
        const kwSize n = 1 + r.below(200);
        const double last = first + static_cast<double>(n - 1) * step;
        SCOPED_TRACE(testing::Message() << first << ':' << step << ':' << last);
        const oxArray *x = oxColonop(first, step, last, oxDOUBLE_CLASS);
        const oxArray *y = oxColonop(last, -step, first, oxDOUBLE_CLASS);
        ASSERT_TRUE(oxGetN(x) == n && oxGetN(y) == n);
        EXPECT_TRUE(oxGetPr(x)[0] == first && oxGetPr(x)[n - 1] == last);
        for (kwSize k = 0; k < n; ++k) {
            ASSERT_EQ(oxGetPr(x)[k], oxGetPr(y)[n - 1 - k]) << k;
            ASSERT_NEAR(oxGetPr(x)[k], first + static_cast<double>(k) * step, 1e-12) << k;
        }
    }
}

TEST_F(Colon, ObjectsKeepStepFirstLast) {
    // class, elements of the record, ends given and stored
    const std::tuple<oxClassID, kwSize, double, double, double, double> rows[] = {
        {oxSINGLE_CLASS, 4, 1.5, 9, 1.5, 9}, {oxINT8_CLASS, 10, -1.7, 9.9, -1, 9},
        {oxUINT8_CLASS, 10, 300, 9, 44, 9},  {oxUINT16_CLASS, 6, NAN, 7, 0, 7},
        {oxINT32_CLASS, 4, -3, 7, -3, 7},    {oxINT64_CLASS, 3, 1, 7, 0, 0},
    };
    double v[3];
    for (const auto &[cls, width, first, last, stored_first, stored_last] : rows) {
        const oxArray *a = oxCreateColonObject(first, 2, last, cls);
        oxGetColonObjValues(a, v);
        EXPECT_EQ(oxGetN(a), width) << cls;
        EXPECT_TRUE(v[0] == stored_first && v[2] == stored_last) << cls;
        // Records of the 64-bit classes are left to the caller, step included.
        EXPECT_EQ(v[1], cls == oxINT64_CLASS ? 0 : 2) << cls;
    }
    EXPECT_EQ(oxCreateColonObject(1, 1, 2, oxLOGICAL_CLASS), nullptr);
    EXPECT_EQ(oxCountIntColonObj(oxCreateColonObj(1, 1, 1e300)), 281474976710655u);
}

TEST_F(Colon, ObjectsExpandInTheirHeader) {
    oxArray *a = oxCreateColonObj(1, 2, 5), *sharer = oxCreateSharedDataCopy(a);
    oxSetUserBits(a, 7);
    EXPECT_TRUE(oxExpandColonObj(a) == a && oxGetUserBits(a) == 7);
    EXPECT_TRUE(!oxIsSharedArray(sharer) && oxCountColonObj(sharer) == 3);
}

// Class, first, step, last, and whether the range is empty.
oxArray *colon_args(const Arrays &in) {
    oxArray *all = oxCreateDoubleMatrix(1, 5, oxREAL);
    const Subs args(in.begin(), in.end());
    *oxGetPr(all) =
        oxGetColonArgs(static_cast<int>(in.size()), Subs(args).data(), oxGetPr(all) + 1);
    return all;
}

TEST_F(Colon, ArgumentsGiveClassAndValues) {
    const std::string a = "char 1x1: 'a'", b = "int8 1x1: 1", scalar = "must be real scalars.",
                      mixed_char =
                          "!colon:mixedCharOperands For colon operator with char operands, ",
                      fraction = "!colon:scalarDoubleMustBeIntegerValued Double operands "
                                 "interacting with ",
                      range = "!colon:OutOfRange Colon operands must be in range of the data type.";
    const Warning logical{"VELTRO:colon:logicalInput", "Colon operands should not be logical."},
        not_scalar{"VELTRO:colon:operandsNotRealScalar", "Colon operands " + scalar};
    expect_rows(
        colon_args,
        {{{"1", "0.5", "2"}, "6 1 0.5 2 0"},
         {{"1 2", "5 6"}, "6 1 1 5 0"},                      // not scalar, but all double
         {{"sparse double 1x2: (0,1)=7", "5"}, "6 0 1 5 0"}, // its first element is not stored
         {{"int8 1x1: 3", "9"}, "8 3 1 9 0"},
         {{"double 0x0", "5"}, "6 0 0 0 1"},
         {{"int64 1x1: 3", "9223372036854775808"}, "14 3 1 9223372036854775808 0"},
         {{"uint8 1x1: 1", "300", "9"}, "9 1 300 9 0"}, // any step
         {{a, "5"}, mixed_char + "first and last operands must be char."},
         {{a, b, a}, mixed_char + "second operand must be char or real scalar double."},
         {{b, "int16 1x1: 2"},
          "!colon:mixedNonDoubleOperands Colon operands must be all the same type, or mixed with "
          "real scalar doubles."},
         {{b, "1 2"}, "!colon:nonDoubleOperandsNotRealScalar Colon operands " + scalar},
         {{a, "0.5", a}, fraction + "char operands must have integer values."},
         {{b, "0.5", "4"}, fraction + "integer operands must have integer values."},
         {{b, b, "200"}, range},
         {{"uint64 1x1: 1", "-1"}, range},
         {{"logical 1x1: 1", "logical 1x1: 0"}, "6 1 1 0 0", {logical, logical}},
         {{"1+1i", "2+1i"}, "6 1 1 2 0", {not_scalar}},
         {{"char 1x2: 'ab'", "char 1x1: 'e'"}, "4 97 1 101 0", {not_scalar}}});
}

TEST_F(Colon, SurvivesFailingAllocations) {
    expect_rows([](auto &in) { return oxExpandColonObj(in[0]); }, {{{"1:2:9"}, "1 3 5 7 9"}});
    sweep_everywhere({{}}, [](auto &) { return oxColonop(1, 1, 9, oxDOUBLE_CLASS); });
    sweep_everywhere({{}}, [](auto &) { return oxCreateColonObj(1, 1, 9); });
}

} // namespace
