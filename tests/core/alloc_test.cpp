// The three layers of allocation and the list of blocks.
#include <core/alloc.h>
#include <support/suite.h>

#include <algorithm>
#include <cstring>
#include <fl.hpp>
#include <ut.h>

namespace {

class Alloc : public HostTest {};

constexpr kwSize all = ~kwSize{0};

TEST_F(Alloc, ZeroSizesGiveNullAndRaiseNothing) {
    for (void *b :
         {oxMallocEx(0), oxCallocEx(0, 8), oxCallocEx(8, 0), oxReallocEx(nullptr, 0),
          oxMallocExCheck(0), oxCallocExCheck(0, all), oxCallocExCheck(all, 0),
          oxReallocExCheck(nullptr, 0), oxMalloc(0), oxCalloc(0, 8), oxRealloc(nullptr, 0),
          oxReallocEx(oxMallocEx(8), 0), oxRealloc(oxMalloc(8), 0)})
        EXPECT_EQ(b, nullptr);
    for (auto *takes : {oxFreeEx, oxFree, oxAddToAllocList, oxRemoveFromAllocList}) takes(nullptr);
    EXPECT_FALSE(oxIsOnAllocList(nullptr));
    EXPECT_EQ(GetAllocListLength(), 0u);
}

TEST_F(Alloc, OverflowingProductsAreRefused) {
    EXPECT_FALSE(oxCallocEx(kwSize{1} << 33, kwSize{1} << 33) || oxCallocEx(2, all / 2 + 1) ||
                 oxMallocEx(all));
    EXPECT_RAISES_ENTRY(FNOMEM, oxCalloc(kwSize{1} << 33, kwSize{1} << 33));
    EXPECT_RAISES_ENTRY(FNOMEM, oxMallocExCheck(kwSize{1} << 60));
}

TEST_F(Alloc, BlocksAreZeroedAndKeptByGrowth) {
    auto *p = static_cast<unsigned char *>(oxCalloc(100, 10));
    EXPECT_TRUE(std::all_of(p, p + 1000, [](unsigned char c) { return c == 0; }));
    std::memset(p, 7, 1000);
    p = static_cast<unsigned char *>(oxRealloc(p, 100000));
    EXPECT_TRUE(std::all_of(p, p + 1000, [](unsigned char c) { return c == 7; }));
    EXPECT_TRUE(GetAllocListLength() == 1 && oxIsOnAllocList(p));
    // Without memory the old block stays, and stays listed: the raise frees it with its context.
    Contexts inner;
    EXPECT_RAISES_ENTRY(FNOMEM, oxRealloc(p, all));
    EXPECT_TRUE(oxIsOnAllocList(p));
    void *raw = oxMallocEx(8);
    EXPECT_EQ(oxReallocEx(raw, all), nullptr);
    oxFreeEx(raw);
}

// Deliberate: a block of an enclosing context is freed, its entry stays behind.
TEST_F(Alloc, OnlyTheCurrentContextLosesEntries) {
    void *a = oxMalloc(8), *b = oxMalloc(8), *c = oxMalloc(8);
    oxFree(a);
    {
        Contexts inner;
        oxRemoveFromAllocList(b);
        oxFree(c);
        EXPECT_TRUE(oxIsOnAllocList(b) && oxIsOnAllocList(c)) << "every context is searched";
        EXPECT_EQ(GetAllocListLength(), 2u);
    }
    oxRemoveFromAllocList(c); // or the end of the context would free it again
    EXPECT_EQ(GetAllocListLength(), 1u);
}

TEST_F(Alloc, ContextsFreeTheirOwn) {
    std::vector<void *> outer;
    for (int k = 0; k < 30; ++k) outer.push_back(oxMalloc(8));
    const int index = oxEnterNewAllocListContext();
    for (int k = 0; k < 250; ++k) oxMalloc(8); // the vector grows twice
    EXPECT_EQ(GetAllocListLength(), 280u);
    oxFreeAllocListContext();
    EXPECT_EQ(GetAllocListLength(), 30u);
    for (void *b : outer) EXPECT_TRUE(oxIsOnAllocList(b));
    oxRestorePreviousAllocListContext(index);
    void *a = oxMalloc(8);
    oxShutdownAllocLst(); // forgets the blocks
    for (void *b : outer) oxFreeEx(b);
    EXPECT_EQ(GetAllocListLength(), 0u);
    EXPECT_TRUE(oxIsOnAllocList(oxMalloc(8))) << "a fresh list";
    EXPECT_FALSE(oxIsOnAllocList(a));
    oxFreeEx(a);
}

TEST_F(Alloc, DataHandedToAnArrayLeaveTheList) {
    oxArray *a = arr("double 0x2"), *owner = arr("double 0x0");
    oxSetPr(a, static_cast<double *>(oxCalloc(2, sizeof(double))));
    oxSetPi(a, static_cast<double *>(oxCalloc(2, sizeof(double))));
    oxSetM(a, 1);
    EXPECT_EQ(GetAllocListLength(), 0u);
    EXPECT_EQ(text(a), "double 1x2: 0+0i 0+0i");
    oxDestroyArray(a); // frees both, once
    oxSetDataPrivateFlag(owner, true);
    void *mine = oxMalloc(8);
    oxSetData(owner, mine);
    EXPECT_TRUE(oxIsOnAllocList(mine)) << "private data are not taken over";
}

using Heard = std::vector<std::pair<char, void *>>;
Heard heard;
void hear_alloc(void *b) { heard.emplace_back('+', b); }
void hear_free(void *b) { heard.emplace_back('-', b); }
int refusals = 0;

TEST_F(Alloc, Listeners) {
    heard.clear();
    oxSetAllocListeners(hear_alloc, hear_free);
    oxSetOutOfMemoryListener([] { ++refusals; });
    refusals = 0;
    void *a = oxMalloc(8), *b = oxCalloc(1, 8), *fresh = oxRealloc(nullptr, 8);
    void *moved = oxRealloc(b, 1 << 20); // from 8 bytes to 1 MiB it must move
    void *last = oxRealloc(moved, (1 << 20) - 1);
    oxRealloc(fresh, 0);
    oxFree(a);
    oxFree(last);
    Heard expected = {{'+', a}, {'+', b}, {'+', fresh}, {'-', b}, {'+', moved}};
    if (last != moved) expected.insert(expected.end(), {{'-', moved}, {'+', last}}); // sanitizers
    expected.insert(expected.end(), {{'-', fresh}, {'-', a}, {'-', last}});
    EXPECT_EQ(heard, expected);
    EXPECT_FALSE(oxMalloc(all) || oxCallocExCheck(all, 2) || oxMallocEx(all));
    EXPECT_EQ(refusals, 2) << "the raw layer is silent";
}

struct Manager final : fl::manager {
    int mode() override { return ++asked == 1 ? throw 5 : utility_allocator; }
    int asked = 0;
};

// One answer serves the whole process; a manager that raises is asked again.
TEST_F(Alloc, TheManagerChoosesTheAllocatorOnce) {
    Contexts none;
    none.leave();
    oxShutdownAllocLst(); // nothing may be alive across the change
    oxShutdownArrayList();
    Manager manager;
    fl::manager::set_instance(&manager);
    reset_allocator_choice();
    EXPECT_THROW(oxMallocEx(8), int);
    void *a = oxMallocEx(8), *b = oxReallocEx(oxCallocEx(2, 8), 100);
    EXPECT_TRUE(uses_utility_allocator() && utLiveBlocks() == 2);
    oxFreeEx(a);
    EXPECT_TRUE(!oxCallocEx(all, 2) && !oxReallocEx(b, 0) && utLiveBlocks() == 0);
    oxFreeEx(oxMallocEx(0)); // passed on as it is
    EXPECT_EQ(manager.asked, 2);
    fl::manager::set_instance(nullptr);
    reset_allocator_choice();
    EXPECT_FALSE(uses_utility_allocator());
}

} // namespace
