// Warnings: shown, recorded, raised, with their hint, callbacks and hooks in order; their manager.
#include <errors/raise.h>
#include <errors/warn.h>
#include <support/suite.h>

#include <ut.h>

namespace {

utWarnCtx *context() { return utGetWarningManagerContext(); }

std::string last_warning() {
    const char *id, *msg;
    utGetLastWarningMsg(context(), &id, &msg);
    return std::string(id) + '|' + msg;
}

struct Warn : HostTest {
    Warn() {
        utSetLastWarningMsg(context(), "none", "none");
        utSetLastPrintedWarningId(context(), "none");
    }
};

void warn_with_list(const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    oxVWarningMsgIdAndTxt(id, fmt, args);
}

TEST_F(Warn, Forms) {
    EXPECT_WARNS("V:y", "4 of z", warn_with_list("V:y", "%d of %s", 4, "z"));
    EXPECT_WARNS("V:x", "3 of 1099511627776",
                 oxWarningMsgIdAndTxt("V:x", "%d of %Iu", 3, kwSize{1} << 40));
    EXPECT_WARNS("V:z", "Division by zero is not allowed.", oxWarningIdAndMsg("V:z", FDIVBYZERO));
    EXPECT_EQ(last_warning(), "V:z|Division by zero is not allowed.");
}

TEST_F(Warn, WithoutIdentifierAPeriodIsAppended) {
    EXPECT_WARNS("", "abc 1.", oxWarningMsgTxt("abc %d", 1));
    EXPECT_EQ(last_warning(), "|abc 1.");
    const WarningRecorder quiet;
    const std::string text(9000, 'w');
    oxWarningMsgTxt("%s", text.c_str());
    EXPECT_EQ(last_warning(), '|' + text.substr(0, 8190) + '.');
}

TEST_F(Warn, HintOnlyInItsModeAndWithAnIdentifier) {
    utSetWarningMode(context(), UT_WARNING_MODE_HINT, true);
    EXPECT_WARNS("V:x", "m\n(Type \"warning off V:x\" to suppress this warning.)",
                 oxWarningMsgIdAndTxt("V:x", "m"));
    EXPECT_EQ(last_warning(), "V:x|m") << "neither the lead nor the hint is recorded";
    EXPECT_WARNS("", "m.", oxWarningMsgTxt("m"));
    EXPECT_WARNS("", "m", oxWarningMsgIdAndTxt(nullptr, "m"));
}

TEST_F(Warn, RecordedOnly) {
    utSetWarningStatus(context(), "V:quiet", UT_WARNING_RECORDED);
    EXPECT_NO_WARNING(oxWarningMsgIdAndTxt("V:quiet", "m"));
    EXPECT_EQ(last_warning(), "V:quiet|m");
    utSetWarningStatus(context(), "all", UT_WARNING_ERROR);
    utSetWarningMode(context(), UT_WARNING_MODE_QUIET, true); // overrides every status
    EXPECT_NO_WARNING(oxWarningMsgIdAndTxt("V:strict", "n"));
    EXPECT_EQ(last_warning(), "V:strict|n");
    EXPECT_STREQ(utGetLastPrintedWarningId(context()), "none");
}

TEST_F(Warn, StatusTwoRaises) {
    utSetWarningStatus(context(), "V:strict", UT_WARNING_ERROR);
    EXPECT_RAISES("V:strict", "100%d", oxWarningMsgIdAndTxt("V:strict", "%s", "100%d"));
    EXPECT_STREQ(utGetLastPrintedWarningId(context()), "V:strict");
    EXPECT_EQ(last_warning(), "none|none") << "it is an error, not a warning";
    utSetWarningStatus(context(), "all", UT_WARNING_ERROR);
    EXPECT_RAISES("", "one period.", oxWarningMsgTxt("one period"));
    EXPECT_NO_WARNING(oxWarningMsgTxt("")); // only clears: no status is asked for
    EXPECT_EQ(last_warning(), "|");
}

TEST_F(Warn, WithoutAManagerEveryWarningIsShownAndNoneRecorded) {
    utSetWarningStatus(context(), "V:strict", UT_WARNING_ERROR);
    utSetWarningMode(context(), UT_WARNING_MODE_HINT, true);
    utSetWarningManagerEnabled(false);
    EXPECT_WARNS("", "m", oxWarningMsgIdAndTxt("V:strict", "m"));
    utSetWarningManagerEnabled(true);
    EXPECT_EQ(last_warning(), "none|none");
}

// Each step shows what the ones before it have left.
TEST_F(Warn, OrderOfSteps) {
    static std::string steps;
    steps.clear();
    ox::set_message_translation([](const char *fmt) {
        return *fmt == 'W' ? "Beware: " : *fmt == 'i' ? "out" : fmt;
    });
    oxSetWarningMessageHandler([](const char *text) {
        steps += std::string(text) + " printed=" + utGetLastPrintedWarningId(context());
    });
    ox::set_after_warning_hook([] {
        steps += std::string("; hook printed=") + utGetLastPrintedWarningId(context()) +
                 " last=" + last_warning();
    });
    const auto previous =
        utRegisterWarningCallback(context(), [] { steps += "; callback last=" + last_warning(); });
    oxWarningMsgIdAndTxt("V:x", "in");
    utRegisterWarningCallback(context(), previous);
    EXPECT_EQ(steps, "Beware: out printed=none; hook printed=V:x last=none|none; "
                     "callback last=V:x|out");
}

TEST_F(Warn, DefaultHandlerPrintsALine) {
    static std::string printed;
    const utPrintSink sink =
        utSetPrintSink([](const char *text, std::size_t length) { printed.append(text, length); });
    oxWarningMsgIdAndTxt("V:x", "50%%");
    utSetPrintSink(sink);
    EXPECT_EQ(printed, "Warning: 50%\n");
}

// --- The manager: statuses, modes, callbacks, records ---

TEST_F(Warn, StatusIsTheIdentifiersOwnElseTheDefault) {
    for (const char *id : {"VELTRO:m", "VELTRO:a", "VELTRO:z", "VELTRO:b", ""})
        EXPECT_TRUE(utSetWarningStatus(context(), id, 0));
    EXPECT_TRUE(utSetWarningStatus(context(), "VELTRO:m", 2));
    EXPECT_FALSE(utSetWarningStatus(context(), "VELTRO:a", 3));
    const std::pair<const char *, int> rows[] = {{"VELTRO:a", 0}, {"VELTRO:b", 0}, {"VELTRO:m", 2},
                                                 {"VELTRO:z", 0}, {"", 0},         {nullptr, 0},
                                                 {"VELTRO:c", 1}, {"VELTRO:A", 1}};
    for (const auto &[id, status] : rows)
        EXPECT_EQ(utGetWarningStatus(context(), id), status) << (id ? id : "null");
    EXPECT_TRUE(utSetWarningStatus(context(), "all", 2)); // forgets the single ones
    EXPECT_EQ(utGetWarningStatus(context(), "VELTRO:a"), 2);
}

int changes;

TEST_F(Warn, EverySettingFiresTheStatusCallbacksAndModesAreSeparate) {
    changes = 0;
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context(), [] { ++changes; }));
    const utSetWarningStatusCallback second = [] { changes += 100; };
    for (int times = 0; times < 2; ++times) // known the second time
        EXPECT_TRUE(utRegisterSetWarningStatusCallback(context(), second));
    utSetWarningStatus(context(), "VELTRO:x", 0);
    utSetWarningStatus(context(), "all", 1);
    utSetWarningStatus(context(), "VELTRO:x", 9); // refused
    EXPECT_EQ(changes, 202);
    for (int on : {2, 3, 7}) {
        utResetWarningManager(context()); // the callbacks stay
        changes = 0;
        for (int times = 0; times < 2; ++times) utSetWarningMode(context(), on, true);
        EXPECT_EQ(changes, on == 7 ? 0 : 101);
        for (int mode = 0; mode < 9; ++mode)
            EXPECT_EQ(utIsWarningModeOn(context(), mode), mode == on && on != 7);
    }
}

TEST_F(Warn, RecordsMayBeRecordedAgain) {
    utSetLastWarningMsg(context(), "VELTRO:x", "text");
    const char *identifier, *message;
    utGetLastWarningMsg(context(), &identifier, &message);
    utSetLastWarningMsg(context(), message, identifier);
    EXPECT_EQ(last_warning(), "text|VELTRO:x");
}

TEST_F(Warn, LackOfMemoryChangesNothing) {
    for (const std::size_t n : {1, 2}) {
        const FailingAllocation of_either_text(n);
        utSetLastWarningMsg(context(), "VELTRO:y", "new");
        EXPECT_EQ(last_warning(), "none|none");
    }
    const FailingAllocation of_the_identifier(1);
    EXPECT_FALSE(utSetWarningStatus(context(), "VELTRO:y", 2));
    EXPECT_EQ(utGetWarningStatus(context(), "VELTRO:y"), 1);
}

} // namespace
