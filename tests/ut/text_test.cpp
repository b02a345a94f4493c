// Text: conversions with every kind of code page, malformed input and capacities; formatting.
#include "ut.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <unicode/ucnv.h>

namespace {

struct PinnedCodePage {
    explicit PinnedCodePage(const char *name) { EXPECT_TRUE(utSetLocalCodePage(name)) << name; }
    ~PinnedCodePage() { utSetLocalCodePage(nullptr); }
};

int32_t size_of(const auto &text) { return static_cast<int32_t>(text.size()); }

// What fits of a converted text, and the length that the whole text needs; whether it stays within
// the capacity is checked on the way.
template<class D, class S, class F> std::pair<std::basic_string<D>, int32_t>
through(F convert, const std::basic_string<S> &in, int32_t capacity) {
    std::basic_string<D> out(static_cast<std::size_t>(capacity) + 1, D{'#'});
    int32_t n = capacity;
    convert(out.data(), &n, in.data(), size_of(in));
    EXPECT_EQ(out.back(), D{'#'}) << "wrote beyond the capacity";
    out.resize(static_cast<std::size_t>(std::min(n, capacity)));
    return {out, n};
}

// Texts of every length around the step of the fast path, with at most one piece that is not ASCII,
// or malformed, at every place, whole and cut: the answers are ICU's own.
TEST(Encoding, ConversionsEqualIcuWhereverAsciiEnds) {
    const char *const pieces[] = {
        "\xc3\xaf", "\xe2\x82\xac", "\xf0\x9f\x98\x80", "\xe2\x82", "\x83\x5c", "\xb1", "\x83"};
    const std::u16string unit_pieces[] = {u"\u00ef", u"\u20ac", u"\U0001F600", u"\u30bd", {0xD800}};
    for (const char *page : {"UTF-8", "ISO-8859-1", "Shift_JIS"}) {
        const PinnedCodePage pinned(page);
        UErrorCode status = U_ZERO_ERROR;
        UConverter *icu = ucnv_open(page, &status);
        const auto units_by_icu = [&](char16_t *dst, int32_t *n, const char *src, int32_t length) {
            *n = ucnv_toUChars(icu, dst, *n, src, length, &(status = U_ZERO_ERROR));
        };
        const auto bytes_by_icu = [&](char *dst, int32_t *n, const char16_t *src, int32_t length) {
            *n = ucnv_fromUChars(icu, dst, *n, src, length, &(status = U_ZERO_ERROR));
        };
        std::mt19937 rng(3);
        for (int32_t n = 0; n < 50; ++n)
            for (int32_t odd = 0; odd <= n; ++odd) {
                std::string bytes;
                for (int32_t k = 0; k < n; ++k) bytes += static_cast<char>(rng() % 128);
                std::u16string units(bytes.begin(), bytes.end());
                if (odd < n) {
                    bytes.replace(static_cast<std::size_t>(odd), 1, pieces[rng() % 7]);
                    units.replace(static_cast<std::size_t>(odd), 1, unit_pieces[rng() % 5]);
                }
                SCOPED_TRACE(testing::Message() << page << " length " << n << " odd at " << odd);
                for (const int32_t capacity : {0, odd, 9, 256}) {
                    ASSERT_EQ(through<char16_t>(lcp_to_utf16_n, bytes, capacity),
                              through<char16_t>(units_by_icu, bytes, capacity));
                    ASSERT_EQ(through<char>(utf16_to_lcp_n, units, capacity),
                              through<char>(bytes_by_icu, units, capacity));
                }
            }
        ucnv_close(icu);
    }
}

TEST(Encoding, OnlyTrueSupersetsOfAsciiAreCopied) {
    for (const char *name : {"UTF-8", "ISO-8859-1", "EUC-JP", "windows-1252"})
        EXPECT_TRUE(utIsAsciiSuperset(name)) << name;
    // Shift_JIS exchanges three control codes.
    for (const char *name : {"Shift_JIS", "UTF-16", "UTF-16LE", "UTF-32", "UTF-7", "ISO-2022-JP",
                             "HZ", "ibm-37", "no such encoding"})
        EXPECT_FALSE(utIsAsciiSuperset(name)) << name;
}

TEST(Encoding, ConvertersBelongToTheirThreadAndComeReset) {
    const PinnedCodePage pinned("ISO-8859-1");
    EXPECT_FALSE(utSetLocalCodePage("no such encoding") || utGetConverter("no such encoding"));
    EXPECT_STREQ(utGetLocalCodePage(), "ISO-8859-1");
    UConverter *mine = utGetConverter("UTF-8");
    std::thread([mine] {
        EXPECT_NE(utGetConverter("UTF-8"), mine);
        EXPECT_EQ(through<char16_t>(lcp_to_utf16_n, std::string("\xe4"), 9).first, u"\u00e4");
    }).join();
    UErrorCode status = U_ZERO_ERROR;
    const char *text = "\xe2\x82";
    char16_t units[4], *target = units;
    ucnv_toUnicode(mine, &target, units + 4, &text, text + 2, nullptr, false, &status);
    text = "ab";
    EXPECT_EQ(ucnv_getNextUChar(utGetConverter("UTF-8"), &text, text + 2, &status), UChar32{'a'});
}

TEST(Utf16, HelpersStopAtTheNulUnit) {
    for (std::size_t n = 0; n < 40; ++n) {
        std::u16string cut(40, u'x');
        cut[n] = 0;
        EXPECT_EQ(utf16_strlen(cut.data()), n);
        for (std::size_t limit : {std::size_t{0}, n, n + 1, std::size_t{40}})
            EXPECT_EQ(utf16_strlen_lim(cut.data(), limit), std::min(n, limit));
        std::u16string copy(42, u'#');
        const std::size_t copied = std::min<std::size_t>(n + 1, 20);
        utf16_strncpy(copy.data(), cut.data(), 20);
        EXPECT_EQ(copy, cut.substr(0, copied) + std::u16string(42 - copied, u'#'));
        utf16_strcpy(copy.data(), cut.data());
        EXPECT_EQ(copy.substr(0, n + 1), cut.substr(0, n + 1));
    }
    EXPECT_EQ(utf16_strlen_lim(nullptr, 0), 0u);
}

// --- Formatting with the width prefixes, and printing to a sink ---

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
