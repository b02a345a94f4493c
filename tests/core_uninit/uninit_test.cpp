// The library at load, before the host has installed its managers.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/startup.h>
#include <support/suite.h>

#include <fl.hpp>

namespace {

// Whatever ran first in this process must not have needed a manager.
const bool created_at_start = [] {
    oxArray *a = oxCreateDoubleScalar(7);
    const bool sound = a && oxGetScalar(a) == 7 && oxGetArrayScopeField(a) == 0;
    oxDestroyArray(a);
    return sound;
}();

using Uninit = BareTest;

TEST_F(Uninit, ArraysAreUnlisted) {
    EXPECT_TRUE(created_at_start && !oxIsArrayListInitialized());
    oxArray *a = arr("1 2");
    oxSetArrayScope(a, oxSCOPE_TEMPORARY); // stored, but nothing would take it off the list again
    EXPECT_TRUE(oxIsTemp(a) && array_list_length() == 0);
    EXPECT_TRUE(oxPreparePropertyValueForContainment(a) == a && a->scope == oxSCOPE_PROPERTY);
    oxDestroyArray(a);
}

// Out of memory is null; too large, which is the caller's fault, raises as ever.
TEST_F(Uninit, FailedCreationGivesNull) {
    constexpr kwSize two24 = kwSize{1} << 24;
    EXPECT_FALSE(oxCreateDoubleMatrix(two24, two24, oxREAL) ||
                 oxCreateNumericMatrix(2, 2, oxUNKNOWN_CLASS, oxREAL) ||
                 oxCreateUninitDoubleMatrix(two24, two24 / 16, oxREAL));
    EXPECT_RAISES_ENTRY(FPMAXSIZE, oxCreateUninitDoubleMatrix(two24, two24, oxREAL));
}

TEST_F(Uninit, BlocksAreUnlistedAndRefusedInSilence) {
    void *a = oxMalloc(8);
    EXPECT_FALSE(oxIsOnAllocList(a));
    oxFreeAllocListContext();
    oxFree(a);
    EXPECT_FALSE(oxMalloc(~kwSize{0}) || oxCallocExCheck(2, ~kwSize{0}));
    EXPECT_RAISES("A:b", "early", oxErrMsgIdAndTxt("A:b", "early")); // without a list, too
}

// Deliberate: with listeners but no reaction to failure, a block that could not be moved is
// reported as freed although it lives on.
TEST_F(Uninit, FailedReallocIsReportedToTheListener) {
    static void *freed;
    void *a = oxMalloc(8);
    oxSetAllocListeners(nullptr, [](void *b) { freed = b; });
    EXPECT_EQ(oxRealloc(a, ~kwSize{0}), nullptr);
    EXPECT_EQ(freed, a);
    oxFreeEx(a);
}

TEST_F(Uninit, ContextsMayBeEnteredOnEmptyLists) {
    const int arrays = oxEnterNewArrayListContext(), blocks = oxEnterNewAllocListContext();
    install_managers();
    oxCreateDoubleScalar(1);
    oxMalloc(8);
    EXPECT_TRUE(array_list_length() == 1 && GetAllocListLength() == 1);
    oxExitArrayListContext(arrays, nullptr, 0, true);
    oxFreeAllocListContext();
    oxRestorePreviousAllocListContext(blocks);
}

TEST_F(Uninit, ProcessWideObjectsAreMadeOnce) {
    oxArray *before = arr("5");
    EXPECT_TRUE(detail::matrix::init_pool(0) && detail::matrix::init_application_init(1));
    EXPECT_TRUE(constructed_static_objects() == 2 && fl::init::count() == 1);
    EXPECT_EQ(live_headers(), 1u) << "the same pool";
    oxDestroyArray(before);
}

} // namespace
