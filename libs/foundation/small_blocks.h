// Small blocks: 64 size classes of 16-byte steps, each a free list over 64 KiB slabs.
//
// All slabs lie in one reserved stretch of address space. So one comparison tells whether a pointer
// is a small block, and a byte per slab tells its class: blocks carry no header.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fl {

class SmallBlocks {
public:
    static constexpr std::size_t largest = 1024;     // bytes of the largest small block
    static constexpr std::size_t chunk_bytes = 8192; // pool chunks: aligned to their size

    constexpr SmallBlocks() = default;

    bool owns(const void *block) const { return address(block) - base_ < region_bytes_; }

    // A block of 1 to `largest` bytes, or null when the stretch is used up or memory is short.
    void *allocate(std::size_t size) { return take((size + grain - 1) / grain); }
    // As above, and zero.
    void *allocate_zeroed(std::size_t size) {
        const std::size_t cls = (size + grain - 1) / grain;
        void *block = take(cls);
        if (block) [[likely]]
            clear(static_cast<char *>(block), cls * grain);
        return block;
    }
    // A block of chunk_bytes, aligned to as much; given back with free().
    void *allocate_chunk() { return take(chunk_class); }

    void free(void *block) {
        List &list = lists_[class_of_[slab_of(block)]];
        auto *node = static_cast<Node *>(block);
        node->next = list.free;
        list.free = node;
    }

    // Bytes that the block may use.
    std::size_t capacity(const void *block) const { return bytes_of(class_of_[slab_of(block)]); }

    // Gives the memory of slabs without a used block back. True if there was any. Cost: a walk over
    // all free blocks, which is why allocate and free count nothing.
    bool release();

private:
    struct Node {
        Node *next;
    };
    struct List {
        Node *free = nullptr;  // blocks given back, last first
        char *fresh = nullptr; // part of the newest slab that was never handed out
        char *end = nullptr;
    };

    static constexpr std::size_t grain = 16;
    static constexpr std::size_t chunk_class = largest / grain + 1;
    static constexpr std::size_t classes = chunk_class + 1; // class 0 marks a slab without blocks
    static constexpr std::size_t slab_bytes = std::size_t{64} << 10;
    static constexpr std::size_t most_slabs = std::size_t{1} << 18; // 16 GiB of address space

    static std::uintptr_t address(const void *block) {
        return reinterpret_cast<std::uintptr_t>(block);
    }
    static constexpr std::size_t bytes_of(std::size_t cls) {
        return cls == chunk_class ? chunk_bytes : cls * grain;
    }
    std::size_t slab_of(const void *block) const { return (address(block) - base_) / slab_bytes; }
    char *start_of(std::size_t slab) const {
        return reinterpret_cast<char *>(base_) + slab * slab_bytes;
    }

    void *take(std::size_t cls) {
        List &list = lists_[cls];
        if (Node *node = list.free) [[likely]] {
            list.free = node->next;
            return node;
        }
        return carve(cls);
    }

    // Overlapping fixed-size stores: `bytes` is a multiple of 16.
    static void clear(char *block, std::size_t bytes) {
        if (bytes > 128) {
            std::memset(block, 0, bytes);
        } else if (bytes > 64) {
            std::memset(block, 0, 64);
            std::memset(block + bytes - 64, 0, 64);
        } else if (bytes > 32) {
            std::memset(block, 0, 32);
            std::memset(block + bytes - 32, 0, 32);
        } else {
            std::memset(block, 0, 16);
            std::memset(block + bytes - 16, 0, 16);
        }
    }

    void *carve(std::size_t cls);
    bool new_slab(std::size_t cls);
    bool reserve_region();
    bool commit_more();
    std::size_t carved(std::size_t slab) const;
    void count_unused(std::size_t cls);
    void drop_unused(std::size_t cls);

    std::uintptr_t base_ = 0;      // start of the stretch
    std::size_t region_bytes_ = 0; // its size; 0 before the first use and where it cannot be had
    bool refused_ = false;         // the system grants no stretch: never ask again
    List lists_[classes] = {};
    std::size_t used_slabs_ = 0;      // slabs ever given a class
    std::size_t committed_slabs_ = 0; // slabs with memory that can be used
    std::size_t spare_slab_ = 0;      // first of the released slabs, plus one; 0: none
    std::uint8_t class_of_[most_slabs] = {};
    std::uint32_t unused_[most_slabs] =
        {}; // during release: free blocks; of a spare slab: the next one
};

} // namespace fl
