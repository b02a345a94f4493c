// Fixtures: installing managers, entering and leaving contexts, counting what is alive.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/check_header.h>
#include <core/startup.h>
#include <errors/raise.h>
#include <errors/warn.h>
#include <support/host.h>

#include <fl.hpp>
#include <ut.h>

#include <utility>

namespace ox::test {

Live live() { return {fl::heap_live_blocks(), utLiveBlocks(), live_headers()}; }

void Contexts::leave() {
    if (std::exchange(left_, true)) return;
    oxExitArrayListContext(arrays_, nullptr, 0, true);
    oxFreeAllocListContext();
    oxRestorePreviousAllocListContext(blocks_);
}

void install_managers() {
    oxInitAllocListManager();
    oxInitArrayListManager();
}

void reset_library() {
    reset_array_hooks();
    reset_alloc_hooks();
    oxShutdownArrayList();
    oxShutdownAllocLst();
    oxErrorCleanup();
    oxSetErrorOn();
    oxSetErrmsgPrefixFcn(nullptr);
    set_message_translation(nullptr);
    oxSetWarningMessageHandler(nullptr);
    set_after_warning_hook(nullptr);
    utSetWarningManagerEnabled(true);
    utWarnCtx *context = utGetWarningManagerContext();
    utSetWarningStatus(context, "all", UT_WARNING_SHOWN);
    utSetWarningMode(context, UT_WARNING_MODE_HINT, false);
    utSetWarningMode(context, UT_WARNING_MODE_QUIET, false);
}

void BareTest::SetUp() {
    reset_library();
    before_ = live();
}

void BareTest::TearDown() {
    EXPECT_EQ(array_list_length(), 0u) << "arrays are listed";
    EXPECT_EQ(GetAllocListLength(), 0u) << "blocks are listed";
    reset_library();
    EXPECT_EQ(live(), before_) << "more or less alive than before the test";
}

void HostTest::SetUp() {
    BareTest::SetUp();
    install_managers();
    contexts_.emplace();
}

void HostTest::TearDown() {
    oxApplyToAllArraysOnArrayList([](oxArray *a) {
        EXPECT_STREQ(rule_text(check_header(a, CheckDepth::header)), "well formed");
    });
    contexts_.reset();
    BareTest::TearDown();
}

} // namespace ox::test
