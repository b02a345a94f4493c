// The listed layer and the allocation list: what a context frees when the caller forgot it.
#include <core/alloc.h>
#include <core/context_list.h>
#include <errors/raise.h>

#include <ut.h>

namespace ox {

namespace {

constexpr kwSize first_entries = 50;
constinit ContextList<void, first_entries> blocks;
using BlockListener = void (*)(void *);
constinit BlockListener on_alloc = nullptr, on_free = nullptr;

void list_block(void *block) {
    if (!blocks.append(block)) raise_out_of_memory();
}
void unlist_block(void *block) { blocks.remove(block); }

// The listener may raise because the list cannot grow; nobody would own the block then.
void *announce(void *block) {
    if (!block || !on_alloc) return block;
    try {
        on_alloc(block);
    } catch (...) {
        oxFreeEx(block);
        throw;
    }
    return block;
}

} // namespace

void reset_alloc_hooks() {
    on_alloc = on_free = nullptr;
    reset_out_of_memory_listener();
}

} // namespace ox

using namespace ox;

extern "C" {

void *oxMallocExAllocList(kwSize size) { return announce(oxMallocExCheck(size)); }

void *oxCallocExAllocList(kwSize count, kwSize size) {
    return announce(oxCallocExCheck(count, size));
}

void *oxReallocExAllocList(void *block, kwSize size) {
    // Compared as a number: a moved block's old address may only be looked at.
    const uintptr_t old_address = reinterpret_cast<uintptr_t>(block);
    void *moved = oxReallocExCheck(block, size);
    if (reinterpret_cast<uintptr_t>(moved) == old_address) return moved;
    if (old_address && on_free) on_free(reinterpret_cast<void *>(old_address));
    return announce(moved);
}

void oxFreeExAllocList(void *block) {
    if (block && on_free) on_free(block);
    oxFreeEx(block);
}

void *oxMalloc(kwSize size) { return oxMallocExAllocList(size); }
void *oxCalloc(kwSize count, kwSize size) { return oxCallocExAllocList(count, size); }
void *oxRealloc(void *block, kwSize size) { return oxReallocExAllocList(block, size); }
void oxFree(void *block) { oxFreeExAllocList(block); }

void oxAddToAllocList(void *block) {
    if (!block) return;
    check_block(block);
    list_block(block);
}

void oxRemoveFromAllocList(void *block) {
    if (!block) return;
    check_block(block);
    unlist_block(block);
}

bool oxIsOnAllocList(const void *block) { return block && blocks.contains(block); }
kwSize GetAllocListLength(void) { return blocks.length(); }
int oxEnterNewAllocListContext(void) { return blocks.enter(); }
void oxRestorePreviousAllocListContext(int index) { blocks.restore(index); }

void oxFreeAllocListContext(void) {
    while (!blocks.context_empty()) oxFreeEx(blocks.pop());
}

void oxSetAllocListeners(void (*alloc)(void *), void (*release)(void *)) {
    on_alloc = alloc;
    on_free = release;
}

void oxInitAllocListManager(void) {
    oxSetAllocListeners(list_block, unlist_block);
    oxSetOutOfMemoryListener(raise_out_of_memory);
    utSetOutOfMemoryListener(raise_out_of_memory);
}

void oxShutdownAllocLst(void) { blocks.shutdown(); }

} // extern "C"
