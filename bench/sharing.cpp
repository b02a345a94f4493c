// Copies that share, deep copies of many small arrays, unsharing, and tests over values.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t header_bytes = 104; // one array header

void share_ox(benchmark::State &state) {
    oxArray *a = oxCreateDoubleMatrix(100, 100, oxREAL);
    for (auto _ : state) {
        oxArray *s = oxCreateSharedDataCopy(a);
        benchmark::DoNotOptimize(s);
        oxDestroyArray(s);
    }
    oxDestroyArray(a);
}

void share_limit(benchmark::State &state) {
    char a[header_bytes] = {}, b[header_bytes];
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        std::memcpy(b, a, header_bytes);
        benchmark::DoNotOptimize(b);
    }
}

constexpr kwSize many = 100000;

oxArray *cell_of_scalars() {
    oxArray *c = oxCreateCellMatrix(1, many);
    for (kwSize i = 0; i < many; ++i) oxSetCell(c, i, oxCreateDoubleScalar(static_cast<double>(i)));
    return c;
}

void deep_ox(benchmark::State &state) {
    oxArray *c = cell_of_scalars();
    for (auto _ : state) oxDestroyArray(oxCreateDeepCopy(c));
    oxDestroyArray(c);
}

// What making the elements anew costs.
void deep_limit(benchmark::State &state) {
    for (auto _ : state) oxDestroyArray(cell_of_scalars());
}

void unshare_ox(benchmark::State &state, kwSize n) {
    oxArray *a = oxCreateDoubleMatrix(n, 1, oxREAL);
    for (auto _ : state) oxDestroyArray(oxUnshare(oxCreateSharedDataCopy(a)));
    oxDestroyArray(a);
}

void unshare_limit(benchmark::State &state, kwSize n) {
    const std::vector<double> a(n);
    std::vector<double> b(n);
    for (auto _ : state) {
        std::memcpy(b.data(), a.data(), n * sizeof(double));
        benchmark::DoNotOptimize(b.data());
        benchmark::ClobberMemory();
    }
}

void test_ox(benchmark::State &state, kwSize n, bool (*holds)(const oxArray *)) {
    oxArray *a = oxCreateDoubleMatrix(1, n, oxREAL);
    for (kwSize i = 0; i < n; ++i) oxGetPr(a)[i] = static_cast<double>(i % 1000);
    if (!holds(a)) state.SkipWithError("every value must be looked at");
    for (auto _ : state) benchmark::DoNotOptimize(holds(a));
    oxDestroyArray(a);
}

void finite_loop(benchmark::State &state, kwSize n) {
    const std::vector<double> a(n, 1);
    for (auto _ : state) {
        bool all = true;
        for (const double x : a) all = all && std::isfinite(x);
        benchmark::DoNotOptimize(all);
    }
}

// Reading the same bytes and doing the least with them.
void read_limit(benchmark::State &state, kwSize n) {
    const std::vector<uint64_t> a(n, 1);
    for (auto _ : state) {
        uint64_t all = 0;
        for (const uint64_t x : a) all |= x;
        benchmark::DoNotOptimize(all);
    }
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("share+destroy/header/ox", share_ox);
    benchmark::RegisterBenchmark("share+destroy/header/limit_memcpy", share_limit);
    benchmark::RegisterBenchmark("deep_copy/cell_1e5/ox", deep_ox);
    benchmark::RegisterBenchmark("deep_copy/cell_1e5/limit_create", deep_limit);
    for (const kwSize n : {kwSize{10}, kwSize{1} << 16, kwSize{1} << 23}) {
        const std::string size = std::to_string(n);
        benchmark::RegisterBenchmark(("unshare/" + size + "/ox").c_str(), unshare_ox, n);
        benchmark::RegisterBenchmark(("unshare/" + size + "/limit_memcpy").c_str(), unshare_limit,
                                     n);
        benchmark::RegisterBenchmark(("finite/" + size + "/ox").c_str(), test_ox, n,
                                     oxIsRealVector);
        benchmark::RegisterBenchmark(("finite/" + size + "/loop").c_str(), finite_loop, n);
        benchmark::RegisterBenchmark(("finite/" + size + "/limit_read").c_str(), read_limit, n);
        benchmark::RegisterBenchmark(("integers/" + size + "/ox").c_str(), test_ox, n,
                                     oxIsIntVector);
        benchmark::RegisterBenchmark(("integers/" + size + "/limit_read").c_str(), read_limit, n);
    }
    return true;
}();

} // namespace
