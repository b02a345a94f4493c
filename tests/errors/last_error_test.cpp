// The record of the last error: storing texts and stacks, and exchanging records.
#include <support/suite.h>

#include <string>

namespace {

class LastError : public HostTest {
protected:
    static std::string last() {
        const char *id, *msg;
        oxGetLastErrIdAndMsg(&id, &msg);
        return std::string(id) + '|' + msg;
    }
    static oxArray *stack() {
        oxArray *s;
        oxGetLastErrIdAndMsgAndStack(nullptr, nullptr, &s);
        return s;
    }
};

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
    EXPECT_EQ(text(stack()), "double 1x3: 1 2 3");
    EXPECT_RAISES("A:b", "x", oxSetErrorMode(0), oxErrMsgIdAndTxt("A:b", "x"));
    EXPECT_NE(stack(), nullptr) << "mode 0 keeps it";
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
    mine.mode = 9;
    oxClearErrorState(&mine);
    EXPECT_TRUE(!mine.message && !mine.message_capacity && !mine.identifier_capacity);
    EXPECT_EQ(mine.mode, 9);
}

} // namespace
