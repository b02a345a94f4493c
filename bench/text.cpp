// Making and reading ASCII char arrays, beside memcpy of the larger side and the plain loop.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

void copy_units(benchmark::State &state, std::size_t n) {
    std::vector<char16_t> src(n, u'x'), dst(n);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), n * sizeof(char16_t));
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
}

void create_ox(benchmark::State &state, std::size_t n) {
    const std::string text(n, 'x');
    for (auto _ : state) {
        oxArray *a = oxCreateString(text.c_str());
        benchmark::DoNotOptimize(a);
        oxDestroyArray(a);
    }
}

// Length, block, widening loop.
void create_loop(benchmark::State &state, std::size_t n) {
    const std::string text(n, 'x');
    for (auto _ : state) {
        const std::size_t length = std::strlen(text.c_str());
        auto *block = static_cast<char16_t *>(oxMallocEx(length * sizeof(char16_t)));
        for (std::size_t i = 0; i < length; ++i) block[i] = static_cast<unsigned char>(text[i]);
        benchmark::DoNotOptimize(block);
        benchmark::ClobberMemory();
        oxFreeEx(block);
    }
}

void get_ox(benchmark::State &state, std::size_t n) {
    oxArray *a = oxCreateString(std::string(n, 'x').c_str());
    std::string buffer(n + 1, 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(oxGetString_UTF8(a, buffer.data(), n + 1));
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
}

void get_loop(benchmark::State &state, std::size_t n) {
    const std::u16string text(n, u'x');
    std::string buffer(n + 1, 0);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) buffer[i] = static_cast<char>(text[i]);
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] const bool registered = [] {
    for (const std::size_t n : {16u, 1000u, 1'000'000u}) {
        const auto add = [n](const char *operation, const char *who, auto fn) {
            const std::string name = std::string(operation) + '/' + std::to_string(n) + '/' + who;
            benchmark::RegisterBenchmark(name.c_str(), fn, n);
        };
        add("create_string", "limit_memcpy", copy_units);
        add("create_string", "ox", create_ox);
        add("create_string", "loop", create_loop);
        add("get_string", "limit_memcpy", copy_units);
        add("get_string", "ox", get_ox);
        add("get_string", "loop", get_loop);
    }
    return true;
}();

} // namespace
