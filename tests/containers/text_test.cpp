// Char arrays from and to single strings, in several code pages.
#include <core/array.h>
#include <ox/sharing.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>
#include <support/random.h>

#include <unicode/ucnv.h>
#include <ut.h>

#include <cstring>

using namespace ox;
using namespace ox::test;

namespace {

struct TextTest : HostTest {
    void SetUp() override {
        HostTest::SetUp();
        utSetLocalCodePage("UTF-8");
    }
    void TearDown() override {
        utSetLocalCodePage(nullptr);
        HostTest::TearDown();
    }
};

std::u16string units(const oxArray *a) {
    return a->num.pdata ? std::u16string(a->get_chars(), a->get_number_of_elements())
                        : std::u16string();
}

oxArray *chars(const std::u16string &s) {
    return oxCreateStringFromNChars_UTF16(s.data(), s.size());
}

std::string owned(char *block) {
    const std::string s(block);
    oxFreeEx(block);
    return s;
}

const std::string long_ascii(3000, 'x');

TEST_F(TextTest, BytesOfTheLocalCodePageBothWays) {
    struct Row {
        const char *page;
        std::string bytes;
        std::u16string expected;
    };
    const Row table[] = {
        {"UTF-8", "", u""},
        {"UTF-8", "a\xC3\xA9\xF0\x9F\x98\x80", u"a\u00E9\U0001F600"},
        {"ISO-8859-1", "\xE9\xC3", u"\u00E9\u00C3"},
        {"Shift_JIS",
         "\x83\x41"
         "b\x83\x5C",
         u"\u30A2b\u30BD"},
        {"ISO-2022-JP", "\x1B$B%\"\x1B(Bb", u"\u30A2b"},
        {"UTF-8", long_ascii, std::u16string(3000, u'x')},
        {"UTF-8", long_ascii.substr(0, 1024), std::u16string(1024, u'x')},
        {"UTF-8", long_ascii + "\xC3\xA9", std::u16string(3000, u'x') + u"\u00E9"},
    };
    for (const Row &r : table) {
        SCOPED_TRACE(r.page + (": " + r.bytes.substr(0, 20)));
        ASSERT_TRUE(utSetLocalCodePage(r.page));
        oxArray *a = oxCreateStringFromNChars_730(r.bytes.data(), r.bytes.size());
        EXPECT_EQ(units(a), r.expected);
        EXPECT_EQ(oxGetM(a), r.bytes.empty() ? 0u : 1u);
        EXPECT_EQ(units(oxCreateString(r.bytes.c_str())), r.expected);
        EXPECT_EQ(units(oxCreateString_UTF16(r.expected.c_str())), r.expected);
        EXPECT_EQ(owned(oxArrayToString(a)), r.bytes);
        EXPECT_EQ(oxArrayToStdString(a), r.bytes);
        std::string read(r.bytes.size() + 1, '#');
        EXPECT_EQ(oxGetString_730(a, read.data(), read.size()), 0);
        EXPECT_EQ(read, r.bytes + '\0');
    }
}

TEST_F(TextTest, Utf8CreatorsOfSingleStringsReadTheLocalCodePage) {
    utSetLocalCodePage("ISO-8859-1");
    EXPECT_EQ(units(oxCreateString_UTF8("\xC3\xA9")), u"\u00C3\u00A9");
    EXPECT_EQ(units(oxCreateStringFromNChars_UTF8("\xC3\xA9", 1)), u"\u00C3");
}

TEST_F(TextTest, NothingMakesAnEmptyArrayNotNull) {
    for (const oxArray *a : {oxCreateString(nullptr), oxCreateString(""), oxCreateString_UTF8(""),
                             oxCreateString_UTF16(nullptr), oxCreateString_UTF16(u""),
                             oxCreateStringFromNChars_730("abc", 0), chars(u"")}) {
        EXPECT_EQ(text(a), "char 0x0");
        EXPECT_EQ(a->num.pdata, nullptr);
        EXPECT_EQ(owned(oxArrayToString(a)), "");
    }
    utSetLocalCodePage("UTF-16");
    EXPECT_EQ(text(oxCreateString("\xFE\xFF")), "char 0x0"); // only a byte-order mark
    EXPECT_EQ(units(oxCreateStringFromNChars_UTF16(u"a\0b", 3)), std::u16string(u"a\0b", 3));
}

// Each text and buffer as the converter alone would do it: the copying of ASCII must not show.
TEST_F(TextTest, ReadingAgreesWithTheConverterOnRandomTexts) {
    Random random(7);
    const char *pages[] = {"UTF-8", "ISO-8859-1", "Shift_JIS", "ISO-2022-JP", "UTF-16BE"};
    const oxChar letters[] = {u'a', u'\\', 0, 0x7F, 0x80, 0xE9, 0x30A2, 0xD83D, 0xDE00, 0xFFFF};
    for (int round = 0; round < 4000; ++round) {
        const char *page = random.pick(pages);
        utSetLocalCodePage(page);
        std::u16string s(random.below(50), u'z');
        for (auto changes = random.below(4); changes > 0 && !s.empty(); --changes)
            s[random.below(s.size())] = random.pick(letters);
        const kwSize buflen = random.below(80) + 1;
        std::string expected(buflen, '#'), got = expected;
        UErrorCode status = U_ZERO_ERROR;
        UConverter *converter = utGetConverter(nullptr);
        char *target = expected.data();
        const oxChar *source = s.data();
        ucnv_fromUnicode(converter, &target, target + (buflen - 1), &source, source + s.size(),
                         nullptr, true, &status);
        *target = 0;
        oxArray *a = chars(s);
        EXPECT_EQ(oxGetString_730(a, got.data(), buflen), status == U_BUFFER_OVERFLOW_ERROR);
        EXPECT_EQ(got, expected) << page << ", text " << text(a);

        s.resize(std::min(s.size(), s.find(u'\0')));
        expected.assign(buflen, '#');
        got = expected;
        status = U_ZERO_ERROR;
        ucnv_fromUChars(utGetConverter(nullptr), expected.data(), static_cast<int32_t>(buflen),
                        s.data(), static_cast<int32_t>(s.size()), &status);
        oxGetNChars_730(a, got.data(), buflen);
        EXPECT_EQ(got, expected) << page << ", text " << text(a);
        oxDestroyArray(a);
    }
}

TEST_F(TextTest, StringIntoABuffer) {
    struct Row {
        const char *array;
        kwSize buflen;
        int result;
        std::string buffer; // '#' is untouched
    };
    const Row table[] = {
        {"char 1x5: 'hello'", 6, 0, std::string("hello\0#", 7)},
        {"char 1x5: 'hello'", 5, 1, std::string("hell\0##", 7)},
        {"char 1x5: 'hello'", 3, 1, std::string("he\0####", 7)},
        {"char 1x5: 'hello'", 1, 1, std::string("\0######", 7)},
        {"char 1x5: 'hello'", 0, 0, "#######"},
        {"char 1x2: 'a\\u00e9'", 3, 1, std::string("a\xC3\0####", 7)}, // cut inside a character
        {"char 1x3: 'a\\u0000b'", 7, 0, std::string("a\0b\0###", 7)},
        {"char 0x0", 7, 0, std::string("\0######", 7)},
        {"double 1x1: 65", 7, 1, "#######"},
    };
    for (const Row &r : table) {
        std::string buf(7, '#');
        EXPECT_EQ(oxGetString_UTF8(arr(r.array), buf.data(), r.buflen), r.result) << r.array;
        EXPECT_EQ(buf, r.buffer) << r.array << " into " << r.buflen;
    }
    char untouched = '#';
    EXPECT_EQ(oxGetString_730(nullptr, &untouched, 1), 1);
    EXPECT_EQ(oxGetString_730(arr("char 1x1: 'a'"), nullptr, 1), 0);
    oxGetNChars_730(arr("double 1x1: 65"), &untouched, 1);
    oxGetNChars_UTF8(arr("char 1x1: 'a'"), &untouched, 0);
    EXPECT_EQ(untouched, '#');
}

TEST_F(TextTest, Utf16ReadersAreBoundedByTheArrayAndAnswerOneWhenTheTextFits) {
    const oxArray *a = chars(u"hello");
    struct Row {
        kwSize buflen;
        int result;
        std::u16string got, nchars;
    };
    const Row table[] = {{7, 1, std::u16string(u"hello\0#", 7), std::u16string(u"hello\0#", 7)},
                         {6, 1, std::u16string(u"hello\0#", 7), std::u16string(u"hello\0#", 7)},
                         {5, 0, std::u16string(u"hell\0##", 7), u"hello##"},
                         {2, 0, std::u16string(u"h\0llo##", 7), u"hello##"},
                         {1, 0, std::u16string(u"\0######", 7), u"hello##"},
                         {0, 0, u"#######", u"hello##"}};
    for (const Row &r : table) {
        std::u16string buf(7, u'#'), nchars = buf;
        EXPECT_EQ(oxGetString_UTF16(a, buf.data(), r.buflen), r.result) << r.buflen;
        EXPECT_EQ(buf, r.got) << r.buflen;
        oxGetNChars_UTF16(a, nchars.data(), r.buflen);
        EXPECT_EQ(nchars, r.nchars) << r.buflen;
    }
    oxChar c = u'#';
    EXPECT_EQ(oxGetString_UTF16(arr("double 1x1: 65"), &c, 1), 1);
    EXPECT_EQ(oxGetString_UTF16(nullptr, &c, 0), 0);
    EXPECT_EQ(c, u'#');
}

TEST_F(TextTest, TheStringEndsAtTheFirstNul) {
    const oxArray *a = arr("char 1x5: 'ab\\u0000cd'"), *e = arr("char 1x2: '\\u00e9x'");
    EXPECT_EQ(a->get_string_length(), 2);
    EXPECT_EQ(owned(oxArrayToString(a)), "ab");
    utSetLocalCodePage("ISO-8859-1");
    EXPECT_EQ(owned(oxArrayToString(e)), "\xE9x");
    EXPECT_EQ(owned(oxArrayToString_UTF8(e)), "\xC3\xA9x");
    EXPECT_EQ(oxArrayToUTF8StdString(e), "\xC3\xA9x");
    oxChar *s = oxArrayToString_UTF16(a);
    EXPECT_EQ(std::u16string(s), u"ab");
    oxFreeEx(s);
    for (const oxArray *none : {arr("double 1x1: 65"), static_cast<oxArray *>(nullptr)}) {
        EXPECT_EQ(oxArrayToString(none), nullptr);
        EXPECT_EQ(oxCreateUTF8CStrFromArray(none, oxMallocEx), nullptr);
        EXPECT_EQ(oxArrayToString_UTF16(none), nullptr);
        EXPECT_EQ(oxArrayToStdString(none), "");
    }
    EXPECT_EQ(arr("double 1x1: 65")->get_string_length(), 0);
}

TEST_F(TextTest, LengthsOf32BitsAndMoreAreRefusedBeforeAnythingIsRead) {
    oxArray *a = arr("char 1x1: 'a'");
    oxSetN(a, kwSize{1} << 31);
    char buf[4];
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetString_730(a, buf, 4));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxArrayToByteChars(a));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCharMatrixToStrings_UTF8(a));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCreateStringFromNChars_730(buf, kwSize{1} << 31));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetNChars_730(arr("char 0x0"), buf, kwSize{1} << 31));
}

