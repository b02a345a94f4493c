// Joining double matrices, beside memcpy of the result's bytes into a warm block.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Pieces {
    Pieces(kwSize count, kwSize m, kwSize n) : bytes(count * m * n * sizeof(double)) {
        for (kwSize k = 0; k < count; ++k) {
            oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
            std::memset(oxGetPr(a), 1, m * n * sizeof(double));
            all.push_back(a);
        }
    }
    Pieces(const Pieces &) = delete;
    Pieces &operator=(const Pieces &) = delete;
    ~Pieces() {
        for (const oxArray *a : all) oxDestroyArray(const_cast<oxArray *>(a));
    }
    kwSize bytes;
    std::vector<const oxArray *> all;
};

oxClassID always_double(oxCatContext *, int, const oxArray **) { return oxDOUBLE_CLASS; }
const oxArray *as_it_is(oxCatContext *, oxClassID, const oxArray *a) { return a; }

void join(benchmark::State &state, int form, kwSize count, kwSize m, kwSize n) {
    Pieces p(count, m, n);
    oxCatContext context{always_double, nullptr};
    for (auto _ : state) {
        oxArray *c =
            oxCatenateDispatch(form, static_cast<int>(count), p.all.data(), as_it_is, &context);
        benchmark::DoNotOptimize(oxGetPr(c));
        oxDestroyArray(c);
    }
}

void limit(benchmark::State &state, int, kwSize count, kwSize m, kwSize n) {
    const kwSize elements = count * m * n;
    oxArray *a = oxCreateDoubleMatrix(elements, 1, oxREAL);
    oxArray *b = oxCreateDoubleMatrix(elements, 1, oxREAL);
    std::memset(oxGetPr(a), 1, elements * sizeof(double));
    std::memset(oxGetPr(b), 1, elements * sizeof(double));
    for (auto _ : state) {
        std::memcpy(oxGetPr(b), oxGetPr(a), elements * sizeof(double));
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

// One column of every piece after the other, into a warm block.
void plain(benchmark::State &state, int form, kwSize count, kwSize m, kwSize n) {
    Pieces p(count, m, n);
    std::vector<double> result(p.bytes / sizeof(double));
    const kwSize run = form == oxCAT_VERTICAL ? m : m * n, runs = m * n / run;
    for (auto _ : state) {
        double *to = result.data();
        for (kwSize j = 0; j < runs; ++j)
            for (const oxArray *a : p.all) {
                std::memcpy(to, oxGetPr(a) + j * run, run * sizeof(double));
                to += run;
            }
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] const bool registered = [] {
    const struct {
        const char *name;
        kwSize count, m, n;
    } cases[] = {
        {"2_of_256x256", 2, 256, 256},     {"2_of_2100x2100", 2, 2100, 2100},
        {"1000_of_1x1", 1000, 1, 1},       {"1000_of_10x10", 1000, 10, 10},
        {"1000_of_8x1100", 1000, 8, 1100},
    };
    for (const auto &c : cases)
        for (const int form : {oxCAT_HORIZONTAL, oxCAT_VERTICAL}) {
            const auto add = [&](const char *who, auto fn) {
                const std::string name = (form == oxCAT_VERTICAL ? "cat_below/" : "cat_beside/") +
                                         std::string(c.name) + '/' + who;
                benchmark::RegisterBenchmark(name.c_str(), fn, form, c.count, c.m, c.n);
            };
            add("limit_memcpy", limit);
            add("ox", join);
            add("plain_loop", plain);
        }
    return true;
}();

} // namespace
