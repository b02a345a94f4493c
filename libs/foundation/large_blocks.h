// Large blocks: mappings of 128 KiB and more that are kept when freed, because the first touch of
// fresh pages costs several times the work that is usually done on them.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>

namespace fl {

class LargeBlocks {
public:
    // Bytes of the smallest large block. From here on the C library maps and unmaps blocks too, or
    // trims its heap behind them, and pays for their first touch again and again.
    static constexpr std::size_t smallest = std::size_t{128} << 10;

    // What is known of one block, used or kept.
    struct Block {
        char *start;          // aligned to a huge page
        std::size_t capacity; // bytes mapped
        std::size_t dirty;    // leading bytes that may be other than zero
        Block *next_in_bucket;
        Block *newer, *older; // neighbours among the kept blocks of the same size class
        std::uint64_t stamp;  // when it was freed
    };

    constexpr LargeBlocks() = default;

    // The used block that starts at this address, or null. Nearly every pointer that is not one
    // fails the alignment test at once.
    Block *find(const void *start) const;
    // A block for `size` bytes, kept or new, or null. Up to its `dirty` it holds old contents.
    Block *allocate(std::size_t size);
    // The block, found before, with room for `size` bytes more than it has, perhaps at another
    // address; contents kept. False: nothing changed.
    bool grow(Block *block, std::size_t size);
    // Whether a kept block could serve such a request.
    bool keeps(std::size_t size) const { return kept_lists_[class_for(size)].newest != nullptr; }
    // Keeps the block for reuse, or unmaps it.
    void free(Block *block);

    // Unmaps all kept blocks. True if there was any.
    bool release() { return release_down_to(0); }
    std::size_t kept() const { return kept_; }
    std::size_t limit();
    void set_limit(std::size_t bytes);

private:
    static constexpr std::size_t bucket_count = 4096;
    static constexpr std::size_t steps = 8; // size classes per doubling: at most an eighth is slack
    static constexpr std::size_t first_doubling = std::bit_width(smallest) - 1;
    static constexpr std::size_t class_count = (41 - first_doubling) * steps + 1;
    static constexpr std::size_t unknown_limit = SIZE_MAX;

    struct Kept {
        Block *newest = nullptr;
        Block *oldest = nullptr;
    };

    static std::size_t class_for(std::size_t size);
    static std::size_t capacity_of(std::size_t cls);
    Block *&bucket(const void *start) const;
    Block *take_kept(std::size_t cls);
    Block *map_new(std::size_t size);
    void register_block(Block *block);
    void unregister(Block *block);
    void unlink_kept(std::size_t cls, Block *block);
    void destroy(Block *block);
    bool release_down_to(std::size_t bytes);

    mutable Block *buckets_[bucket_count] = {}; // used blocks by address
    Kept kept_lists_[class_count] = {};
    std::size_t kept_ = 0; // bytes of all kept blocks
    std::size_t limit_ = unknown_limit;
    std::uint64_t clock_ = 0;
};

} // namespace fl