TEST_F(TextTest, OverwritingKeepsWhatTheTextDoesNotReach) {
    oxArray *a = arr("char 1x3: 'xyz'");
    EXPECT_EQ(oxArrayStrCpy(a, "hello"), 5);
    EXPECT_EQ(units(a), u"xyz");
    EXPECT_EQ(oxArrayStrCpy(a, "\xC3\xA9i"), 2);
    EXPECT_EQ(units(a), u"\u00E9iz"); // no terminator either
    EXPECT_EQ(oxArrayStrCpy(a, nullptr) + oxArrayStrCpy(nullptr, "a") +
                  oxArrayStrCpy(arr("char 1x0"), "a") + oxArrayStrCpy(arr("int8 1x1: 1"), "a"),
              0);
}

TEST_F(TextTest, ByteCharsOfOtherThanRowsStandAtTheHeadOfAsManyRowsAsBytes) {
    EXPECT_EQ(text(oxArrayToByteChars(arr("char 1x2: 'a\\u00e9'"))), "uint8 1x3: 97 195 169");
    EXPECT_EQ(text(oxArrayToByteChars(arr("char 2x2: 'ab'; 'cd'"))),
              "uint8 4x2: 97 0; 99 0; 98 0; 100 0");
    EXPECT_EQ(oxArrayToByteChars(arr("char 1x0")), nullptr);
    EXPECT_EQ(oxArrayToByteChars(arr("uint8 1x1: 1")), nullptr);
    const oxArray *b = oxArrayToByteChars(oxCreateString(long_ascii.c_str()));
    EXPECT_EQ(std::string(static_cast<char *>(b->num.pdata), 3000), long_ascii);
}

