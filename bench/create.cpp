// Creating and destroying arrays, listed blocks and contexts, beside malloc, calloc and free of the
// same bytes.
#include <benchmark/benchmark.h>
#include <fl.hpp>
#include <ox.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

constexpr std::size_t header_bytes = 104; // One array header.

void create_ox(benchmark::State &state, kwSize m, kwSize n) {
    for (auto _ : state) {
        oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
        benchmark::DoNotOptimize(a);
        oxDestroyArray(a);
    }
}

// What any array of a header and zeroed elements costs from the C library.
void create_malloc_calloc(benchmark::State &state, std::size_t count) {
    for (auto _ : state) {
        void *header = std::malloc(header_bytes);
        void *data = std::calloc(count, sizeof(double));
        benchmark::DoNotOptimize(header);
        benchmark::DoNotOptimize(data);
        std::free(data);
        std::free(header);
    }
}

void create_vector(benchmark::State &state, std::size_t count) {
    for (auto _ : state) {
        std::vector<double> v(count);
        benchmark::DoNotOptimize(v.data());
    }
}

// A pass over one warm block for each byte: what is left when memory costs nothing. A block is
// cleared and written: zeros alone are no measure where the hardware writes them more than twice as
// fast as anything else.
void set_warm(benchmark::State &state, std::size_t count, const std::vector<int> &bytes) {
    std::vector<double> v(count);
    benchmark::DoNotOptimize(v.data()); // The compiler must believe that someone reads it.
    for (auto _ : state)
        for (const int byte : bytes) {
            std::memset(v.data(), byte, count * sizeof(double));
            benchmark::ClobberMemory();
        }
}

// Create, write every element, destroy.
void fill_ox(benchmark::State &state, kwSize m, kwSize n) {
    for (auto _ : state) {
        oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
        std::memset(oxGetPr(a), 1, m * n * sizeof(double));
        benchmark::ClobberMemory();
        oxDestroyArray(a);
    }
}

void fill_calloc(benchmark::State &state, std::size_t count) {
    for (auto _ : state) {
        void *data = std::calloc(count, sizeof(double));
        std::memset(data, 1, count * sizeof(double));
        benchmark::DoNotOptimize(data);
        benchmark::ClobberMemory();
        std::free(data);
    }
}

// The same without a kept block to fall back on: every result is new memory.
void fill_new_ox(benchmark::State &state, kwSize m, kwSize n) {
    for (auto _ : state) {
        oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
        std::memset(oxGetPr(a), 1, m * n * sizeof(double));
        benchmark::ClobberMemory();
        oxDestroyArray(a);
        fl::aligned_heap::instance().release_kept();
    }
}

// A large result: a copy of an array, the block of the last one at hand or new memory.
void copy_ox(benchmark::State &state, std::size_t count, bool new_memory) {
    oxArray *a = oxCreateDoubleMatrix(count, 1, oxREAL);
    std::memset(oxGetPr(a), 1, count * sizeof(double));
    for (auto _ : state) {
        oxArray *b = oxDuplicateArray(a);
        benchmark::DoNotOptimize(oxGetPr(b));
        oxDestroyArray(b);
        if (new_memory) fl::aligned_heap::instance().release_kept();
    }
    oxDestroyArray(a);
}

void copy_warm(benchmark::State &state, std::size_t count) {
    std::vector<double> a(count, 1), b(count, 2);
    for (auto _ : state) {
        std::memcpy(b.data(), a.data(), count * sizeof(double));
        benchmark::DoNotOptimize(b.data());
        benchmark::ClobberMemory();
    }
}

