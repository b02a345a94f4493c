// What the files of the utility library share: raw memory behind the fault seam, a growing array.
#pragma once
#include "ut.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace ut {

// Null on failure; asked of the fault seam first; not counted as live blocks.
void *raw_allocate(std::size_t size);
void *raw_allocate_zeroed(std::size_t count, std::size_t size);
void *raw_reallocate(void *block, std::size_t size);
void raw_free(void *block);
void call_out_of_memory_listener();

// A process-lifetime growing array of plain values that reports lack of memory instead of throwing.
template<class T> struct GrowingArray {
    static_assert(std::is_trivially_copyable_v<T>);

    T *items = nullptr;       // count values
    std::size_t count = 0;    // used
    std::size_t capacity = 0; // allocated

    bool append(const T &value) {
        if (count == capacity) {
            const std::size_t wider = capacity ? 2 * capacity : 8;
            void *grown = raw_reallocate(items, wider * sizeof(T));
            if (!grown) return false;
            items = static_cast<T *>(grown);
            capacity = wider;
        }
        items[count++] = value;
        return true;
    }
    // Keeps the order of the others.
    void remove(std::size_t k) {
        for (--count; k < count; ++k) items[k] = items[k + 1];
    }
    T *begin() const { return items; }
    T *end() const { return items + count; }
};

// A copy of a text (null is "") in raw memory, or null.
char *copy_text(const char *text);

} // namespace ut
