// Memory, the allocation-fault seam, and the clean-ups that a raise runs.
#include "ut/internal.h"

#include <cstdlib>
#include <cstring>

namespace ut {
namespace {

constinit utAllocationFault fault = nullptr;
constinit utOutOfMemoryListener out_of_memory = nullptr;
constinit std::size_t live_blocks = 0;

} // namespace

void *raw_allocate(std::size_t size) { return fault && fault() ? nullptr : std::malloc(size); }

void *raw_reallocate(void *block, std::size_t size) {
    return fault && fault() ? nullptr : std::realloc(block, size);
}

void *raw_allocate_zeroed(std::size_t count, std::size_t size) {
    return fault && fault() ? nullptr : std::calloc(count, size);
}

void raw_free(void *block) { std::free(block); }

void call_out_of_memory_listener() {
    if (out_of_memory) out_of_memory();
}

} // namespace ut

using namespace ut;

namespace {

void *counted(void *block) {
    if (block) ++live_blocks;
    return block;
}

} // namespace

void *utMalloc(size_t size) { return counted(raw_allocate(size)); }

void *utCalloc(size_t count, size_t size) { return counted(raw_allocate_zeroed(count, size)); }

void *utRealloc(void *block, size_t size) {
    if (!block) return utMalloc(size);
    if (size == 0) {
        utFree(block);
        return nullptr;
    }
    return raw_reallocate(block, size);
}

void utFree(void *block) {
    if (block) --live_blocks;
    raw_free(block);
}

size_t utLiveBlocks() { return live_blocks; }

utOutOfMemoryListener utSetOutOfMemoryListener(utOutOfMemoryListener listener) {
    utOutOfMemoryListener previous = out_of_memory;
    out_of_memory = listener;
    return previous;
}

utAllocationFault utSetAllocationFault(utAllocationFault fails) {
    utAllocationFault previous = fault;
    fault = fails;
    return previous;
}
