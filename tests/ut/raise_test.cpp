// The exception with and without memory, protected items, memory, numbers.
#include "ut.hpp"

#include <cfenv>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(Exception, IsMadeWithoutMemoryToo) {
    utSetAllocationFault([] { return true; });
    const std::string long_text(9000, 'm');
    {
        // More at once than there are reserves: each is made, the early ones keep their texts.
        std::vector<ut::simple_exception> more;
        for (int k = 0; k < 8; ++k) more.emplace_back(std::to_string(k).c_str(), long_text.c_str());
        EXPECT_STREQ(more[1].identifier(), "1");
        EXPECT_GT(std::strlen(more[0].message()), 3000u);
    }
    ut::simple_exception copy("", nullptr);
    copy = ut::simple_exception("again", "free reserve"); // all were given back
    EXPECT_STREQ(copy.message(), "free reserve");
    utSetAllocationFault(nullptr);
}

std::vector<int> cleaned;
void clean(void *data) { cleaned.push_back(*static_cast<int *>(data)); }

TEST(ErrorContext, CleansUpLastFirstAlsoPastOneThatThrows) {
    utErrorContext *context = utGetErrorContext();
    int number[] = {1, 2, 3, 4};
    for (int &n : number)
        EXPECT_TRUE(ut_protect(context, n == 3 ? [](void *) { throw 7; } : clean, &n));
    EXPECT_TRUE(ut_unprotect(context, &number[1]));
    EXPECT_FALSE(ut_unprotect(context, &number[1]));
    EXPECT_THROW(ut_cleanup_protected_items(context), int);
    EXPECT_EQ(cleaned, (std::vector<int>{4, 1}));
}

TEST(Memory, OnlyCheckedAllocationsAskTheListenerAndFailuresKeepTheBlock) {
    auto *block = static_cast<unsigned char *>(utCalloc(10, 10));
    static int asked = 0;
    utSetOutOfMemoryListener([] { ++asked; });
    utSetAllocationFault([] { return true; });
    EXPECT_FALSE(utRealloc(block, 9000) || utMalloc(1) || utCalloc(1, 1) || utF2cstr("ab", 2));
    utSetAllocationFault(nullptr);
    utSetOutOfMemoryListener(nullptr);
    EXPECT_TRUE(asked == 1 && block[99] == 0);
    utFree(block);
}

TEST(Numbers, RoundingConstantsAndFlags) {
    const double odd = 0x1p52 + 1; // no room for a half
    for (const auto &[x, rounded] : std::initializer_list<std::pair<double, double>>{
             {0.5, 1}, {-2.5, -3}, {odd, odd}, {0.49999999999999994, 0}})
        EXPECT_EQ(utDoubleScalarRound(x), rounded) << x;
    EXPECT_TRUE(std::signbit(utDoubleScalarRound(-0.25)));
    EXPECT_EQ(1.0f + utGetSingleEps(), std::nextafter(1.0f, 2.0f));
    std::feraiseexcept(FE_DIVBYZERO | FE_OVERFLOW);
    utResetFPU();
    EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
}

} // namespace
