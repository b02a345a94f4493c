// Char arrays from and to strings and lists of strings, in several code pages.
#include <support/suite.h>
#include <unicode/ucnv.h>

#include <ut.h>

namespace {

struct TextTest : HostTest {
    TextTest() { utSetLocalCodePage("UTF-8"); }
    ~TextTest() override { utSetLocalCodePage(nullptr); }
};

oxArray *chars(std::u16string_view s) { return oxCreateStringFromNChars_UTF16(s.data(), s.size()); }

std::string owned(char *block) {
    const std::string s(block);
    oxFreeEx(block);
    return s;
}

// As the converter alone would do it: the copying of ASCII must not show.
TEST_F(TextTest, ReadingAndCreatingAgreeWithTheConverterOnRandomTexts) {
    Random random(7);
    const char *pages[] = {"UTF-8", "ISO-8859-1", "Shift_JIS", "ISO-2022-JP", "UTF-16BE"};
    const oxChar letters[] = {u'a', u'\\', 0, 0x7F, 0x80, 0xE9, 0x30A2, 0xD83D, 0xDE00, 0xFFFF};
    for (int round = 0; round < 4000; ++round) {
        utSetLocalCodePage(random.pick(pages));
        const Contexts contexts;
        const kwSize room = round % 20 ? 80 : 4000;
        std::u16string s(random.below(room), u'z');
        for (auto n = random.below(4); n > 0 && !s.empty(); --n)
            s[random.below(s.size())] = random.pick(letters);
        oxArray *a = chars(s);
        SCOPED_TRACE(std::string(utGetLocalCodePage()) + ", text " + text(a));
        std::string expected(random.below(room) + 1, '#'), got = expected;
        UErrorCode status = U_ZERO_ERROR;
        char *target = expected.data();
        const oxChar *source = s.data();
        ucnv_fromUnicode(utGetConverter(nullptr), &target, target + expected.size() - 1, &source,
                         source + s.size(), nullptr, true, &status);
        *target = 0;
        EXPECT_EQ(oxGetString_730(a, got.data(), got.size()), status == U_BUFFER_OVERFLOW_ERROR);
        EXPECT_EQ(got, expected);
        if (U_SUCCESS(status) && s.find(u'\0') == s.npos) {
            EXPECT_EQ(oxArrayToStdString(a), std::string(expected.data(), target));
        }
        const auto bytes = static_cast<int32_t>(target - expected.data());
        std::u16string units(expected.size(), u'#');
        const int32_t n = ucnv_toUChars(utGetConverter(nullptr), units.data(), bytes + 1,
                                        expected.data(), bytes, &(status = U_ZERO_ERROR));
        EXPECT_EQ(text(oxCreateStringFromNChars_730(expected.data(), static_cast<kwSize>(bytes))),
                  text(chars(units.substr(0, static_cast<kwSize>(n)))));
    }
}

TEST_F(TextTest, OverwritingKeepsWhatTheTextDoesNotReach) {
    oxArray *a = arr("char 1x3: 'xyz'");
    EXPECT_TRUE(oxArrayStrCpy(a, "hello") == 5 && text(a) == "char 1x3: 'xyz'");
    EXPECT_TRUE(oxArrayStrCpy(a, "hi") == 2 && text(a) == "char 1x3: 'hiz'"); // no terminator
    EXPECT_EQ(oxArrayStrCpy(arr("char 1x0"), "a") + oxArrayStrCpy(arr("int8 1x1: 1"), "a"), 0);
}

TEST_F(TextTest, Utf16ReadersAreBoundedByTheArrayAndAnswerOneWhenTheTextFits) {
    const oxArray *a = chars(u"hello");
    for (const auto &[buflen, read, fits] : {std::tuple{kwSize{0}, std::u16string(7, u'#'), 0},
                                             {1, {u"\0######", 7}, 0},
                                             {2, {u"h\0llo##", 7}, 0},
                                             {5, {u"hell\0##", 7}, 0},
                                             {6, {u"hello\0#", 7}, 1}}) {
        std::u16string got(7, u'#');
        EXPECT_EQ(oxGetString_UTF16(a, got.data(), buflen), fits) << buflen;
        EXPECT_EQ(got, read) << buflen;
    }
    for (const kwSize buflen : {2, 5}) { // at most room for the text, none for a NUL
        std::u16string got(7, u'#');
        oxGetNChars_UTF16(a, got.data(), buflen);
        EXPECT_EQ(got, u"hello##");
    }
}

TEST_F(TextTest, TheStringEndsAtTheFirstNul) {
    const oxArray *a = arr("char 1x5: '\\u00e9b\\u0000cd'");
    utSetLocalCodePage("ISO-8859-1");
    EXPECT_EQ(owned(oxArrayToString(a)) + owned(oxArrayToString_UTF8(a)), "\351b\303\251b");
    EXPECT_EQ(oxArrayToStdString(a), "\351b");
    EXPECT_EQ(text(oxCreateString_UTF8("\351")), "char 1x1: '\\u00E9'"); // not UTF-8
    EXPECT_EQ(text(oxCreateString(nullptr)) + text(oxCreateString_UTF16(u"")), "char 0x0char 0x0");
    oxChar *s = oxArrayToString_UTF16(a);
    EXPECT_EQ(std::u16string(s), u"\u00E9b");
    oxFreeEx(s);
    EXPECT_TRUE(!oxArrayToString(arr("1")) && !oxArrayToString_UTF16(nullptr));
    EXPECT_EQ(oxArrayToUTF8StdString(arr("1")), "");
}

TEST_F(TextTest, LengthsOf32BitsAndMoreAreRefusedBeforeAnythingIsRead) {
    oxArray *a = arr("char 1x1: 'a'");
    oxSetN(a, kwSize{1} << 31);
    char buf[4];
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetString_730(a, buf, 4));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxArrayToByteChars(a));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCharMatrixToStrings_UTF8(a));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCreateStringFromNChars_730(buf, kwSize{1} << 31));
}

