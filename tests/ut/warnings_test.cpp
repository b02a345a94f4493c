// The warning manager: statuses, modes, callbacks, records, and lack of memory.
#include "ut.h"

#include <gtest/gtest.h>
#include <string>

namespace {

int changes = 0;
int warnings = 0;

class Warnings : public testing::Test {
protected:
    void SetUp() override {
        utResetWarningManager(context);
        changes = warnings = 0;
    }
    void TearDown() override { utResetWarningManager(context); }
    std::string last() const {
        const char *identifier = nullptr;
        const char *message = nullptr;
        utGetLastWarningMsg(context, &identifier, &message);
        return std::string(identifier) + "|" + message;
    }
    utWarnCtx *context = utGetWarningManagerContext();
};

TEST_F(Warnings, StatusIsTheIdentifiersOwnElseTheDefault) {
    EXPECT_EQ(utGetWarningStatus(context, "VELTRO:x"), 1);
    for (const char *id : {"VELTRO:m", "VELTRO:a", "VELTRO:z", "VELTRO:b", ""})
        EXPECT_TRUE(utSetWarningStatus(context, id, 0));
    EXPECT_TRUE(utSetWarningStatus(context, "VELTRO:m", 2));
    const struct {
        const char *id;
        int status;
    } rows[] = {{"VELTRO:a", 0}, {"VELTRO:b", 0}, {"VELTRO:m", 2}, {"VELTRO:z", 0},
                {"", 0},         {nullptr, 0},    {"VELTRO:c", 1}, {"VELTRO:A", 1}};
    for (const auto &row : rows)
        EXPECT_EQ(utGetWarningStatus(context, row.id), row.status) << (row.id ? row.id : "null");
    EXPECT_FALSE(utSetWarningStatus(context, "VELTRO:a", 3));
    EXPECT_FALSE(utSetWarningStatus(context, "VELTRO:a", -1));
    EXPECT_TRUE(utSetWarningStatus(context, "all", 2)); // forgets the single ones
    for (const auto &row : rows) EXPECT_EQ(utGetWarningStatus(context, row.id), 2);
    EXPECT_TRUE(utSetWarningStatus(context, "VELTRO:a", 1));
    EXPECT_EQ(utGetWarningStatus(context, "VELTRO:a"), 1);
}

TEST_F(Warnings, EverySettingFiresTheStatusCallbacksOnce) {
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, [] { ++changes; }));
    const utSetWarningStatusCallback second = [] { changes += 100; };
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, second));
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, second)); // known: not twice
    utSetWarningStatus(context, "VELTRO:x", 0);
    EXPECT_EQ(changes, 101);
    utSetWarningStatus(context, "all", 1);
    EXPECT_EQ(changes, 202);
    utSetWarningStatus(context, "VELTRO:x", 9);
    EXPECT_EQ(changes, 202);
    utSetWarningMode(context, UT_WARNING_MODE_QUIET, true);
    EXPECT_EQ(changes, 303);
    utSetWarningMode(context, UT_WARNING_MODE_QUIET, true); // as it was
    utSetWarningMode(context, 7, true);
    EXPECT_EQ(changes, 303);
}

TEST_F(Warnings, ModesAreSeparateAndOthersAreAlwaysOff) {
    for (int on : {UT_WARNING_MODE_HINT, UT_WARNING_MODE_QUIET}) {
        utResetWarningManager(context);
        utSetWarningMode(context, on, true);
        for (int mode = 0; mode < 6; ++mode)
            EXPECT_EQ(utIsWarningModeOn(context, mode), mode == on);
        utSetWarningMode(context, on, false);
        EXPECT_FALSE(utIsWarningModeOn(context, on));
    }
}

TEST_F(Warnings, RecordsAreCopiesAndMayBeRecordedAgain) {
    EXPECT_EQ(last(), "|");
    std::string id = "VELTRO:x";
    utSetLastWarningMsg(context, id.c_str(), "text");
    id[0] = '?';
    EXPECT_EQ(last(), "VELTRO:x|text");
    const char *identifier;
    const char *message;
    utGetLastWarningMsg(context, &identifier, &message);
    utSetLastWarningMsg(context, message, identifier);
    EXPECT_EQ(last(), "text|VELTRO:x");
    utGetLastWarningMsg(context, nullptr, nullptr);
    utSetLastWarningMsg(context, nullptr, nullptr);
    EXPECT_EQ(last(), "|");
    EXPECT_STREQ(utGetLastPrintedWarningId(context), "");
    utSetLastPrintedWarningId(context, "VELTRO:p");
    EXPECT_STREQ(utGetLastPrintedWarningId(context), "VELTRO:p");
}

TEST_F(Warnings, WarningCallbackIsReplaceable) {
    utCallRegisteredWarningCallback(context);
    EXPECT_EQ(utRegisterWarningCallback(context, [] { ++warnings; }), nullptr);
    utCallRegisteredWarningCallback(context);
    EXPECT_EQ(warnings, 1);
    EXPECT_NE(utRegisterWarningCallback(context, nullptr), nullptr);
    utCallRegisteredWarningCallback(context);
    EXPECT_EQ(warnings, 1);
}

TEST_F(Warnings, LackOfMemoryChangesNothing) {
    utSetLastWarningMsg(context, "VELTRO:x", "old");
    utSetWarningStatus(context, "VELTRO:x", 0);
    for (int n = 0; n < 2; ++n) {
        static int countdown;
        countdown = n;
        utSetAllocationFault([] { return countdown-- == 0; });
        utSetLastWarningMsg(context, "VELTRO:y", "new");
        utSetAllocationFault(nullptr);
        EXPECT_EQ(last(), "VELTRO:x|old");
    }
    utSetAllocationFault([] { return true; });
    EXPECT_FALSE(utSetWarningStatus(context, "VELTRO:y", 2));
    utSetLastPrintedWarningId(context, "VELTRO:y");
    utSetAllocationFault(nullptr);
    EXPECT_EQ(utGetWarningStatus(context, "VELTRO:y"), 1);
    EXPECT_EQ(utGetWarningStatus(context, "VELTRO:x"), 0);
    EXPECT_STREQ(utGetLastPrintedWarningId(context), "");
}

TEST_F(Warnings, ManagerCanBeSwitchedOff) {
    EXPECT_TRUE(utSetWarningManagerEnabled(false));
    EXPECT_EQ(utGetWarningManagerContext(), nullptr);
    EXPECT_FALSE(utSetWarningManagerEnabled(true));
    EXPECT_EQ(utGetWarningManagerContext(), context);
}

} // namespace
