// References of double matrices beside memcpy of the result's bytes into a warm block.
#include "subscripts.h"

#include <benchmark/benchmark.h>
#include <ox.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

oxArray *square(kwSize m) {
    oxArray *a = oxCreateDoubleMatrix(m, m, oxREAL);
    for (kwSize k = 0; k < m * m; ++k) oxGetPr(a)[k] = static_cast<double>(k);
    return a;
}

oxArray *random_mask(kwSize m) {
    std::mt19937_64 engine(42);
    oxArray *a = oxCreateLogicalMatrix(m, m);
    for (kwSize k = 0; k < m * m; ++k) oxGetLogicals(a)[k] = engine() % 2 != 0;
    return a;
}

oxArray *range(kwSize first, kwSize step, kwSize last) {
    return oxCreateColonObj(static_cast<double>(first), static_cast<double>(step),
                            static_cast<double>(last));
}

void reference(benchmark::State &state, kwSize m, const Make &make) {
    oxArray *a = square(m);
    Subs s = make(m);
    for (auto _ : state) {
        oxArray *b = oxSubscriptedReference(a, s.size(), s.data());
        benchmark::DoNotOptimize(oxGetData(b));
        oxDestroyArray(b);
    }
    destroy(s);
    oxDestroyArray(a);
}

void limit(benchmark::State &state, kwSize m, const Make &make) {
    oxArray *a = square(m);
    Subs s = make(m);
    oxArray *b = oxSubscriptedReference(a, s.size(), s.data());
    const kwSize bytes = oxGetNumberOfElements(b) * sizeof(double);
    for (auto _ : state) {
        std::memcpy(oxGetData(b), oxGetData(a), bytes);
        benchmark::ClobberMemory();
    }
    destroy(s);
    oxDestroyArray(b);
    oxDestroyArray(a);
}

// A(i, j) by scalars that stay in the first cache; time is for 1024 of them.
void elements(benchmark::State &state) {
    oxArray *a = square(500), *positions = random_positions(500, 64);
    std::vector<oxArray *> subs;
    for (kwSize k = 0; k < 2048; ++k) subs.push_back(oxCreateDoubleScalar(oxGetPr(positions)[k]));
    for (auto _ : state)
        for (kwSize k = 0; k < 2048; k += 2) {
            const oxArray *s[2] = {subs[k % 64], subs[k % 64 + 1]};
            oxArray *b = oxSubscriptedReference(a, 2, s);
            benchmark::DoNotOptimize(oxGetPr(b));
            oxDestroyArray(b);
        }
    for (oxArray *x : subs) oxDestroyArray(x);
    oxDestroyArray(positions);
    oxDestroyArray(a);
}

void elements_loads(benchmark::State &state) {
    oxArray *a = square(500), *positions = random_positions(250000, 1024);
    for (auto _ : state)
        for (kwSize k = 0; k < 1024; ++k)
            benchmark::DoNotOptimize(oxGetPr(a)[static_cast<kwSize>(oxGetPr(positions)[k]) - 1]);
    oxDestroyArray(positions);
    oxDestroyArray(a);
}

const int registered = [] {
    const struct {
        const char *name;
        Make make;
    } cases[] = {
        {"ref_ranges",
         [](kwSize m) {
             return Subs{range(m / 4, 1, m / 4 + m / 2), range(m / 4, 1, m / 4 + m / 2)};
         }},
        {"ref_random",
         [](kwSize m) {
             return Subs{random_positions(m, m / 2), random_positions(m, m / 2)};
         }},
        {"ref_strided",
         [](kwSize m) {
             return Subs{range(1, 2, m), range(2, 2, m)};
         }},
        {"ref_columns",
         [](kwSize m) {
             return Subs{colon(), random_positions(m, m / 2)};
         }},
        {"ref_mask", [](kwSize m) { return Subs{random_mask(m)}; }},
        {"ref_linear", [](kwSize m) { return Subs{random_positions(m * m, m * m / 4)}; }},
    };
    for (kwSize m : {kwSize{10}, kwSize{500}, kwSize{3000}})
        for (const auto &c : cases) {
            const std::string base = std::string(c.name) + "/" + std::to_string(m) + "/";
            benchmark::RegisterBenchmark((base + "limit_memcpy").c_str(), limit, m, c.make);
            benchmark::RegisterBenchmark((base + "ox").c_str(), reference, m, c.make);
        }
    benchmark::RegisterBenchmark("ref_element/1024/limit_load", elements_loads);
    benchmark::RegisterBenchmark("ref_element/1024/ox", elements);
    return 0;
}();

} // namespace
