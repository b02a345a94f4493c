// Comparing arrays that are equal throughout, the longest way, beside memcpy with the same traffic.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

enum class Kind { numbers, nans, with_int32 };

oxArray *values(kwSize n, oxClassID id, bool nans) {
    oxArray *a = oxCreateNumericMatrix(n, 1, id, oxREAL);
    for (kwSize k = 0; k < n; ++k) {
        const auto x = static_cast<int32_t>(k % 100000) * 31 - 1000;
        if (id == oxINT32_CLASS)
            static_cast<int32_t *>(oxGetData(a))[k] = x;
        else
            oxGetPr(a)[k] = nans && k % 10 == 0 ? std::nan("") : x;
    }
    return a;
}

void equal(benchmark::State &state, Kind kind, kwSize n) {
    const bool nans = kind == Kind::nans;
    oxArray *a = values(n, oxDOUBLE_CLASS, nans);
    oxArray *b = values(n, kind == Kind::with_int32 ? oxINT32_CLASS : oxDOUBLE_CLASS, nans);
    for (auto _ : state) benchmark::DoNotOptimize(oxAreMatricesEqualNanOptional(a, b, !nans));
    if (!oxAreMatricesEqualNanOptional(a, b, !nans)) state.SkipWithError("not equal");
    oxDestroyArray(a);
    oxDestroyArray(b);
}

void limit(benchmark::State &state, Kind kind, kwSize n) {
    const kwSize bytes = kind == Kind::with_int32 ? n * 6 : n * 8;
    oxArray *a = values(n, oxDOUBLE_CLASS, false), *b = values(n, oxDOUBLE_CLASS, false);
    for (auto _ : state) {
        std::memcpy(oxGetPr(b), oxGetPr(a), bytes);
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

void plain(benchmark::State &state, Kind kind, kwSize n) {
    oxArray *a = values(n, oxDOUBLE_CLASS, kind == Kind::nans);
    oxArray *b =
        values(n, kind == Kind::with_int32 ? oxINT32_CLASS : oxDOUBLE_CLASS, kind == Kind::nans);
    const auto *x = oxGetPr(a), *y = oxGetPr(b);
    const auto *z = static_cast<const int32_t *>(oxGetData(b));
    for (auto _ : state) {
        kwSize k = 0;
        if (kind == Kind::with_int32)
            while (k < n && x[k] == z[k]) ++k;
        else if (kind == Kind::nans)
            while (k < n && (x[k] == y[k] || (x[k] != x[k] && y[k] != y[k]))) ++k;
        else
            while (k < n && x[k] == y[k]) ++k;
        benchmark::DoNotOptimize(k);
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

[[maybe_unused]] const bool registered = [] {
    for (const auto &[name, kind] :
         {std::pair("equal_f64", Kind::numbers), std::pair("equal_f64_nan_equal", Kind::nans),
          std::pair("equal_f64_i32", Kind::with_int32)})
        for (const kwSize n : {kwSize{100}, kwSize{32768}, kwSize{8} << 20}) {
            const auto add = [&, kind = kind](const char *who, auto fn) {
                const std::string size = n == 100 ? "100" : n == 32768 ? "32K" : "8M";
                benchmark::RegisterBenchmark((name + ('/' + size) + '/' + who).c_str(), fn, kind,
                                             n);
            };
            add("limit_memcpy", limit);
            add("ox", equal);
            add("plain_loop", plain);
        }
    return true;
}();

} // namespace
