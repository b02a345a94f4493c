// Pools, the memory manager's mode, and the application object.
#include "fl.hpp"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool pass_through = true;
#else
constexpr bool pass_through = false;
#endif

struct PoolShape {
    std::size_t elem, block;
};

class PoolWalk : public testing::TestWithParam<PoolShape> {};

TEST_P(PoolWalk, ElementsNeverOverlapAndRecoverSparesLiveOnes) {
    const auto [elem, block] = GetParam();
    std::unique_ptr<fl::pool> pool(fl::create_managed_pool(elem, block));
    ASSERT_NE(pool, nullptr);
    std::mt19937 rng(7);
    std::vector<std::pair<unsigned char *, unsigned char>> live;
    for (unsigned step = 0; step < 30000; ++step) {
        // Grows for a while, then shrinks: whole chunks come free.
        const bool grow = rng() % 10 < (step / 3000 % 2 ? 2u : 8u);
        if (live.empty() || grow) {
            auto *element = static_cast<unsigned char *>(pool->allocate());
            ASSERT_NE(element, nullptr);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(element) % 8, 0u);
            live.emplace_back(element, static_cast<unsigned char>(step));
            std::memset(element, live.back().second, elem);
        } else {
            const std::size_t k = rng() % live.size();
            for (std::size_t j = 0; j < elem; ++j) ASSERT_EQ(live[k].first[j], live[k].second);
            pool->free(live[k].first);
            live[k] = live.back();
            live.pop_back();
        }
        if (step % 1000 == 0) pool->recover();
        ASSERT_EQ(pool->live(), live.size());
    }
    for (auto [element, value] : live) {
        EXPECT_EQ(element[elem - 1], value);
        pool->free(element);
    }
    pool->free(nullptr);
    EXPECT_EQ(pool->live(), 0u);
    EXPECT_EQ(pool->recover(), !pass_through && !live.empty());
    EXPECT_FALSE(pool->recover()); // nothing is left to give back
    pool->free(pool->allocate());  // an emptied pool serves again
    EXPECT_EQ(pool->live(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Shapes, PoolWalk,
                         testing::Values(PoolShape{104, 8192}, PoolShape{1, 64},
                                         PoolShape{24, 1000}, PoolShape{5000, 4096},
                                         PoolShape{4096, 65536}));

TEST(Pool, HeadersOfOneChunkLieInOneAlignedBlock) {
    if (pass_through) GTEST_SKIP() << "one malloc per element under a sanitizer";
    std::unique_ptr<fl::pool> pool(fl::create_managed_pool(104, 8192));
    const auto chunk = [](void *p) { return reinterpret_cast<std::uintptr_t>(p) / 8192; };
    void *first = pool->allocate();
    for (int k = 1; k < 78; ++k) EXPECT_EQ(chunk(pool->allocate()), chunk(first));
    EXPECT_NE(chunk(pool->allocate()), chunk(first));
}

TEST(Pool, FaultSeamReachesPools) {
    std::unique_ptr<fl::pool> pool(fl::create_managed_pool(16, 8192));
    fl::set_allocation_fault([] { return true; });
    EXPECT_EQ(pool->allocate(), nullptr);
    EXPECT_EQ(fl::create_managed_pool(16, 8192), nullptr);
    fl::set_allocation_fault(nullptr);
    EXPECT_EQ(pool->live(), 0u);
    void *element = pool->allocate();
    EXPECT_NE(element, nullptr);
    pool->free(element);
}

struct RaisingManager final : fl::manager {
    int mode() override { throw 5; }
};

TEST(Manager, ModeCanBeSetAndTheManagerReplaced) {
    fl::manager &built_in = fl::manager::instance();
    const int mode = built_in.mode();
    EXPECT_NE(mode, fl::manager::utility_allocator);
    built_in.set_mode(fl::manager::utility_allocator);
    EXPECT_EQ(fl::manager::instance().mode(), fl::manager::utility_allocator);
    built_in.set_mode(mode);
    RaisingManager raising;
    EXPECT_EQ(fl::manager::set_instance(&raising), nullptr);
    EXPECT_THROW(fl::manager::instance().mode(), int);
    EXPECT_EQ(fl::manager::set_instance(nullptr), &raising);
    EXPECT_EQ(&fl::manager::instance(), &built_in);
}

TEST(Init, CountsApplicationObjects) {
    const int before = fl::init::count();
    {
        fl::init application;
        EXPECT_EQ(fl::init::count(), before + 1);
    }
    EXPECT_EQ(fl::init::count(), before);
}

} // namespace
