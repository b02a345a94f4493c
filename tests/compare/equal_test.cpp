// Equality: every pairing of classes, storage and NaN rule, and the switch comparison.
#include "support/array_text.h"
#include "support/expect.h"
#include "support/host.h"
#include "support/random.h"

#include <core/array.h>
#include <ox.hpp>

#include <cmath>
#include <limits>

namespace ox::test {
namespace {

class EqualTest : public HostTest {};

bool equal(const oxArray *a, const oxArray *b) {
    const bool ab = oxAreMatricesEqual(a, b) != 0;
    EXPECT_EQ(ab, oxAreMatricesEqual(b, a) != 0) << "not symmetric";
    return ab;
}
bool equal(const char *a, const char *b) { return equal(a ? arr(a) : nullptr, arr(b)); }
bool equal_with_nan(const char *a, const char *b) {
    return oxAreMatricesEqualNanOptional(arr(a), arr(b), 0) != 0;
}

TEST_F(EqualTest, PairsOfArrays) {
    const struct {
        const char *a, *b;
        bool expected;
    } rows[] = {
        {"65", "char 1x1: 'A'", true},
        {"logical 1x1: 1", "1", true},
        {"int8 1x2: -1 5", "single 1x2: -1 5", true},
        {"0", "-0", true},
        {"double 2x3: 1 2 3; 4 5 6", "double 3x2: 1 2; 3 4; 5 6", false},
        {"double 1x0", "double 0x1", false},
        {"double 0x0", "char 0x0", true},
        {"cell 0x0", "double 0x0", false},
        // null equals every empty array of values
        {nullptr, "double 0x3", true},
        {nullptr, "char 0x0", true},
        {nullptr, "logical 1x0", true},
        {nullptr, "sparse double 0x2", true},
        {nullptr, "0", false},
        {nullptr, "cell 0x0", false},
        {nullptr, "struct 0x0", false},
        // 64-bit integers compare exactly with each other and rounded with the rest
        {"int64 1x1: 9007199254740993", "int64 1x1: 9007199254740992", false},
        {"int64 1x1: 9007199254740993", "uint64 1x1: 9007199254740992", false},
        {"int64 1x1: 9007199254740993", "uint64 1x1: 9007199254740993", true},
        {"int64 1x1: -1", "uint64 1x1: 18446744073709551615", false},
        {"int64 1x1: 9007199254740993", "double 1x1: 9007199254740992", true},
        {"int64 1x1: 9223372036854775807", "double 1x1: 9223372036854775808", false},
        {"uint64 1x1: 18446744073709551615", "double 1x1: 18446744073709551616", false},
        {"uint64 1x1: 9223372036854775808", "double 1x1: 9223372036854775808", true},
        {"double 1x2: 1+0i 2+0i", "double 1x2: 1 2", true},
        {"1+2i", "1", false},
        {"cell 1x2: {1} {char 1x1: 'a'}", "cell 1x2: {int8 1x1: 1} {char 1x1: 'a'}", true},
        {"cell 1x1: {}", "cell 1x1: {double 0x0}", true},
        {"cell 1x1: {}", "cell 1x1: {cell 0x0}", false},
        {"struct 1x1 a,b: {1} {2}", "struct 1x1 b,a: {2} {1}", true},
        {"struct 1x1 a,b: {1} {2}", "struct 1x1 a,c: {1} {2}", false},
        {"struct 1x1 a: {1}", "struct 1x1 a,b: {1} {2}", false},
        // objects keep the order of fields and their class name
        {"object P 1x1 a,b: {1} {2}", "object P 1x1 a,b: {1} {2}", true},
        {"object P 1x1 a,b: {1} {2}", "object P 1x1 b,a: {2} {1}", false},
        {"object P 1x1 a,b: {1} {2}", "object Q 1x1 a,b: {1} {2}", false},
        {"object P 1x1 a,b: {1} {2}", "struct 1x1 a,b: {1} {2}", false},
        // sparse: structure within a class, values across classes and against full arrays
        {"sparse double 2x2: (0,0)=1 (1,1)=2", "double 2x2: 1 0; 3 2", false},
        {"sparse double 2x2: (0,0)=1 (1,1)=0", "sparse double 2x2: (0,0)=1", false},
        {"sparse double 2x2: (0,0)=1 (1,1)=0", "double 2x2: 1 0; 0 0", true},
        {"sparse logical 2x2: (0,0)=1", "sparse double 2x2: (0,0)=1 (1,0)=0", true},
        {"sparse double 1x2: (0,0)=1+2i", "double 1x2: 1+2i 0", true},
        {"sparse double 1x2: (0,0)=1+2i", "double 1x2: 1+2i 0+1i", false},
        {"sparse double 1x1: (0,0)=9007199254740992", "int64 1x1: 9007199254740993", true},
        {"sparse double 1x1: (0,0)=9223372036854775808", "int64 1x1: 9223372036854775807", false},
    };
    for (const auto &r : rows)
        EXPECT_EQ(equal(r.a, r.b), r.expected) << (r.a ? r.a : "null") << " against " << r.b;
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
    const char *const pairs[][2] = {
        {"NaN", "NaN"},
        {"single 1x1: NaN", "NaN"},
        {"0+NaN*i", "0+NaN*i"},
        {"sparse double 1x2: (0,1)=NaN", "double 1x2: 0 NaN"},
        {"sparse double 1x2: (0,1)=NaN", "sparse double 1x2: (0,1)=NaN"},
        {"cell 1x1: {NaN}", "cell 1x1: {NaN}"},
    };
    for (const auto &p : pairs) {
        EXPECT_FALSE(equal(p[0], p[1])) << p[0];
        EXPECT_TRUE(equal_with_nan(p[0], p[1])) << p[0];
    }
    EXPECT_FALSE(equal_with_nan("NaN", "0"));
    EXPECT_FALSE(equal_with_nan("NaN", "int64 1x1: 9223372036854775807"));
    // A NaN is not zero, so a one-sided imaginary part that holds one differs under both rules.
    EXPECT_FALSE(equal_with_nan("1+NaN*i", "1"));
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
} // namespace ox::test
