// Pools of equal-sized elements: aligned chunks, one free list, and a sweep that finds unused
// chunks.
#include "foundation/fault.h"
#include "foundation/heap.h"
#include "foundation/small_blocks.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace fl {
namespace {

// Chunks of the usual size come from the heap's own pages, others from the C library.
void *allocate_chunk(std::size_t bytes) {
#if defined(_WIN32)
    return _aligned_malloc(bytes, bytes); // the heap has no pages of its own there
#else
    void *chunk = bytes == SmallBlocks::chunk_bytes ? allocate_heap_chunk() : nullptr;
    return chunk ? chunk : std::aligned_alloc(bytes, bytes);
#endif
}

void free_chunk(void *chunk) {
#if defined(_WIN32)
    _aligned_free(chunk);
#else
    free_heap_chunk(chunk);
#endif
}

struct FreeElement {
    FreeElement *next;
};

// Stands at the start of its chunk, where masking an element's address finds it.
struct alignas(16) Chunk {
    Chunk *next;        // the pool's next chunk
    std::size_t unused; // elements on the free list; counted by recover() only
};

class ChunkPool final : public pool {
public:
    ChunkPool(std::size_t elem, std::size_t block)
        : elem_(((elem < sizeof(FreeElement) ? sizeof(FreeElement) : elem) + 7) & ~std::size_t{7}),
          block_(std::bit_ceil(block < elem_ + sizeof(Chunk) ? elem_ + sizeof(Chunk) : block)),
          per_chunk_((block_ - sizeof(Chunk)) / elem_) {}

    ~ChunkPool() override {
        while (chunks_) {
            Chunk *next = chunks_->next;
            free_chunk(chunks_);
            chunks_ = next;
        }
    }

    void *allocate() override {
        if (fault_strikes()) [[unlikely]]
            return nullptr;
        if (FreeElement *element = free_) {
            free_ = element->next;
            ++live_;
            return element;
        }
        return carve();
    }

    void free(void *element) override {
        if (!element) return;
        auto *freed = static_cast<FreeElement *>(element);
        freed->next = free_;
        free_ = freed;
        --live_;
    }

    bool recover() override;

    std::size_t live() const override { return live_; }

private:
    // The next element of the newest chunk that was never handed out, or of a new chunk.
    void *carve() {
        if (fresh_ == fresh_end_) {
            auto *chunk = static_cast<Chunk *>(allocate_chunk(block_));
            if (!chunk) return nullptr;
            chunk->next = chunks_;
            chunk->unused = 0;
            chunks_ = chunk;
            fresh_ = reinterpret_cast<char *>(chunk + 1);
            fresh_end_ = fresh_ + per_chunk_ * elem_;
        }
        void *element = fresh_;
        fresh_ += elem_;
        ++live_;
        return element;
    }

    Chunk *chunk_of(void *element) const {
        return reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(element) & ~(block_ - 1));
    }

    // Elements of the chunk that were handed out at least once.
    std::size_t carved(const Chunk *chunk) const {
        if (chunk != chunks_) return per_chunk_;
        return per_chunk_ - static_cast<std::size_t>(fresh_end_ - fresh_) / elem_;
    }

    FreeElement *free_ = nullptr; // elements given back, last first
    std::size_t live_ = 0;        // elements in use
    char *fresh_ = nullptr;       // never used part of the newest chunk, chunks_
    char *fresh_end_ = nullptr;
    Chunk *chunks_ = nullptr; // all chunks, newest first
    std::size_t elem_;        // element size, a multiple of 8
    std::size_t block_;       // chunk size and alignment, a power of two
    std::size_t per_chunk_;   // elements in a chunk
};

// Counting only here keeps allocate and free down to a list operation.
bool ChunkPool::recover() {
    for (Chunk *chunk = chunks_; chunk; chunk = chunk->next) chunk->unused = 0;
    for (FreeElement *element = free_; element; element = element->next)
        ++chunk_of(element)->unused;

    for (FreeElement **link = &free_; *link;) {
        const Chunk *chunk = chunk_of(*link);
        if (chunk->unused == carved(chunk))
            *link = (*link)->next;
        else
            link = &(*link)->next;
    }
    bool any = false;
    bool newest = true;
    const std::size_t newest_carved = chunks_ ? carved(chunks_) : 0;
    for (Chunk **link = &chunks_; *link;) {
        Chunk *chunk = *link;
        if (chunk->unused == (newest ? newest_carved : per_chunk_)) {
            *link = chunk->next;
            free_chunk(chunk);
            any = true;
            if (newest) fresh_ = fresh_end_ = nullptr;
        } else {
            link = &chunk->next;
        }
        newest = false;
    }
    return any;
}

// One malloc per element, so that sanitizers see use after free and leaks of elements.
class MallocPool final : public pool {
public:
    explicit MallocPool(std::size_t elem) : elem_(elem) {}

    void *allocate() override {
        if (fault_strikes()) return nullptr;
        void *element = std::malloc(elem_);
        if (element) ++live_;
        return element;
    }

    void free(void *element) override {
        if (element) --live_;
        std::free(element);
    }

    bool recover() override { return false; }

    std::size_t live() const override { return live_; }

private:
    std::size_t elem_;
    std::size_t live_ = 0;
};

} // namespace

pool *create_managed_pool(std::size_t elem, std::size_t block) {
    if (fault_strikes()) return nullptr;
    if (pass_through) return new (std::nothrow) MallocPool(elem);
    return new (std::nothrow) ChunkPool(elem, block);
}

} // namespace fl