kwSize requested;
void *generous(kwSize bytes) {
    requested = bytes;
    return oxMallocEx(2 * bytes);
}

TEST_F(TextTest, CopyOfUtf16AsksForAsManyBytesAsUnits) {
    oxChar *s = oxCopyStringUTF16(u"abc", generous);
    EXPECT_EQ(requested, 4u);
    EXPECT_EQ(std::u16string(s), u"abc");
    oxFreeEx(s);
    EXPECT_EQ(owned(oxCopyStringUTF8("abc", generous)), "abc");
    EXPECT_EQ(requested, 4u);
    EXPECT_EQ(oxCopyString(nullptr, generous), nullptr);
    oxChar *p = Protected_oxStringUTF16_helper::copy(u"long enough to leave a small block");
    EXPECT_EQ(std::u16string(p), u"long enough to leave a small block");
    Protected_oxStringUTF16_helper::free(p);
    Protected_cptr<char, Protected_oxString_helper> owner(oxArrayToString(arr("char 1x1: 'a'")),
                                                          true);
    EXPECT_STREQ(Protected_cptr(owner).get(), "a");
}

TEST_F(TextTest, FailedAllocations) {
    static const char *strs[] = {"ab", "c"};
    static const oxChar *strs16[] = {u"ab", u"c"};
    const Sweep table[] = {
        {.name = "ascii",
         .make = [](auto &) { return oxCreateString("abc"); },
         .may_survive = true}, // a second block is asked for
        {.name = "string",
         .make = [](auto &) { return oxCreateString("\xC3\xA9"); },
         .may_survive = true},
        {.name = "long",
         .make = [](auto &) { return oxCreateString((long_ascii + "\xC3\xA9").c_str()); },
         .may_survive = true},
        {"utf16", {}, [](auto &) { return oxCreateString_UTF16(u"abc"); }},
        {"matrix", {}, [](auto &) { return oxCreateCharMatrixFromStrings_UTF8(2, strs); }},
        {"matrix16", {}, [](auto &) { return oxCreateCharMatrixFromStrings_UTF16(2, strs16); }},
        {"bytes", {"char 1x2: 'ab'"}, [](auto &in) { return oxArrayToByteChars(in[0]); }},
        {"array", {}, [](auto &) {
             const kwSize dims[] = {2, 2, 2};
             return oxCreateCharArray(3, dims);
         }}};
    for (const Sweep &s : table) sweep(s);
}

} // namespace
