// Formatting with the width prefixes, and printing to a sink.
#include "ut.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string format(const char *text, ...) {
    char buffer[4096];
    va_list arguments;
    va_start(arguments, text);
    const int n = utVSNprintf(buffer, sizeof buffer, text, arguments);
    va_end(arguments);
    EXPECT_EQ(n, static_cast<int>(std::strlen(buffer)));
    return buffer;
}

constexpr std::size_t wide = (std::size_t{1} << 32) + 7; // a 32-bit reading prints 7

TEST(Format, WidthPrefixesTakeTheirWholeArgument) {
    const std::string ones(2000, '1');
    EXPECT_EQ(format("%Id,%Iu,%Ix,%IX,%Io", -wide, wide, wide, wide, wide),
              "-4294967303,4294967303,100000007,100000007,40000000007");
    EXPECT_EQ(format("%I64d|%I64u|%I64i %I32d %I32u", -5LL, ~0ULL, 5LL, -5, 4000000000u),
              "-5|18446744073709551615|5 -5 4000000000");
    EXPECT_EQ(format("[%-12Iu][%012Iu][%+I64d][%#Ix]", wide, wide, 3LL, wide),
              "[4294967303  ][004294967303][+3][0x100000007]");
    EXPECT_EQ(format("[%*Iu][%.*I64d][%5.3I32d]", 12, wide, 4, 7LL, 7),
              "[  4294967303][0007][  007]");
    EXPECT_EQ(format((ones + "%Iu%s").c_str(), wide, "!"), ones + "4294967303!");
    // What is no width prefix stays as it is.
    EXPECT_EQ(format("%%Iu 100%% I64d Iu", 1), "%Iu 100% I64d Iu");
    EXPECT_EQ(format("%s%s %cIu %dId", "I", "%Iu", 'a', 1), "I%Iu aIu 1Id");
}

TEST(Format, CutsTerminatesAndAnswersTheWholeLength) {
    char buffer[2048] = "?????";
    EXPECT_EQ(utSNprintf(buffer, 4, "%Iu", wide), 10);
    EXPECT_STREQ(buffer, "429");
    const std::string long_format = std::string(1020, 'a') + "%-3Iu end";
    utSetAllocationFault([] { return true; }); // then long formats are cut, not refused
    EXPECT_EQ(utSNprintf(buffer, sizeof buffer, long_format.c_str(), wide), 1020);
    utSetAllocationFault(nullptr);
    EXPECT_EQ(buffer, std::string(1020, 'a'));
}

TEST(Format, PrintfGoesToTheSinkWhole) {
    static std::string printed;
    const utPrintSink previous =
        utSetPrintSink([](const char *text, size_t n) { printed.append(text, n); });
    EXPECT_EQ(utPrintf("%Iu %s\n", wide, "x"), 13);
    const std::string large(5000, 'y');
    EXPECT_EQ(utPrintf("%s|", large.c_str()), 5001);
    EXPECT_EQ(printed, "4294967303 x\n" + large + "|");
    utSetPrintSink(previous);
}

} // namespace