#if defined(__linux__)
// What new memory costs: pages from the kernel, huge where it grants them.
void map_pages(benchmark::State &state, std::size_t count) {
    const std::size_t huge = std::size_t{2} << 20, bytes = count * sizeof(double) + huge;
    for (auto _ : state) {
        auto *all = static_cast<char *>(
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        char *start = all + (-reinterpret_cast<std::uintptr_t>(all) & (huge - 1));
        madvise(start, count * sizeof(double), MADV_HUGEPAGE);
        std::memset(start, 1, count * sizeof(double));
        benchmark::ClobberMemory();
        munmap(all, bytes);
    }
}
#endif

void listed_ox(benchmark::State &state, std::size_t bytes) {
    for (auto _ : state) {
        void *block = oxMalloc(bytes);
        benchmark::DoNotOptimize(block);
        oxFree(block);
    }
}

void listed_malloc(benchmark::State &state, std::size_t bytes) {
    for (auto _ : state) {
        void *block = std::malloc(bytes);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}

// An extension call that forgets count scalars, and the context exit that destroys them.
void context_ox(benchmark::State &state, std::size_t count) {
    for (auto _ : state) {
        const int index = oxEnterNewArrayListContext();
        for (std::size_t i = 0; i < count; ++i)
            benchmark::DoNotOptimize(oxCreateDoubleMatrix(1, 1, oxREAL));
        oxExitArrayListContext(index, nullptr, 0, true);
    }
}

void context_malloc(benchmark::State &state, std::size_t count) {
    std::vector<void *> blocks(2 * count);
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            blocks[2 * i] = std::malloc(header_bytes);
            blocks[2 * i + 1] = std::calloc(1, sizeof(double));
        }
        benchmark::ClobberMemory();
        for (void *block : blocks) std::free(block);
    }
}

} // namespace

BENCHMARK_CAPTURE(create_malloc_calloc, x, 1)->Name("create/1x1/limit_malloc_calloc");
BENCHMARK_CAPTURE(create_ox, x, 1, 1)->Name("create/1x1/ox");
BENCHMARK_CAPTURE(create_vector, x, 1)->Name("create/1x1/vector");

BENCHMARK_CAPTURE(create_malloc_calloc, x, 100)->Name("create/10x10/limit_malloc_calloc");
BENCHMARK_CAPTURE(create_ox, x, 10, 10)->Name("create/10x10/ox");
BENCHMARK_CAPTURE(create_vector, x, 100)->Name("create/10x10/vector");

BENCHMARK_CAPTURE(set_warm, x, 1'000'000, {0})->Name("create/1000x1000/limit_memset");
BENCHMARK_CAPTURE(create_ox, x, 1000, 1000)->Name("create/1000x1000/ox");
BENCHMARK_CAPTURE(create_malloc_calloc, x, 1'000'000)->Name("create/1000x1000/malloc_calloc");
BENCHMARK_CAPTURE(create_vector, x, 1'000'000)->Name("create/1000x1000/vector");

BENCHMARK_CAPTURE(set_warm, x, 9'000'000, {0, 1})
    ->Name("create_fill/3000x3000/limit_clear_and_write");
BENCHMARK_CAPTURE(fill_ox, x, 3000, 3000)->Name("create_fill/3000x3000/ox");
BENCHMARK_CAPTURE(fill_calloc, x, 9'000'000)->Name("create_fill/3000x3000/calloc");

BENCHMARK_CAPTURE(set_warm, x, 9'000'000, {1})->Name("create_fill_new/3000x3000/limit_memset");
BENCHMARK_CAPTURE(fill_new_ox, x, 3000, 3000)->Name("create_fill_new/3000x3000/ox");
#if defined(__linux__)
BENCHMARK_CAPTURE(map_pages, x, 9'000'000)->Name("create_fill_new/3000x3000/mmap_huge");
#endif

BENCHMARK_CAPTURE(copy_warm, x, 8 << 20)->Name("copy_large/64MiB/limit_memcpy");
BENCHMARK_CAPTURE(copy_ox, x, 8 << 20, false)->Name("copy_large/64MiB/ox");
BENCHMARK_CAPTURE(copy_warm, x, 8 << 20)->Name("copy_large_new/64MiB/limit_memcpy");
BENCHMARK_CAPTURE(copy_ox, x, 8 << 20, true)->Name("copy_large_new/64MiB/ox");

BENCHMARK_CAPTURE(listed_malloc, x, 64)->Name("listed/64B/limit_malloc");
BENCHMARK_CAPTURE(listed_ox, x, 64)->Name("listed/64B/ox");
BENCHMARK_CAPTURE(listed_malloc, x, 16384)->Name("listed/16KiB/limit_malloc");
BENCHMARK_CAPTURE(listed_ox, x, 16384)->Name("listed/16KiB/ox");

BENCHMARK_CAPTURE(context_malloc, x, 1000)->Name("context/1e3/limit_malloc_calloc");
BENCHMARK_CAPTURE(context_ox, x, 1000)->Name("context/1e3/ox");
BENCHMARK_CAPTURE(context_malloc, x, 1'000'000)->Name("context/1e6/limit_malloc_calloc");
BENCHMARK_CAPTURE(context_ox, x, 1'000'000)->Name("context/1e6/ox");
