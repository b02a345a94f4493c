// The warning manager: statuses, modes, callbacks, records, and lack of memory.
#include "ut.h"

#include <gtest/gtest.h>
#include <string>

namespace {

int changes;

class Warnings : public testing::Test {
protected:
    Warnings() {
        utResetWarningManager(context);
        changes = 0;
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
    for (const char *id : {"VELTRO:m", "VELTRO:a", "VELTRO:z", "VELTRO:b", ""})
        EXPECT_TRUE(utSetWarningStatus(context, id, 0));
    EXPECT_TRUE(utSetWarningStatus(context, "VELTRO:m", 2));
    EXPECT_FALSE(utSetWarningStatus(context, "VELTRO:a", 3));
    const std::pair<const char *, int> rows[] = {{"VELTRO:a", 0}, {"VELTRO:b", 0}, {"VELTRO:m", 2},
                                                 {"VELTRO:z", 0}, {"", 0},         {nullptr, 0},
                                                 {"VELTRO:c", 1}, {"VELTRO:A", 1}};
    for (const auto &[id, status] : rows)
        EXPECT_EQ(utGetWarningStatus(context, id), status) << (id ? id : "null");
    EXPECT_TRUE(utSetWarningStatus(context, "all", 2)); // forgets the single ones
    EXPECT_EQ(utGetWarningStatus(context, "VELTRO:a"), 2);
}

TEST_F(Warnings, EverySettingFiresTheStatusCallbacksAndModesAreSeparate) {
    EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, [] { ++changes; }));
    const utSetWarningStatusCallback second = [] { changes += 100; };
    for (int times = 0; times < 2; ++times) // known the second time
        EXPECT_TRUE(utRegisterSetWarningStatusCallback(context, second));
    utSetWarningStatus(context, "VELTRO:x", 0);
    utSetWarningStatus(context, "all", 1);
    utSetWarningStatus(context, "VELTRO:x", 9); // refused
    EXPECT_EQ(changes, 202);
    for (int on : {2, 3, 7}) {
        utResetWarningManager(context); // the callbacks stay
        changes = 0;
        for (int times = 0; times < 2; ++times) utSetWarningMode(context, on, true);
        EXPECT_EQ(changes, on == 7 ? 0 : 101);
        for (int mode = 0; mode < 9; ++mode)
            EXPECT_EQ(utIsWarningModeOn(context, mode), mode == on && on != 7);
    }
}

TEST_F(Warnings, RecordsMayBeRecordedAgain) {
    utSetLastWarningMsg(context, "VELTRO:x", "text");
    const char *identifier, *message;
    utGetLastWarningMsg(context, &identifier, &message);
    utSetLastWarningMsg(context, message, identifier);
    EXPECT_EQ(last(), "text|VELTRO:x");
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
