// Equality: every pairing of classes, storage and NaN rule, and the switch comparison.
#include <support/stream_bytes.h>
#include <support/suite.h>

namespace {

class EqualTest : public HostTest {};

bool equal(const oxArray *a, const oxArray *b) {
    const bool ab = oxAreMatricesEqual(a, b) != 0;
    EXPECT_EQ(ab, oxAreMatricesEqual(b, a) != 0) << "not symmetric";
    return ab;
}

// Under the usual rule, or only where NaN equals NaN.
std::string compared(const std::string &a, const std::string &b) {
    oxArray *x = arr(a), *y = arr(b);
    const bool loosely = oxAreMatricesEqualNanOptional(x, y, 0) != 0;
    if (equal(x, y)) return loosely ? "equal" : "equal without NaN";
    return loosely ? "equal with NaN" : "different";
}

TEST_F(EqualTest, PairsOfArrays) {
    for (const Record &r : records("compare/pairs.txt"))
        EXPECT_EQ(compared(r.fields[0], r.fields[1]), r.fields[2])
            << r.fields[0] << " against " << r.fields[1];
    EXPECT_TRUE(equal(static_cast<oxArray *>(nullptr), nullptr));
}

TEST_F(EqualTest, StoredBytesOfLogicalsCount) {
    oxArray *a = arr("logical 1x1: 1");
    *static_cast<unsigned char *>(oxGetData(a)) = 2;
    EXPECT_FALSE(equal(a, arr("logical 1x1: 1")));
    EXPECT_FALSE(equal(a, arr("1")));
    EXPECT_TRUE(equal(a, arr("2")));
    EXPECT_FALSE(equal(a, arr("sparse double 1x1")));
}

TEST_F(EqualTest, NanFollowsTheRule) {
    oxArray *a = arr("NaN");
    EXPECT_FALSE(equal(a, a)) << "the same array is no excuse";
    EXPECT_TRUE(oxAreMatricesEqualNanOptional(a, a, 0));
}

// The element rule, one element at a time, for every pair of classes.
TEST_F(EqualTest, RandomPairsAgreeWithElementwiseComparison) {
    Random random(20);
    const std::pair<oxClassID, double> classes[] = {
        // with their largest value below 2^33
        {oxDOUBLE_CLASS, 0x1p32},    {oxSINGLE_CLASS, 0x1p32},     {oxINT8_CLASS, 127},
        {oxUINT8_CLASS, 255},        {oxINT16_CLASS, 32767},       {oxUINT16_CLASS, 65535},
        {oxINT32_CLASS, 0x7fffff80}, {oxUINT32_CLASS, 0xffffff00}, {oxINT64_CLASS, 0x1p32},
        {oxUINT64_CLASS, 0x1p32},    {oxCHAR_CLASS, 65535},        {oxLOGICAL_CLASS, 1}};
    for (int round = 0; round < 400; ++round) {
        const auto [ca, most_a] = random.pick(classes);
        const auto [cb, most_b] = random.pick(classes);
        const kwSize n = random.below(1500) + 1, changed = random.below(n);
        oxArray *a = oxCreateDoubleMatrix(1, n, oxREAL), *b;
        for (kwSize k = 0; k < n; ++k)
            oxGetPr(a)[k] = k % 3 == changed % 3 ? 0 : std::min(most_a, most_b);
        b = oxMustBe(oxDuplicateArray(a), cb);
        a = oxMustBe(a, ca);
        ASSERT_TRUE(equal(a, b)) << n;
        if (ca == oxDOUBLE_CLASS)
            oxGetPr(a)[changed] = 1;
        else
            static_cast<unsigned char *>(oxGetData(a))[changed * oxGetElementSize(a)] = 1;
        ASSERT_FALSE(equal(a, b)) << n << " at " << changed;
        oxArray *sparse = ca == oxDOUBLE_CLASS ? oxMustBeSparse(a) : a;
        ASSERT_FALSE(equal(sparse, b));
        ASSERT_TRUE(equal(sparse, a));
    }
}

TEST_F(EqualTest, SwitchComparison) {
    const oxArray *abc = arr("char 1x3: 'abc'");
    EXPECT_TRUE(oxSwitchCompare(abc, arr("cell 1x2: {char 1x1: 'x'} {char 1x3: 'abc'}")));
    EXPECT_FALSE(oxSwitchCompare(abc, arr("cell 0x0")));
    EXPECT_TRUE(oxSwitchCompare(arr("3"), arr("int8 1x1: 3")));
    EXPECT_TRUE(oxSwitchCompare(arr("double 0x0"), arr("cell 1x1: {}")));
    EXPECT_FALSE(oxSwitchCompare(arr("NaN"), arr("NaN")));
    EXPECT_RAISES("VELTRO:badCaseExpression", "CASE expressions cannot be of class structw.",
                  oxSwitchCompare(abc, arr("struct 1x1")));

    for (const char *good : {"char 2x2: 'ab'; 'cd'", "char 0x0", "logical 1x1: 1", "int8 1x1: 1"})
        oxValidateSwitchExpression(arr(good));
    for (const char *bad : {"double 1x2: 1 2", "double 0x0", "cell 1x1: {}", "struct 1x1"})
        EXPECT_RAISES("VELTRO:badSwitchExpression",
                      "SWITCH expression must be a scalar or string constant.",
                      oxValidateSwitchExpression(arr(bad)));
}

TEST_F(EqualTest, IdentityAsksTheRegisteredTest) {
    oxArray *a = arr("1"), *b = arr("1");
    EXPECT_TRUE(oxIsIdentical(a, a));
    EXPECT_FALSE(oxIsIdentical(a, b));
    EXPECT_FALSE(oxIsIdentical(a, nullptr));
    const auto always = [](const oxArray *, const oxArray *) { return true; };
    const oxIdentityTest previous = oxRegisterIdentityTest(oxDOUBLE_CLASS, always);
    EXPECT_TRUE(oxIsIdentical(a, b));
    EXPECT_FALSE(oxIsIdentical(a, arr("single 1x1: 1")));
    EXPECT_EQ(oxRegisterIdentityTest(oxDOUBLE_CLASS, previous), oxIdentityTest(always));
}

} // namespace
