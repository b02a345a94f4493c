// The aligned heap.
#include "fault.h"

#include <cstdlib>

namespace fl {
namespace {

constexpr std::size_t largest_request = std::size_t{1} << 40;

constinit std::size_t live_blocks = 0;

class Heap final : public aligned_heap {
public:
    constexpr Heap() = default;

    bool check(void *) override { return true; }

    void *allocate(std::size_t size) override {
        if (size > largest_request || fault_strikes()) return nullptr;
        return counted(std::malloc(size));
    }

    void *allocate_zeroed(std::size_t count, std::size_t size) override {
        if (count * size > largest_request || fault_strikes()) return nullptr;
        return counted(std::calloc(count, size));
    }

    void *reallocate(void *block, std::size_t size) override {
        if (size > largest_request || fault_strikes()) return nullptr;
        void *moved = std::realloc(block, size);
        return block ? moved : counted(moved);
    }

    void free(void *block) override {
        if (block) --live_blocks;
        std::free(block);
    }

    bool release_kept() override { return false; }
    std::size_t set_kept_limit(std::size_t) override { return 0; }
    std::size_t kept_bytes() const override { return 0; }

private:
    static void *counted(void *block) {
        if (block) ++live_blocks;
        return block;
    }
};

constinit Heap heap;

} // namespace

aligned_heap &aligned_heap::instance() { return heap; }

std::size_t heap_live_blocks() { return live_blocks; }

} // namespace fl
