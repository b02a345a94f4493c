// Equality: every pairing of classes, storage and NaN rule, and the switch comparison.
#include <support/naive_index.h>
#include <support/stream_bytes.h>
#include <support/suite.h>

namespace {

using EqualTest = HostTest;

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
    EXPECT_FALSE(equal(a, arr("logical 1x1: 1")) || equal(a, arr("1")));
    EXPECT_TRUE(equal(a, arr("2")));
}

TEST_F(EqualTest, NanFollowsTheRuleEvenInTheSameArray) {
    oxArray *a = arr("NaN");
    EXPECT_FALSE(equal(a, a));
    EXPECT_TRUE(oxAreMatricesEqualNanOptional(a, a, 0));
}

// For every pair of classes; now and then with one bit changed.
TEST_F(EqualTest, RandomPairsAgreeWithElementwiseComparison) {
    Random random(20);
    const int others[] = {3, 4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    int matches = 0;
    const WarningRecorder quiet; // of values that the other class does not hold
    for (int round = 0; round < 800; ++round) {
        const auto ca = static_cast<oxClassID>(random.between(oxDOUBLE_CLASS, oxUINT64_CLASS)),
                   cb = static_cast<oxClassID>(random.pick(others));
        const kwSize n = random.below(1500) + 1;
        const uint64_t most = uint64_t{1} << random.below(33);
        oxArray *x = oxCreateDoubleMatrix(1, n, oxREAL);
        for (kwSize k = 0; k < n; k += 2) oxGetPr(x)[k] = static_cast<double>(random.below(most));
        oxArray *a = oxMustBe(x, ca), *b = oxCreateConvertedCopy(a, cb);
        if (random.chance(0.4))
            static_cast<unsigned char *>(oxGetData(b))[random.below(n) * oxGetElementSize(b)] ^= 1;
        const bool expected = Naive::read(a).elements == Naive::read(b).elements;
        const oxArray *stored = ca == oxDOUBLE_CLASS && round % 2 ? oxMustBeSparse(a) : a;
        ASSERT_EQ(equal(stored, b), expected) << ca << " and " << cb << ", round " << round;
        matches += expected;
    }
    EXPECT_TRUE(matches > 100 && matches < 600) << matches;
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

    for (const char *good : {"char 2x2: 'ab'; 'cd'", "char 0x0", "logical 1x1: 1"})
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
