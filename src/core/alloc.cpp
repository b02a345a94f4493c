// The raw and the checked layer, and the choice of the allocator behind them.
#include <core/alloc.h>

#include <fl.hpp>
#include <ut.h>

namespace ox {
namespace {

constexpr int utility_mode = 2;

// Null while the manager has not been asked, or when it named the utility library.
constinit fl::aligned_heap *heap = nullptr;
constinit bool asked = false;
using Listener = void (*)();
constinit Listener out_of_memory_listener = nullptr;

// A manager that raises leaves the choice open, so that the next call asks again.
[[gnu::noinline]] fl::aligned_heap *choose() {
    if (!asked && fl::manager::instance().mode() != utility_mode)
        heap = &fl::aligned_heap::instance();
    asked = true;
    return heap;
}
inline fl::aligned_heap *chosen_heap() { return heap ? heap : choose(); }

[[gnu::cold]] void report_out_of_memory() {
    if (out_of_memory_listener) out_of_memory_listener();
}

} // namespace

bool uses_utility_allocator() { return chosen_heap() == nullptr; }
void reset_allocator_choice() {
    heap = nullptr;
    asked = false;
}
void check_block(void *block) {
    if (fl::aligned_heap *h = chosen_heap()) h->check(block);
}
void reset_out_of_memory_listener() { out_of_memory_listener = nullptr; }

} // namespace ox

using namespace ox;

extern "C" {

void *oxMallocEx(kwSize size) {
    fl::aligned_heap *h = chosen_heap();
    if (!h) return utMalloc(size);
    return size ? h->allocate(size) : nullptr;
}

void *oxCallocEx(kwSize count, kwSize size) {
    fl::aligned_heap *h = chosen_heap();
    if (!h) return utCalloc(count, size);
    kwSize bytes;
    if (__builtin_mul_overflow(count, size, &bytes) || bytes == 0) return nullptr;
    return h->allocate_zeroed(count, size);
}

void *oxReallocEx(void *block, kwSize size) {
    fl::aligned_heap *h = chosen_heap();
    if (!h) return utRealloc(block, size);
    if (size == 0) {
        if (block) h->free(block);
        return nullptr;
    }
    return block ? h->reallocate(block, size) : h->allocate(size);
}

void oxFreeEx(void *block) {
    fl::aligned_heap *h = chosen_heap();
    if (!h) return utFree(block);
    if (block) h->free(block);
}

void *oxMallocExCheck(kwSize size) {
    void *block = oxMallocEx(size);
    if (!block && size) report_out_of_memory();
    return block;
}

void *oxCallocExCheck(kwSize count, kwSize size) {
    void *block = oxCallocEx(count, size);
    if (!block && count && size) report_out_of_memory();
    return block;
}

void *oxReallocExCheck(void *block, kwSize size) {
    void *moved = oxReallocEx(block, size);
    if (!moved && size) report_out_of_memory();
    return moved;
}

void oxSetOutOfMemoryListener(void (*listener)(void)) { out_of_memory_listener = listener; }

} // extern "C"
