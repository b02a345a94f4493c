// Pages from the Linux kernel. Elsewhere nothing is granted, and the heap falls back to malloc.
#include "foundation/pages.h"

#if defined(__linux__)
#include <cstdint>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace fl::pages {

#if defined(__linux__)

namespace {

char *map_any(std::size_t bytes, int protection) {
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | (protection == PROT_NONE ? MAP_NORESERVE : 0);
    void *start = mmap(nullptr, bytes, protection, flags, -1, 0);
    return start == MAP_FAILED ? nullptr : static_cast<char *>(start);
}

// Maps a huge page more than asked for and cuts both ends off.
char *map_aligned(std::size_t bytes, int protection) {
    char *start = map_any(bytes + huge, protection);
    if (!start) return nullptr;
    const std::size_t head = -reinterpret_cast<std::uintptr_t>(start) & (huge - 1);
    if (head > 0) munmap(start, head);
    munmap(start + head + bytes, huge - head);
    return start + head;
}

} // namespace

// Left out of core dumps until it is used: a debugger writes every page of them, granted or not.
char *reserve(std::size_t bytes) {
    char *start = map_aligned(bytes, PROT_NONE);
    if (start) madvise(start, bytes, MADV_DONTDUMP);
    return start;
}

bool commit(char *start, std::size_t bytes, bool huge_pages) {
    if (mprotect(start, bytes, PROT_READ | PROT_WRITE) != 0) return false;
    madvise(start, bytes, MADV_DODUMP);
    if (huge_pages) madvise(start, bytes, MADV_HUGEPAGE); // only advice: failure changes nothing
    return true;
}

void discard(char *start, std::size_t bytes) { madvise(start, bytes, MADV_DONTNEED); }

char *map(std::size_t bytes) {
    char *start = map_aligned(bytes, PROT_READ | PROT_WRITE);
    if (start && bytes >= huge) madvise(start, bytes, MADV_HUGEPAGE);
    return start;
}

void unmap(char *start, std::size_t bytes) { munmap(start, bytes); }

char *remap(char *start, std::size_t bytes, std::size_t wider) {
    char *target = map_aligned(wider, PROT_NONE);
    if (!target) return nullptr;
    if (mremap(start, bytes, wider, MREMAP_MAYMOVE | MREMAP_FIXED, target) == MAP_FAILED) {
        munmap(target, wider);
        return nullptr;
    }
    if (wider >= huge) madvise(target, wider, MADV_HUGEPAGE);
    return target;
}

std::size_t address_space() {
    rlimit limit;
    const bool limited = getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    return limited ? static_cast<std::size_t>(limit.rlim_cur) : SIZE_MAX;
}

std::size_t physical_memory() {
    return static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

#else

char *reserve(std::size_t) { return nullptr; }
bool commit(char *, std::size_t, bool) { return false; }
void discard(char *, std::size_t) {}
char *map(std::size_t) { return nullptr; }
void unmap(char *, std::size_t) {}
char *remap(char *, std::size_t, std::size_t) { return nullptr; }
std::size_t address_space() { return 0; }
std::size_t physical_memory() { return 0; }

#endif

} // namespace fl::pages
