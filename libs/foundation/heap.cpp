// The aligned heap: sends each request to the range of its size, and each block back to where it
// came from.
#include "foundation/heap.h"
#include "foundation/fault.h"
#include "foundation/large_blocks.h"
#include "foundation/small_blocks.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>

namespace fl {
namespace {

constexpr std::size_t largest_request = std::size_t{1} << 40;

constinit SmallBlocks small;
constinit LargeBlocks large;
constinit std::size_t live_blocks = 0;

bool is_small(std::size_t size) { return !pass_through && size <= SmallBlocks::largest; }
bool is_large(std::size_t size) { return !pass_through && size >= LargeBlocks::smallest; }

void *counted(void *block) {
    if (block) ++live_blocks;
    return block;
}

bool give_back_kept() {
    if (pass_through) return false;
    const bool from_large = large.release();
    return small.release() || from_large;
}

// Where the page ranges refuse, malloc may still have room: the C library's arenas keep memory too.
void *allocate_once(std::size_t size, bool zeroed) {
    if (is_small(size)) {
        if (void *block = zeroed ? small.allocate_zeroed(size) : small.allocate(size)) return block;
    } else if (is_large(size)) {
        if (LargeBlocks::Block *block = large.allocate(size)) {
            if (zeroed) std::memset(block->start, 0, std::min(size, block->dirty));
            block->dirty = std::max(size, block->dirty);
            return block->start;
        }
    }
    return zeroed ? std::calloc(1, size) : std::malloc(size);
}

// Everything but a small block at hand.
[[gnu::noinline]] void *allocate_any(std::size_t size, bool zeroed) {
    if (size > largest_request) return nullptr;
    void *block = allocate_once(size, zeroed);
    if (!block && give_back_kept()) block = allocate_once(size, zeroed);
    return counted(block);
}

[[gnu::noinline]] void free_any(void *block) {
    if (!block) return;
    --live_blocks;
    if (LargeBlocks::Block *found = pass_through ? nullptr : large.find(block))
        large.free(found);
    else
        std::free(block);
}

// Bytes that a block of the C library may use.
std::size_t malloc_capacity(void *block) {
#if defined(__linux__)
    return malloc_usable_size(block);
#else
    return _msize(block);
#endif
}

// Half again as much, so that growing by one element at a time copies each byte a bounded number
// of times on average.
std::size_t with_slack(std::size_t capacity, std::size_t size) {
    return std::min(std::max(size, capacity + capacity / 2), std::max(size, largest_request));
}

class Heap final : public aligned_heap {
public:
    constexpr Heap() = default;

    bool check(void *) override { return true; }

    void *allocate(std::size_t size) override {
        if (fault_strikes()) [[unlikely]]
            return nullptr;
        if (is_small(size)) [[likely]]
            if (void *block = small.allocate(size)) [[likely]] {
                ++live_blocks;
                return block;
            }
        return allocate_any(size, false);
    }

    void *allocate_zeroed(std::size_t count, std::size_t size) override {
        if (fault_strikes()) [[unlikely]]
            return nullptr;
        const std::size_t bytes = count * size;
        if (is_small(bytes)) [[likely]]
            if (void *block = small.allocate_zeroed(bytes)) [[likely]] {
                ++live_blocks;
                return block;
            }
        return allocate_any(bytes, true);
    }

    void *reallocate(void *block, std::size_t size) override;

    void free(void *block) override {
        if (small.owns(block)) [[likely]] {
            small.free(block);
            --live_blocks;
            return;
        }
        free_any(block);
    }

    bool release_kept() override { return give_back_kept(); }

    std::size_t set_kept_limit(std::size_t bytes) override {
        const std::size_t previous = large.limit();
        large.set_limit(bytes);
        return previous;
    }

    std::size_t kept_bytes() const override { return large.kept(); }

private:
    void *move(void *block, std::size_t capacity, std::size_t size, std::size_t roomy);
    void *resize(void *block, std::size_t capacity, std::size_t size);
    void *resize_large(LargeBlocks::Block *block, std::size_t size);
};

// To a new block of `roomy` bytes, or where those cannot be had of `size`.
void *Heap::move(void *block, std::size_t capacity, std::size_t size, std::size_t roomy) {
    void *moved = allocate_any(roomy, false);
    if (!moved && roomy > size) moved = allocate_any(size, false);
    if (!moved) return nullptr;
    std::memcpy(moved, block, std::min(capacity, size));
    free(block);
    return moved;
}

void *Heap::reallocate(void *block, std::size_t size) {
    if (!block) return allocate(size);
    if (size > largest_request || fault_strikes()) return nullptr;
    if (pass_through) return std::realloc(block, size);
    if (small.owns(block)) return resize(block, small.capacity(block), size);
    if (LargeBlocks::Block *found = large.find(block)) return resize_large(found, size);
    return resize(block, malloc_capacity(block), size);
}

// A small or middle block. Shrinking below a quarter is worth a copy; it cannot fail, for the block
// may stay.
void *Heap::resize(void *block, std::size_t capacity, std::size_t size) {
    if (size > capacity) return move(block, capacity, size, with_slack(capacity, size));
    if (size >= capacity / 4 || capacity <= 64) return block;
    void *moved = move(block, size, size, size);
    return moved ? moved : block;
}

void *Heap::resize_large(LargeBlocks::Block *block, std::size_t size) {
    const std::size_t capacity = block->capacity;
    if (size > capacity) {
        const std::size_t roomy = with_slack(capacity, size);
        // Into kept pages a copy is cheaper than the first touch of new ones.
        if (large.keeps(roomy)) return move(block->start, capacity, size, roomy);
        if (!large.grow(block, roomy) && !large.grow(block, size))
            return move(block->start, capacity, size, size);
        block->dirty = size;
        return block->start;
    }
    block->dirty = std::max(size, block->dirty);
    return resize(block->start, capacity, size);
}

constinit Heap heap;

} // namespace

aligned_heap &aligned_heap::instance() { return heap; }

std::size_t heap_live_blocks() { return live_blocks; }

void *allocate_heap_chunk() { return small.allocate_chunk(); }

void free_heap_chunk(void *chunk) {
    if (small.owns(chunk))
        small.free(chunk);
    else
        std::free(chunk);
}

} // namespace fl
