// Large blocks: size classes, the table of used blocks, and the store of kept ones.
#include "foundation/large_blocks.h"
#include "foundation/pages.h"

#include <cstdlib>

namespace fl {

// Class c holds capacities of smallest * 2^(c / 8) * (1 + (c % 8) / 8).
std::size_t LargeBlocks::capacity_of(std::size_t cls) {
    return (smallest / steps * (steps + cls % steps)) << cls / steps;
}

std::size_t LargeBlocks::class_for(std::size_t size) {
    if (size <= smallest) return 0;
    const auto doubling =
        static_cast<std::size_t>(std::bit_width(size - 1)) - 1; // 2^doubling < size
    const std::size_t step = (std::size_t{1} << doubling) / steps;
    return (doubling - first_doubling) * steps +
           (size - (std::size_t{1} << doubling) + step - 1) / step;
}

LargeBlocks::Block *&LargeBlocks::bucket(const void *start) const {
    return buckets_[reinterpret_cast<std::uintptr_t>(start) / pages::huge % bucket_count];
}

LargeBlocks::Block *LargeBlocks::find(const void *start) const {
    if (reinterpret_cast<std::uintptr_t>(start) % pages::huge != 0) return nullptr;
    Block *block = bucket(start);
    while (block && block->start != start) block = block->next_in_bucket;
    return block;
}

void LargeBlocks::register_block(Block *block) {
    Block *&first = bucket(block->start);
    block->next_in_bucket = first;
    first = block;
}

void LargeBlocks::unregister(Block *block) {
    Block **link = &bucket(block->start);
    while (*link != block) link = &(*link)->next_in_bucket;
    *link = block->next_in_bucket;
}

void LargeBlocks::unlink_kept(std::size_t cls, Block *block) {
    Kept &list = kept_lists_[cls];
    (block->newer ? block->newer->older : list.newest) = block->older;
    (block->older ? block->older->newer : list.oldest) = block->newer;
    kept_ -= block->capacity;
}

// A kept block of the class, or of one up to half again as large.
LargeBlocks::Block *LargeBlocks::take_kept(std::size_t cls) {
    const std::size_t last = cls + steps / 2 < class_count ? cls + steps / 2 : class_count - 1;
    for (std::size_t c = cls; c <= last; ++c) {
        Block *block = kept_lists_[c].newest;
        if (!block) continue;
        unlink_kept(c, block);
        return block;
    }
    return nullptr;
}

LargeBlocks::Block *LargeBlocks::map_new(std::size_t size) {
    auto *block = static_cast<Block *>(std::malloc(sizeof(Block)));
    if (!block) return nullptr;
    const std::size_t capacity = capacity_of(class_for(size));
    char *start = pages::map(capacity);
    if (!start) {
        std::free(block);
        return nullptr;
    }
    *block = {start, capacity, 0, nullptr, nullptr, nullptr, 0};
    return block;
}

LargeBlocks::Block *LargeBlocks::allocate(std::size_t size) {
    Block *block = take_kept(class_for(size));
    if (!block) block = map_new(size);
    if (block) register_block(block);
    return block;
}

bool LargeBlocks::grow(Block *block, std::size_t size) {
    const std::size_t wider = capacity_of(class_for(size));
    char *moved = pages::remap(block->start, block->capacity, wider);
    if (!moved) return false;
    unregister(block);
    block->start = moved;
    block->capacity = wider;
    register_block(block);
    return true;
}

void LargeBlocks::free(Block *block) {
    unregister(block);
    if (block->capacity > limit()) {
        destroy(block);
        return;
    }
    Kept &list = kept_lists_[class_for(block->capacity)];
    block->newer = nullptr;
    block->older = list.newest;
    (list.newest ? list.newest->newer : list.oldest) = block;
    list.newest = block;
    block->stamp = ++clock_;
    kept_ += block->capacity;
    release_down_to(limit());
}

void LargeBlocks::destroy(Block *block) {
    pages::unmap(block->start, block->capacity);
    std::free(block);
}

// Unmaps the blocks freed longest ago until at most `bytes` are kept.
bool LargeBlocks::release_down_to(std::size_t bytes) {
    bool any = false;
    while (kept_ > bytes) {
        std::size_t from = 0;
        Block *oldest = nullptr;
        for (std::size_t c = 0; c < class_count; ++c) {
            Block *candidate = kept_lists_[c].oldest;
            if (!candidate || (oldest && oldest->stamp < candidate->stamp)) continue;
            oldest = candidate;
            from = c;
        }
        unlink_kept(from, oldest);
        destroy(oldest);
        any = true;
    }
    return any;
}

std::size_t LargeBlocks::limit() {
    if (limit_ == unknown_limit) limit_ = pages::physical_memory() / 16;
    return limit_;
}

void LargeBlocks::set_limit(std::size_t bytes) {
    limit_ = bytes == unknown_limit ? unknown_limit - 1 : bytes;
    release_down_to(limit_);
}

} // namespace fl
