// Raising: identifiers, messages, the prefix, translation, what a raise cleans up, and the record
// of the last error.
#include <errors/raise.h>
#include <support/suite.h>

#include <ut.h>
#include <ut.hpp>

#include <cfenv>
#include <cstring>

namespace {

std::string last() {
    const char *id, *message;
    oxGetLastErrIdAndMsg(&id, &message);
    return std::string(id) + '|' + message;
}

using Raise = HostTest;

// A message is used as a format without arguments, so only the row that callers format may hold a
// percent.
TEST_F(Raise, TableEntries) {
    // Every kind of name, and the texts with odd white space.
    const std::tuple<oxErrorMessage, const char *, const char *> rows[] = {
        {FNOERR, "VELTRO:noerr", "Not an error."},
        {FNOMEM, "VELTRO:nomem", "Out of memory. Type HELP MEMORY for your options."},
        {FPMAXSIZE, "VELTRO:pmaxsize", "Maximum variable size allowed by the program is exceeded."},
        {FBADFID_ox, "VELTRO:badfid_ox",
         "Invalid file identifier.  Use fopen to generate a valid file identifier."},
        {FSUBSASSIGNNUMELMISMATCH, "VELTRO:subsassignnumelmismatch",
         "In an assignment  A(:) = B, the number of elements in A and B\nmust be the same."},
        {FP32BITSIZE, "VELTRO:p32bitsize", "Matrix API is called with negative size or index."},
    };
    for (const auto &[number, id, message] : rows) EXPECT_RAISES(id, message, oxErrMsg(number));
    for (int n = FNOERR; n <= FP32BITSIZE; ++n) {
        const char *message = oxGetErrorTableEntry(static_cast<oxErrorMessage>(n));
        EXPECT_EQ(std::strchr(message, '%') != nullptr, n == FFMAXSIZE) << n;
    }
}

void raise_with_list(const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    oxVErrMsgIdAndTxt(id, fmt, args);
}

TEST_F(Raise, Forms) {
    EXPECT_RAISES("A:b", "3 of x", raise_with_list("A:b", "%d of %s", 3, "x"));
    EXPECT_RAISES("A:b", "4 of y", oxErrMsgIdAndTxt("A:b", "%d of %s", 4, "y"));
    EXPECT_RAISES("A:b", "6", oxSimpleErrStackAndMsgIdAndTxt(nullptr, "A:b", "%d", 6));
    EXPECT_RAISES("", "abc..", oxErrMsgTxt("ab%s", "c."));
    EXPECT_RAISES("", ".", oxErrMsgTxt(""));
    EXPECT_RAISES("VELTRO:UndefinedFunction",
                  "Function 'plus' is not defined for values of class 'cell'.",
                  oxFcnUndefinedForClass("plus", "cell"));
    EXPECT_RAISES("A:b", "4294967303", oxErrMsgIdAndTxt("A:b", "%Iu", (kwSize{1} << 32) + 7));
    // Buffers have 8192 bytes with the NUL; the period takes the place of a last character.
    const std::string text(9000, 'm');
    EXPECT_RAISES("A:b", text.substr(0, 8191).c_str(), oxErrMsgIdAndTxt("A:b", "%s", text.c_str()));
    EXPECT_RAISES("", (text.substr(0, 8190) + '.').c_str(), oxErrMsgTxt("%s", text.c_str()));
}

// The prefix is made of the untranslated format; it is recorded, but not thrown.
TEST_F(Raise, PrefixAndTranslation) {
    const auto say = [](const char *fmt, char *buffer, kwSize size) {
        std::snprintf(buffer, size, "[%s/%zu] ", fmt, size);
    };
    const auto too_much = [](const char *, char *buffer, kwSize size) {
        std::memset(buffer, 'p', size);
    };
    EXPECT_EQ(oxSetErrmsgPrefixFcn(say), nullptr);
    ox::set_message_translation([](const char *fmt) { return *fmt == '%' ? "%d out" : fmt; });
    EXPECT_RAISES("A:b", "7 out", oxErrMsgIdAndTxt("A:b", "%d in", 7));
    EXPECT_EQ(last(), "A:b|[%d in/8192] 7 out");
    ox::set_message_translation(nullptr);
    EXPECT_RAISES("A:b", "8", oxSimpleErrMsgIdAndTxt("A:b", "%d", 8));
    EXPECT_EQ(last(), "A:b|8");
    EXPECT_EQ(oxSetErrmsgPrefixFcn(too_much), oxErrmsgPrefixFcn(say));
    EXPECT_RAISES("A:b", "9", oxErrMsgIdAndTxt("A:b", "9"));
    EXPECT_EQ(last(), "A:b|" + std::string(8191, 'p'));
}

// Arguments may lie in the very blocks that the raise frees.
TEST_F(Raise, FreesTheCurrentContextAndResetsTheMachine) {
    void *outer = oxMalloc(8);
    Contexts inner;
    const kwSize listed = GetAllocListLength();
    auto *words = static_cast<char *>(oxMalloc(16));
    std::strcpy(words, "in the block");
    static kwSize when_cleaned;
    ASSERT_TRUE(ut_protect(
        utGetErrorContext(), [](void *) { when_cleaned = GetAllocListLength(); }, nullptr));
    std::fesetround(FE_UPWARD);
    EXPECT_RAISES("in the block", "in the block", oxErrMsgIdAndTxt(words, words));
    EXPECT_EQ(when_cleaned, listed) << "blocks go before the protected items";
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    EXPECT_TRUE(oxIsOnAllocList(outer));
}

// The recorded text may suffer, the exception not.
TEST_F(Raise, WithoutAnyMemory) {
    FailingAllocation none(1, FailingAllocation::Then::stays);
    EXPECT_RAISES("A:b", "still said", oxSetErrorMode(0), oxErrMsgIdAndTxt("A:b", "still said"));
    oxSetErrorOn();
    EXPECT_THROW(oxErrMsgIdAndTxt("A:b", "still said"), ut::simple_exception);
    EXPECT_EQ(last(), "|");
}

// The utility library's own errors take the same way.
TEST_F(Raise, FromTheMessageCatalogue) {
    static const utMessage rows[] = {{77, "vel", "BadPage", "Page %Iu of \"%s\" is missing."},
                                     {0x360001, "vel", "Late", ""}};
    ASSERT_TRUE(ut_mem_add_primary_message_table(rows, 2));
    EXPECT_RAISES("VELTRO:vel:BadPage", "Page 4294967297 of \"log\" is missing.",
                  ut_error(77, "pages", 41, (kwSize{1} << 32) + 1, "log"));
    const char *file;
    int line;
    utGetLastErrorPlace(&file, &line);
    EXPECT_EQ(file + std::to_string(line), "pages41");
    EXPECT_STREQ(ut_get_message_component(0x360001), "matrix"); // the first registration wins
    EXPECT_STRNE(ut_get_message(-1), "");
}

TEST_F(Raise, ModeZeroRecordsNothing) {
    EXPECT_RAISES("A:b", "first", oxErrMsgIdAndTxt("A:b", "first"));
    EXPECT_EQ(oxSetErrorMode(0), 1);
    EXPECT_RAISES("C:d", "second", oxErrMsgIdAndTxt("C:d", "second"));
    EXPECT_EQ(last(), "A:b|first");
    EXPECT_EQ(oxSetErrorMode(-7), 0);
    EXPECT_RAISES("C:d", "third", oxErrMsgIdAndTxt("C:d", "third")); // and recorded
}

// --- The record of the last error ---

using LastError = HostTest;

oxArray *stack() {
    oxArray *s;
    oxGetLastErrIdAndMsgAndStack(nullptr, nullptr, &s);
    return s;
}

TEST_F(LastError, BuffersGrowToTheLengthAndNeverShrink) {
    const oxErrorState *s = oxGetErrorState();
    oxSetLastErrIdAndMsg("A:long", "0123456789");
    oxSetLastErrIdAndMsg("B", "012");
    EXPECT_EQ(last(), "B|012");
    EXPECT_TRUE(s->message_capacity == 11 && s->identifier_capacity == 7);
    EXPECT_EQ(s->message[10], '\0');
    oxSetLastErrIdAndMsg(nullptr, nullptr);
    EXPECT_EQ(last(), "|");
    FailingAllocation none(1, FailingAllocation::Then::stays);
    oxSetLastErrIdAndMsg("Z:yxwvuts", "0123456789abc"); // without memory texts are cut
    EXPECT_EQ(last(), "Z:yxwv|0123456789");
}

// What is read from the record may be handed back to it, in either place.
TEST_F(LastError, TextsMayAliasTheRecord) {
    const auto id = [] { return oxGetErrorState()->identifier; };
    const auto msg = [] { return oxGetErrorState()->message; };
    oxSetLastErrIdAndMsg("A:b", "a longer message");
    oxSetLastErrIdAndMsg(id(), msg());
    EXPECT_EQ(last(), "A:b|a longer message");
    oxSetLastErrIdAndMsg(msg(), id());
    EXPECT_EQ(last(), "a longer message|A:b");
    EXPECT_RAISES("A:b", "longer message!", oxErrMsgIdAndTxt(msg(), "%s!", id() + 2));
    EXPECT_EQ(last(), "A:b|longer message!");
}

// The record keeps a shared copy, off the list; errors without a stack drop it.
TEST_F(LastError, StackIsASharedCopy) {
    {
        const Contexts inner;
        oxArray *a = arr("1 2 3");
        oxSetLastErrIdAndMsgAndStack("A:b", "m", a);
        EXPECT_TRUE(stack() != a && oxGetPr(stack()) == oxGetPr(a));
        EXPECT_TRUE(stack()->scope == oxSCOPE_ERROR_STACK && oxIsTemp(a));
        oxSetLastErrIdAndMsgAndStack("A:b", "m", stack()); // the one that is replaced
    }
    EXPECT_RAISES("A:b", "x", oxSetErrorMode(0), oxErrMsgIdAndTxt("A:b", "x"));
    EXPECT_EQ(text(stack()), "double 1x3: 1 2 3") << "mode 0 keeps it";
    oxSetErrorOn();
    EXPECT_RAISES("A:b", "x", oxErrMsgIdAndTxt("A:b", "x"));
    EXPECT_EQ(stack(), nullptr);
    EXPECT_RAISES("A:b", "y", oxSimpleErrStackAndMsgIdAndTxt(arr("4"), "A:b", "y"));
    EXPECT_EQ(text(stack()), "double 1x1: 4");
}

TEST_F(LastError, RecordsAreExchanged) {
    oxErrorState mine;
    oxInitErrorState(&mine);
    oxSetErrorMode(3);
    oxSetLastErrIdAndMsg("A:b", "outer");
    oxErrorState *s = &mine;
    oxSwapErrorState(&s);
    EXPECT_TRUE(oxGetErrorState() == &mine && oxGetErrorMode() == 1);
    EXPECT_EQ(last(), "|");
    EXPECT_RAISES("C:d", "inner", oxErrMsgIdAndTxt("C:d", "inner"));
    oxSetErrorState(s);
    EXPECT_EQ(last(), "A:b|outer");
    EXPECT_STREQ(mine.message, "inner");
    oxClearErrorState(&mine);
    EXPECT_TRUE(!mine.message && !mine.message_capacity && !mine.identifier_capacity);
}

} // namespace
