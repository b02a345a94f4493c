// The aligned heap: a random walk against a shadow model, the kept range, slack, refusal; pools.
#include "fl.hpp"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>
#if defined(__linux__)
#include <sys/resource.h>
#endif

namespace {

// Under a sanitizer every block is one malloc, and elsewhere there are no pages of the system's.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool pass_through = true, keeps = false;
#elif defined(__linux__)
constexpr bool pass_through = false, keeps = true;
#else
constexpr bool pass_through = false, keeps = false;
#endif
constexpr std::size_t MiB = std::size_t{1} << 20;

fl::aligned_heap &heap() { return fl::aligned_heap::instance(); }

bool all_are(const unsigned char *bytes, std::size_t n, unsigned char mark) {
    return bytes[0] == mark && std::memcmp(bytes, bytes + 1, n - 1) == 0;
}

struct Shadow {
    unsigned char *block;
    std::size_t size;
    unsigned char mark;

    void fill() const { std::memset(block, mark, size); }
    bool holds(std::size_t n) const { return all_are(block, n, mark); }
};

std::size_t random_size(std::mt19937 &rng) {
    constexpr std::size_t tops[] = {40, 40, 40, 1100, 1100, 1100, 1100, 70000, 70000, 3 * MiB};
    return 1 + rng() % tops[rng() % 10];
}

TEST(Heap, RandomWalkKeepsContentsAndReleasesOnlyWhatIsUnused) {
    std::mt19937 rng(20240611);
    std::vector<Shadow> live;
    const std::size_t before = fl::heap_live_blocks();
    for (unsigned step = 0; step < 10000; ++step) {
        SCOPED_TRACE(step);
        const unsigned what = rng() % 8;
        if (live.empty() || (what < 4 && live.size() < 200)) {
            const std::size_t size = random_size(rng);
            auto *block = static_cast<unsigned char *>(what & 1 ? heap().allocate_zeroed(size, 1)
                                                                : heap().allocate(size));
            ASSERT_NE(block, nullptr);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0u);
            ASSERT_TRUE(!(what & 1) || all_are(block, size, 0));
            live.push_back({block, size, static_cast<unsigned char>(step)});
            live.back().fill();
            continue;
        }
        Shadow &s = live[rng() % live.size()];
        ASSERT_TRUE(s.holds(s.size));
        if (what < 6) {
            const std::size_t size = random_size(rng);
            s.block = static_cast<unsigned char *>(heap().reallocate(s.block, size));
            ASSERT_NE(s.block, nullptr);
            ASSERT_TRUE(s.holds(std::min(s.size, size)));
            s.size = size;
            s.fill();
        } else {
            heap().free(s.block);
            s = live.back();
            live.pop_back();
        }
        if (step % 2500 == 0) heap().release_kept();
    }
    EXPECT_EQ(fl::heap_live_blocks(), before + live.size());
    for (const Shadow &s : live) {
        EXPECT_TRUE(s.holds(s.size));
        heap().free(s.block);
    }
    EXPECT_EQ(fl::heap_live_blocks(), before);
    EXPECT_EQ(heap().release_kept(), keeps);
}

TEST(Heap, FreedLargeBlocksAreKeptWithinTheLimitAndGivenBack) {
    if (!keeps) GTEST_SKIP() << "nothing is kept here";
    heap().release_kept();
    const std::size_t limit = heap().set_kept_limit(8 * MiB);
    void *a = heap().allocate(3 * MiB), *b = heap().allocate(3 * MiB);
    void *c = heap().allocate(5 * MiB), *too_large = heap().allocate(9 * MiB);
    heap().free(a);
    heap().free(b);
    heap().free(too_large); // above the limit by itself: goes at once
    EXPECT_EQ(heap().kept_bytes(), 6 * MiB);
    void *again = heap().allocate(5 * MiB / 2); // a fifth larger will do
    EXPECT_EQ(again, b);                        // the one freed last, whose pages are warm
    heap().free(again);
    heap().free(c); // the oldest, a, makes room
    EXPECT_EQ(heap().kept_bytes(), 8 * MiB);
    heap().set_kept_limit(4 * MiB);
    EXPECT_EQ(heap().kept_bytes(), 0u); // first b, then c: neither leaves the rest within 4 MiB
    heap().free(heap().allocate(3 * MiB));
    EXPECT_TRUE(heap().release_kept());
    EXPECT_EQ(heap().set_kept_limit(limit), 4 * MiB);
}

TEST(Heap, GrowingByOneElementMovesRarelyAndShrinkingGivesBack) {
    if (pass_through) GTEST_SKIP() << "malloc decides under a sanitizer";
    const std::size_t n = 1000000;
    std::uint64_t *block = nullptr;
    int moves = 0;
    for (std::size_t k = 1; k <= n; ++k) {
        void *grown = heap().reallocate(block, k * 8);
        moves += grown != block;
        block = static_cast<std::uint64_t *>(grown);
        block[k - 1] = k;
    }
    EXPECT_LT(moves, 45); // 8 bytes to 8 MB by half: 35 steps, and some at the bounds of the ranges
    for (std::size_t k = 0; k < n; ++k) ASSERT_EQ(block[k], k + 1);
    auto *shrunk = static_cast<std::uint64_t *>(heap().reallocate(block, 100));
    EXPECT_NE(shrunk, block);
    EXPECT_EQ(shrunk[11], 12u);
    heap().free(shrunk);
}

TEST(Heap, RefusalLeavesTheBlockAsItWas) {
    constexpr std::size_t too_much = (std::size_t{1} << 40) + 1;
    for (std::size_t size : {std::size_t{8}, std::size_t{5000}, 3 * MiB}) {
        const Shadow s{static_cast<unsigned char *>(heap().allocate(size)), size, 5};
        s.fill();
        for (const std::size_t refused : {too_much, 4 * size}) {
            EXPECT_FALSE(heap().allocate(refused) || heap().allocate_zeroed(1, refused) ||
                         heap().reallocate(s.block, refused));
            fl::set_allocation_fault([] { return true; });
        }
        fl::set_allocation_fault(nullptr);
        EXPECT_TRUE(s.holds(size));
        heap().free(s.block);
    }
}

#if defined(__linux__)
TEST(Heap, KeptMemoryIsGivenBackBeforeARequestIsRefused) {
    if (pass_through) GTEST_SKIP() << "nothing is kept under a sanitizer";
    const auto request_under_limit = [] {
        heap().release_kept();
        heap().set_kept_limit(1000 * MiB);
        void *blocks[20];
        for (void *&block : blocks) block = heap().allocate(40 * MiB);
        for (void *block : blocks) heap().free(block);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlimit limit{pages * 4096 + 100 * MiB, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &limit);
        const bool served = heap().allocate(600 * MiB);
        std::_Exit(served && !heap().allocate(600 * MiB) ? 0 : 1);
    };
    EXPECT_EXIT(request_under_limit(), testing::ExitedWithCode(0), "");
}
#endif

// --- Pools ---

void walk_pool(std::size_t elem, std::size_t block) {
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
    for (const auto &[elem, block] : shapes) walk_pool(elem, block);
}

} // namespace
