// Assignments and deletions of double matrices beside memcpy (or, for one value, a fill) of the
// same bytes.
#include "subscripts.h"

#include <benchmark/benchmark.h>
#include <ox.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

oxArray *ones(kwSize m, kwSize n) {
    oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
    std::fill_n(oxGetPr(a), m * n, 1.0);
    return a;
}

oxArray *range(kwSize first, kwSize last) {
    return oxCreateColonObj(static_cast<double>(first), 1, static_cast<double>(last));
}

void assign(benchmark::State &state, kwSize m, const Make &make, bool value) {
    oxArray *a = ones(m, m);
    Subs s = make(m);
    oxArray *b = value ? oxCreateDoubleScalar(2) : oxSubscriptedReference(a, s.size(), s.data());
    for (auto _ : state) {
        oxSubscriptedAssignment(a, s.size(), s.data(), b);
        benchmark::ClobberMemory();
    }
    destroy(s);
    oxDestroyArray(b);
    oxDestroyArray(a);
}

void limit(benchmark::State &state, kwSize m, const Make &make, bool value) {
    oxArray *a = ones(m, m);
    Subs s = make(m);
    oxArray *b = oxSubscriptedReference(a, s.size(), s.data());
    const kwSize n = oxGetNumberOfElements(b);
    for (auto _ : state) {
        if (value)
            std::fill_n(oxGetPr(a), n, 2.0);
        else
            std::memcpy(oxGetPr(a), oxGetPr(b), n * sizeof(double));
        benchmark::ClobberMemory();
    }
    destroy(s);
    oxDestroyArray(b);
    oxDestroyArray(a);
}

// x(end+1) = v, n times.
void append(benchmark::State &state, kwSize n) {
    oxArray *at = oxCreateDoubleScalar(1), *v = oxCreateDoubleScalar(3);
    const oxArray *s[1] = {at};
    for (auto _ : state) {
        oxArray *x = oxCreateDoubleMatrix(0, 0, oxREAL);
        for (kwSize k = 1; k <= n; ++k) {
            *oxGetPr(at) = static_cast<double>(k);
            oxSubscriptedAssignment(x, 1, s, v);
        }
        benchmark::DoNotOptimize(oxGetPr(x));
        oxDestroyArray(x);
    }
    oxDestroyArray(at);
    oxDestroyArray(v);
}

void push_back(benchmark::State &state, kwSize n) {
    for (auto _ : state) {
        std::vector<double> x;
        for (kwSize k = 0; k < n; ++k) x.push_back(3);
        benchmark::DoNotOptimize(x.data());
    }
}

// A tenth of the columns, or of the elements, goes from a fresh copy; making it is not timed.
void erase(benchmark::State &state, kwSize m, bool linear) {
    oxArray *a = linear ? ones(1, m * m) : ones(m, m);
    oxArray *gone = linear ? random_positions(m * m, m * m / 10) : random_positions(m, m / 10),
            *all = colon();
    std::sort(oxGetPr(gone), oxGetPr(gone) + oxGetNumberOfElements(gone));
    for (auto _ : state) {
        state.PauseTiming();
        oxArray *x = oxDuplicateArray(a);
        state.ResumeTiming();
        const oxArray *s[2] = {linear ? gone : all, gone};
        oxSubscriptedDelete(x, linear ? 1 : 2, s);
        benchmark::DoNotOptimize(oxGetPr(x));
        state.PauseTiming();
        oxDestroyArray(x);
        state.ResumeTiming();
    }
    destroy({a, gone, all});
}

void erase_limit(benchmark::State &state, kwSize m) {
    oxArray *a = ones(m, m), *b = ones(m, m);
    for (auto _ : state) {
        state.PauseTiming();
        benchmark::ClobberMemory();
        state.ResumeTiming();
        std::memcpy(oxGetPr(b), oxGetPr(a), m * m / 10 * 9 * sizeof(double));
        benchmark::ClobberMemory();
        state.PauseTiming();
        state.ResumeTiming();
    }
    destroy({a, b});
}

const int registered = [] {
    const struct {
        const char *name, *limit;
        bool value;
        Make make;
    } cases[] = {
        {"assign_ranges", "limit_memcpy", false,
         [](kwSize m) {
             return Subs{range(m / 4, m / 4 + m / 2), range(m / 4, m / 4 + m / 2)};
         }},
        {"assign_random", "limit_memcpy", false,
         [](kwSize m) {
             return Subs{random_positions(m, m / 2), random_positions(m, m / 2)};
         }},
        {"assign_value", "limit_fill", true, [](kwSize) { return Subs{colon()}; }},
        {"assign_value_random", "limit_fill", true,
         [](kwSize m) {
             return Subs{random_positions(m, m / 2), random_positions(m, m / 2)};
         }},
    };
    for (kwSize m : {kwSize{500}, kwSize{3000}}) {
        for (const auto &c : cases) {
            const std::string base = std::string(c.name) + "/" + std::to_string(m) + "/";
            benchmark::RegisterBenchmark((base + c.limit).c_str(), limit, m, c.make, c.value);
            benchmark::RegisterBenchmark((base + "ox").c_str(), assign, m, c.make, c.value);
        }
        for (bool linear : {false, true}) {
            const std::string base =
                (linear ? "delete_elements/" : "delete_columns/") + std::to_string(m) + "/";
            benchmark::RegisterBenchmark((base + "limit_memcpy").c_str(), erase_limit, m);
            benchmark::RegisterBenchmark((base + "ox").c_str(), erase, m, linear);
        }
    }
    benchmark::RegisterBenchmark("append/1e5/push_back", push_back, 100000);
    benchmark::RegisterBenchmark("append/1e5/ox", append, 100000);
    return 0;
}();

} // namespace
