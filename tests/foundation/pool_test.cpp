// Pools against a shadow model.
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

void walk(std::size_t elem, std::size_t block) {
    const std::unique_ptr<fl::pool> pool(fl::create_managed_pool(elem, block));
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
    EXPECT_EQ(pool->recover(), !pass_through && !live.empty());
    EXPECT_FALSE(pool->recover()); // nothing is left to give back
}

TEST(Pool, ElementsNeverOverlapAndRecoverSparesLiveOnes) {
    const std::pair<std::size_t, std::size_t> shapes[] = {
        {104, 8192}, {1, 64}, {24, 1000}, {5000, 4096}, {4096, 65536}};
    for (const auto &[elem, block] : shapes) walk(elem, block);
}

} // namespace
