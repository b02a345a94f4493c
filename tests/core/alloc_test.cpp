// The three layers of allocation and the list of blocks.
#include <core/alloc.h>
#include <support/suite.h>

#include <fl.hpp>
#include <ut.h>

namespace {

using Alloc = HostTest;

constexpr kwSize all = ~kwSize{0};

TEST_F(Alloc, ZeroSizesGiveNullAndRaiseNothing) {
    for (void *b :
         {oxMallocEx(0), oxCallocEx(0, 8), oxCallocEx(8, 0), oxReallocEx(nullptr, 0),
          oxMallocExCheck(0), oxCallocExCheck(0, all), oxCallocExCheck(all, 0),
          oxReallocExCheck(nullptr, 0), oxMalloc(0), oxCalloc(0, 8), oxRealloc(nullptr, 0),
          oxReallocEx(oxMallocEx(8), 0), oxRealloc(oxMalloc(8), 0)})
        EXPECT_EQ(b, nullptr);
    for (auto *takes : {oxFreeEx, oxFree, oxAddToAllocList, oxRemoveFromAllocList}) takes(nullptr);
    EXPECT_TRUE(!oxIsOnAllocList(nullptr) && GetAllocListLength() == 0);
}

TEST_F(Alloc, WhatIsTooMuchIsRefusedAndTheOldBlockStays) {
    void *listed = oxCalloc(100, 10), *raw = oxMallocEx(8);
    const Contexts inner; // which the raise frees
    EXPECT_FALSE(oxCallocEx(kwSize{1} << 33, kwSize{1} << 33) || oxCallocEx(2, all / 2 + 1));
    EXPECT_RAISES_ENTRY(FNOMEM, oxMallocExCheck(kwSize{1} << 60));
    EXPECT_RAISES_ENTRY(FNOMEM, oxRealloc(listed, all));
    EXPECT_TRUE(oxIsOnAllocList(listed));
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

TEST_F(Alloc, ContextsFreeTheirOwnAndAShutdownForgets) {
    void *outer = oxMalloc(8);
    const int index = oxEnterNewAllocListContext();
    for (int k = 0; k < 250; ++k) oxMalloc(8); // the vector grows
    oxFreeAllocListContext();
    EXPECT_TRUE(GetAllocListLength() == 1 && oxIsOnAllocList(outer));
    oxRestorePreviousAllocListContext(index);
    oxShutdownAllocLst();
    EXPECT_EQ(GetAllocListLength(), 0u);
    EXPECT_TRUE(oxIsOnAllocList(oxMalloc(8))) << "a fresh list";
    oxFreeEx(outer);
}

TEST_F(Alloc, DataHandedToAnArrayLeaveTheListUnlessTheyArePrivate) {
    const auto set_cells = [](oxArray *a, double *block) {
        oxSetCells(a, reinterpret_cast<oxArray **>(block));
    };
    for (const auto &[array, hand] :
         {std::pair{"double 0x1", &oxSetPr}, {"double 0x1", &oxSetPi}, {"cell 0x1", +set_cells}})
        for (const bool is_private : {true, false}) {
            oxArray *a = arr(array);
            auto *block = static_cast<double *>(oxCalloc(1, sizeof(double)));
            oxSetDataPrivateFlag(a, is_private);
            hand(a, block);
            EXPECT_EQ(oxIsOnAllocList(block), is_private) << array;
            oxDestroyArray(a); // frees what it has taken over, once
        }
}

std::vector<std::pair<char, void *>> heard;
int refusals;

TEST_F(Alloc, Listeners) {
    heard.clear();
    refusals = 0;
    oxSetAllocListeners([](void *b) { heard.emplace_back('+', b); },
                        [](void *b) { heard.emplace_back('-', b); });
    oxSetOutOfMemoryListener([] { ++refusals; });
    void *a = oxMalloc(8), *b = oxCalloc(1, 8), *fresh = oxRealloc(nullptr, 8);
    void *moved = oxRealloc(b, 1 << 20); // from 8 bytes to 1 MiB it must move
    oxRealloc(fresh, 0);
    oxFree(a);
    oxFree(moved);
    const decltype(heard) expected = {{'+', a},     {'+', b},     {'+', fresh}, {'-', b},
                                      {'+', moved}, {'-', fresh}, {'-', a},     {'-', moved}};
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
    EXPECT_EQ(manager.asked, 2);
    fl::manager::set_instance(nullptr);
    reset_allocator_choice();
    EXPECT_FALSE(uses_utility_allocator());
}

} // namespace