TEST_F(TextTest, ByteCharsOfOtherThanRowsStandAtTheHeadOfAsManyRowsAsBytes) {
    EXPECT_EQ(text(oxArrayToByteChars(arr("char 1x2: 'a\\u00e9'"))), "uint8 1x3: 97 195 169");
    EXPECT_EQ(text(oxArrayToByteChars(arr("char 2x2: 'ab'; 'cd'"))),
              "uint8 4x2: 97 0; 99 0; 98 0; 100 0");
    EXPECT_EQ(oxArrayToByteChars(arr("char 1x0")), nullptr);
}

kwSize requested;
void *generous(kwSize bytes) { return oxMallocEx(2 * (requested = bytes)); }

TEST_F(TextTest, CopyOfUtf16AsksForAsManyBytesAsUnits) {
    using Helper = Protected_oxStringUTF16_helper;
    Helper::free(oxCopyStringUTF16(u"abc", generous));
    EXPECT_EQ(requested, 4u);
    Helper::free(Helper::copy(std::u16string(100, u'y').c_str())); // must not overrun its block
}

TEST_F(TextTest, ShortRowsArePaddedWithNulNotBlankAndWidthCountsUnits) {
    const char *strs[] = {"ab", "c"}, *wide[] = {"\xF0\x9F\x98\x80", "x"};
    const oxChar *wide16[] = {u"\U0001F600", u"x"};
    EXPECT_EQ(text(oxCreateCharMatrixFromStrings_730(2, strs)), "char 2x2: 'ab'; 'c\\u0000'");
    const oxArray *a = oxCreateCharMatrixFromStrings_UTF8(2, wide);
    EXPECT_EQ(std::u16string(a->get_chars(), 4), std::u16string(u"\xD83Dx\xDE00\0", 4));
    EXPECT_EQ(text(oxCreateCharMatrixFromStrings_UTF16(2, wide16)), text(a));
    utSetLocalCodePage("ISO-8859-1"); // each byte a character
    EXPECT_EQ(oxGetN(oxCreateCharMatrixFromStrings_730(2, wide)), 4u);
}

template<class C> void free_list(C **list) {
    for (C **p = list; *p; ++p) oxFreeEx(*p);
    oxFreeEx(list);
}

TEST_F(TextTest, ByteRowsKeepTheirNulsAndUnitRowsStopThere) {
    const oxArray *a = arr("char 2x3: 'abc'; '\\u00e9\\u0000f'");
    char **rows = oxCharMatrixToStrings_UTF8(a);
    EXPECT_STREQ(rows[0], "abc");
    EXPECT_EQ(std::string(rows[1], 6), std::string("\xC3\xA9\0f\0\0", 6));
    oxChar **units = oxCharMatrixToStrings_UTF16(a);
    EXPECT_EQ(std::u16string(units[1]), u"\u00E9");
    free_list(units), free_list(rows), free_list(oxCharMatrixToStrings(arr("char 0x3")));
    EXPECT_EQ(oxCharMatrixToStrings(arr("double 1x1: 1")), nullptr);
}

int requests;
void *third_refused(kwSize bytes) { return ++requests % 4 == 3 ? nullptr : oxMallocEx(bytes); }

TEST_F(TextTest, AByteRowWithoutMemoryStaysNullAndAUnitRowTakesTheListWithIt) {
    const oxArray *a = arr("char 3x1: 'a'; 'b'; 'c'");
    requests = 0;
    char **rows = oxCreateCStrArrayFromMatrix(a, third_refused, oxFreeEx);
    EXPECT_EQ(rows[1], nullptr);
    EXPECT_STREQ(rows[2], "c");
    oxFreeEx(rows[2]);
    free_list(rows);
    EXPECT_EQ(oxCreateUTF16CStrArrayFromMatrix(a, third_refused, oxFreeEx), nullptr);
}

TEST_F(TextTest, FailedAllocations) {
    static const std::string mixed = std::string(3000, 'x') + "\xC3\xA9"; // asks for two blocks
    static const char *strs[] = {"ab", "c"};
    const auto create = [](auto &) { return oxCreateString(mixed.c_str()); };
    sweep({.name = "string", .make = create, .may_survive = true});
    sweep_everywhere({{}}, [](auto &) { return oxCreateCharMatrixFromStrings_UTF8(2, strs); });
    sweep_everywhere({{"char 1x2: 'ab'"}}, [](auto &in) { return oxArrayToByteChars(in[0]); });
}

} // namespace
