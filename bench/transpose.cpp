// Transposes of 1-, 2-, 4- and 8-byte elements beside memcpy of the same bytes into a warm block.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cstring>
#include <string>

namespace {

oxClassID class_of_width(std::size_t width) {
    return width == 1   ? oxUINT8_CLASS
           : width == 2 ? oxINT16_CLASS
           : width == 4 ? oxSINGLE_CLASS
                        : oxDOUBLE_CLASS;
}

oxArray *filled(std::size_t m, std::size_t n, std::size_t width) {
    oxArray *a = oxCreateNumericMatrix(m, n, class_of_width(width), oxREAL);
    std::memset(oxGetData(a), 1, m * n * width);
    return a;
}

void limit(benchmark::State &state, std::size_t m, std::size_t n, std::size_t width) {
    oxArray *a = filled(m, n, width), *b = filled(n, m, width);
    for (auto _ : state) {
        std::memcpy(oxGetData(b), oxGetData(a), m * n * width);
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

// The whole operation, with the new array.
void transpose(benchmark::State &state, std::size_t m, std::size_t n, std::size_t width) {
    oxArray *a = filled(m, n, width);
    for (auto _ : state) {
        oxArray *b = oxTranspose(a);
        benchmark::DoNotOptimize(oxGetData(b));
        oxDestroyArray(b);
    }
    oxDestroyArray(a);
}

// The kernel alone, into a warm block.
void block(benchmark::State &state, std::size_t m, std::size_t n, std::size_t width) {
    oxArray *a = filled(m, n, width), *b = filled(n, m, width);
    for (auto _ : state) {
        oxTransposeArray(a, oxGetData(a), oxGetData(b), m, n);
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

template<class T> void tiles(benchmark::State &state, std::size_t m, std::size_t n) {
    oxArray *a = filled(m, n, sizeof(T)), *b = filled(n, m, sizeof(T));
    auto *s = static_cast<const T *>(oxGetData(a));
    auto *d = static_cast<T *>(oxGetData(b));
    constexpr std::size_t edge = 256 / sizeof(T);
    for (auto _ : state) {
        for (std::size_t i0 = 0; i0 < m; i0 += edge)
            for (std::size_t j0 = 0; j0 < n; j0 += edge)
                for (std::size_t i = i0; i < m && i < i0 + edge; ++i)
                    for (std::size_t j = j0; j < n && j < j0 + edge; ++j)
                        d[i * n + j] = s[i + j * m];
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

constexpr struct {
    std::size_t width, m, n;
} cases[] = {
    {8, 8, 8},       {8, 256, 256},   {8, 3000, 3000}, {8, 3001, 3003}, {8, 4096, 4096},
    {8, 1000000, 8}, {8, 8, 1000000}, {4, 360, 360},   {4, 4200, 4200}, {2, 512, 512},
    {2, 6000, 6000}, {1, 720, 720},   {1, 8400, 8400},
};

const int registered = [] {
    for (auto [w, m, n] : cases) {
        const std::string base = "transpose" + std::to_string(w) + "/" + std::to_string(m) + "x" +
                                 std::to_string(n) + "/";
        benchmark::RegisterBenchmark((base + "limit_memcpy").c_str(), limit, m, n, w);
        benchmark::RegisterBenchmark((base + "ox").c_str(), transpose, m, n, w);
        benchmark::RegisterBenchmark((base + "ox_block").c_str(), block, m, n, w);
        const auto plain = w == 1   ? tiles<uint8_t>
                           : w == 2 ? tiles<uint16_t>
                           : w == 4 ? tiles<uint32_t>
                                    : tiles<uint64_t>;
        benchmark::RegisterBenchmark((base + "plain_tiles").c_str(), plain, m, n);
    }
    return 0;
}();

} // namespace
