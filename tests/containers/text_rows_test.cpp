// Char matrices from and to lists of strings.
#include <core/array.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/host.h>

#include <ut.h>

using namespace ox;
using namespace ox::test;

namespace {

using TextRows = HostTest;

TEST_F(TextRows, ShortRowsArePaddedWithNulNotBlank) {
    const char *strs[] = {"ab", "c"};
    const oxArray *a = oxCreateCharMatrixFromStrings_730(2, strs);
    EXPECT_EQ(text(a), "char 2x2: 'ab'; 'c\\u0000'");
    EXPECT_EQ(text(oxCreateCharMatrixFromStrings_730(0, nullptr)), "char 0x0");
    const char *empty[] = {"", ""};
    EXPECT_EQ(text(oxCreateCharMatrixFromStrings_730(2, empty)), "char 2x0");
}

TEST_F(TextRows, WidthCountsUnitsNotCharacters) {
    const char *strs[] = {"\xF0\x9F\x98\x80", "x"};
    const oxArray *a = oxCreateCharMatrixFromStrings_UTF8(2, strs);
    ASSERT_EQ(text(a).substr(0, 8), "char 2x2");
    EXPECT_EQ(a->get_chars()[0], 0xD83D);
    EXPECT_EQ(a->get_chars()[2], 0xDE00);
    const oxChar *wide[] = {u"\U0001F600", u"x"};
    const oxArray *b = oxCreateCharMatrixFromStrings_UTF16(2, wide);
    EXPECT_EQ(text(b), text(a));
    utSetLocalCodePage("ISO-8859-1"); // each byte a character
    EXPECT_EQ(oxGetN(oxCreateCharMatrixFromStrings_730(2, strs)), 4u);
    utSetLocalCodePage(nullptr);
}

TEST_F(TextRows, CharArrayFoldsNothingAway) {
    const kwSize dims[] = {2, 3, 1}, huge[] = {1, kwSize{1} << 40, kwSize{1} << 40};
    EXPECT_EQ(oxGetNumberOfDimensions(oxCreateCharArray(3, dims)), 3u);
    EXPECT_EQ(oxGetN(oxCreateCharArray(1, dims)), 1u);
    EXPECT_EQ(text(oxCreateCharArray(0, nullptr)), "char 0x0");
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateCharArray(3, huge));
}

template<class C> void free_list(C **list) {
    for (C **p = list; *p; ++p) oxFreeEx(*p);
    oxFreeEx(list);
}

TEST_F(TextRows, RowsAsStrings) {
    const oxArray *a = arr("char 2x3: 'abc'; '\\u00e9\\u0000f'");
    char **rows = oxCharMatrixToStrings_UTF8(a);
    EXPECT_STREQ(rows[0], "abc");
    EXPECT_EQ(std::string(rows[1], 6), std::string("\xC3\xA9\0f\0\0", 6)); // the NUL is kept
    EXPECT_EQ(rows[2], nullptr);
    free_list(rows);
    oxChar **wide = oxCharMatrixToStrings_UTF16(a);
    EXPECT_EQ(std::u16string(wide[0]), u"abc");
    EXPECT_EQ(std::u16string(wide[1]), u"\u00E9"); // the row stops there
    free_list(wide);
    char **none = oxCharMatrixToStrings(arr("char 0x3"));
    EXPECT_EQ(none[0], nullptr);
    free_list(none);
    EXPECT_EQ(oxCharMatrixToStrings(arr("double 1x1: 1")), nullptr);
    EXPECT_EQ(oxCharMatrixToStrings_UTF16(nullptr), nullptr);
}

int allowed; // requests until one is refused
void *third_refused(kwSize bytes) { return --allowed == 0 ? nullptr : oxMallocEx(bytes); }

TEST_F(TextRows, AByteRowWithoutMemoryStaysNullAndAUnitRowTakesTheListWithIt) {
    const oxArray *a = arr("char 3x1: 'a'; 'b'; 'c'");
    allowed = 3;
    char **rows = oxCreateCStrArrayFromMatrix(a, third_refused, oxFreeEx);
    EXPECT_STREQ(rows[0], "a");
    EXPECT_EQ(rows[1], nullptr);
    EXPECT_STREQ(rows[2], "c");
    oxFreeEx(rows[2]);
    free_list(rows);
    allowed = 3;
    EXPECT_EQ(oxCreateUTF16CStrArrayFromMatrix(a, third_refused, oxFreeEx), nullptr);
    allowed = 1;
    EXPECT_EQ(oxCreateUTF8CStrArrayFromMatrix(a, third_refused, oxFreeEx), nullptr);
}

} // namespace
