// The warning manager: statuses, modes, callbacks, records, and lack of memory.
#include "ut.h"

#include <gtest/gtest.h>
#include <string>

namespace {

int changes, warnings;

class Warnings : public testing::Test {
protected:
    Warnings() {
        utResetWarningManager(context);
        changes = warnings = 0;
    }
    ~Warnings() override { utResetWarningManager(context); }
    std::string last() const {
        const char *identifier, *message;
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
    EXPECT_TRUE(utSetWarningStatus(context, "all", 2)); // forgets the single ones
    for (const auto &row : rows) EXPECT_EQ(utGetWarningStatus(context, row.id), 2);
}

TEST_F(Warnings, EverySettingFiresTheStatusCallbacksAndModesAreSeparate) {
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, [] { ++changes; }));
    const utSetWarningStatusCallback second = [] { changes += 100; };
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, second));
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, second)); // known: not twice
    utSetWarningStatus(context, "VELTRO:x", 0);
    utSetWarningStatus(context, "all", 1);
    utSetWarningStatus(context, "VELTRO:x", 9); // refused
    EXPECT_EQ(changes, 202);
    for (int on : {2, 3, 7}) {
        utResetWarningManager(context); // the callbacks stay
        changes = 0;
        utSetWarningMode(context, on, true);
        utSetWarningMode(context, on, true); // as it was
        EXPECT_EQ(changes, on == 7 ? 0 : 101);
        for (int mode = 0; mode < 9; ++mode)
            EXPECT_EQ(utIsWarningModeOn(context, mode), mode == on && on != 7);
    }
    EXPECT_EQ(utRegisterWarningCallback(context, [] { ++warnings; }), nullptr);
    utCallRegisteredWarningCallback(context);
    EXPECT_NE(utRegisterWarningCallback(context, nullptr), nullptr);
    utCallRegisteredWarningCallback(context);
    EXPECT_EQ(warnings, 1);
}

TEST_F(Warnings, RecordsAreCopiesAndMayBeRecordedAgain) {
    std::string id = "VELTRO:x";
    utSetLastWarningMsg(context, id.c_str(), "text");
    id[0] = '?';
    const char *identifier, *message;
    utGetLastWarningMsg(context, &identifier, &message);
    utSetLastWarningMsg(context, message, identifier);
    EXPECT_EQ(last(), "text|VELTRO:x");
    utSetLastWarningMsg(context, nullptr, nullptr);
    EXPECT_EQ(last(), "|");
}

TEST_F(Warnings, LackOfMemoryChangesNothing) {
    utSetLastWarningMsg(context, "VELTRO:x", "old");
    static int countdown;
    for (int n : {0, 1}) {
        countdown = n;
        utSetAllocationFault([] { return countdown-- == 0; });
        utSetLastWarningMsg(context, "VELTRO:y", "new");
        EXPECT_EQ(last(), "VELTRO:x|old");
        countdown = 0;
        EXPECT_FALSE(utSetWarningStatus(context, "VELTRO:y", 2));
        EXPECT_EQ(utGetWarningStatus(context, "VELTRO:y"), 1);
    }
    utSetAllocationFault(nullptr);
}

} // namespace
