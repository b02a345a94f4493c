// The aligned heap: a random walk against a shadow model, the kept range, slack, refusal.
#include "fl.hpp"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <vector>
#if defined(__linux__)
#include <sys/resource.h>
#endif

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool pass_through = true; // every block is one malloc: nothing is kept
#else
constexpr bool pass_through = false;
#endif
#if defined(__linux__)
constexpr bool keeps = !pass_through;
#else
constexpr bool keeps = false; // no pages of the system's: malloc alone
#endif
constexpr std::size_t MiB = std::size_t{1} << 20;

fl::aligned_heap &heap() { return fl::aligned_heap::instance(); }

struct Shadow {
    unsigned char *block;
    std::size_t size;
    unsigned seed;

    // Calls f(byte, mark) on the first n bytes; large blocks at a stride that hits every page.
    template<class F> bool all(std::size_t n, F &&f) const {
        const auto at = [&](std::size_t k) {
            return f(block[k], static_cast<unsigned char>(seed * 31 + k * 7 + (k >> 8)));
        };
        for (std::size_t k = 0; k < n; k += size < 16384 ? 1 : 509)
            if (!at(k)) return false;
        return n < size || at(size - 1);
    }
    void fill() const {
        all(size, [](unsigned char &byte, unsigned char mark) { return byte = mark, true; });
    }
    // The first n bytes hold what fill() wrote for the whole block.
    bool holds(std::size_t n) const {
        return all(n, [](unsigned char byte, unsigned char mark) { return byte == mark; });
    }
};

bool all_zero(const unsigned char *bytes, std::size_t n) {
    return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, n - 1) == 0;
}

std::size_t random_size(std::mt19937 &rng) {
    static constexpr std::size_t bounds[] = {40, 1100, 70000, 3 * MiB};
    static constexpr int weights[] = {0, 0, 0, 1, 1, 1, 1, 2, 2, 3};
    const std::size_t top = bounds[weights[rng() % 10]];
    return 1 + rng() % top;
}

TEST(Heap, RandomWalkKeepsContentsAndReleasesOnlyWhatIsUnused) {
    std::mt19937 rng(20240611);
    std::vector<Shadow> live;
    const std::size_t before = fl::heap_live_blocks();
    for (unsigned step = 0; step < 10000; ++step) {
        const unsigned what = rng() % 8;
        if (live.empty() || (what < 4 && live.size() < 200)) {
            const std::size_t size = random_size(rng);
            auto *block = static_cast<unsigned char *>(what & 1 ? heap().allocate_zeroed(size, 1)
                                                                : heap().allocate(size));
            ASSERT_NE(block, nullptr);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0u);
            if (what & 1) {
                ASSERT_TRUE(all_zero(block, size)) << "size " << size << " step " << step;
            }
            live.push_back({block, size, step});
            live.back().fill();
            continue;
        }
        Shadow &s = live[rng() % live.size()];
        ASSERT_TRUE(s.holds(s.size)) << "size " << s.size << " step " << step;
        if (what < 6) {
            const std::size_t size = random_size(rng);
            auto *moved = static_cast<unsigned char *>(heap().reallocate(s.block, size));
            ASSERT_NE(moved, nullptr);
            s.block = moved;
            ASSERT_TRUE(s.holds(std::min(s.size, size)))
                << s.size << " to " << size << " step " << step;
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
    heap().free(nullptr);
    EXPECT_EQ(fl::heap_live_blocks(), before);
    EXPECT_EQ(heap().release_kept(), keeps);
}

TEST(Heap, FreedLargeBlocksAreKeptWithinTheLimitAndGivenBack) {
    if (!keeps) GTEST_SKIP() << "nothing is kept here";
    heap().release_kept();
    const std::size_t limit = heap().set_kept_limit(8 * MiB);
    void *a = heap().allocate(3 * MiB);
    void *b = heap().allocate(3 * MiB);
    void *c = heap().allocate(5 * MiB);
    void *too_large = heap().allocate(9 * MiB);
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
    EXPECT_EQ(heap().kept_bytes(), 0u);
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
        EXPECT_EQ(heap().allocate(too_much), nullptr);
        EXPECT_EQ(heap().allocate_zeroed(too_much, 1), nullptr);
        EXPECT_EQ(heap().reallocate(s.block, too_much), nullptr);
        fl::set_allocation_fault([] { return true; });
        EXPECT_EQ(heap().allocate(size), nullptr);
        EXPECT_EQ(heap().allocate_zeroed(1, size), nullptr);
        EXPECT_EQ(heap().reallocate(s.block, 4 * size), nullptr);
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

} // namespace
