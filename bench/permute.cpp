// Permutes of 3-D and 4-D double arrays beside memcpy of the same bytes into a warm block.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using Sizes = std::vector<kwSize>;

oxArray *filled(const Sizes &dims) {
    oxArray *a = oxCreateNumericArray(dims.size(), dims.data(), oxDOUBLE_CLASS, oxREAL);
    std::memset(oxGetData(a), 1, oxGetNumberOfElements(a) * 8);
    return a;
}

oxArray *order_of(const std::string &digits) {
    oxArray *p = oxCreateDoubleMatrix(1, digits.size(), oxREAL);
    for (std::size_t k = 0; k < digits.size(); ++k) oxGetPr(p)[k] = digits[k] - '0';
    return p;
}

void limit(benchmark::State &state, const Sizes &dims) {
    oxArray *a = filled(dims), *b = filled(dims);
    for (auto _ : state) {
        std::memcpy(oxGetData(b), oxGetData(a), oxGetNumberOfElements(a) * 8);
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

void permute(benchmark::State &state, const Sizes &dims, const std::string &order) {
    oxArray *a = filled(dims), *p = order_of(order);
    const oxArray *prhs[] = {a, p};
    for (auto _ : state) {
        oxArray *b;
        oxPermuteFcn(1, &b, 2, prhs);
        benchmark::DoNotOptimize(oxGetData(b));
        oxDestroyArray(b);
    }
    oxDestroyArray(a);
    oxDestroyArray(p);
}

// One element after the other in the order of the result.
void plain(benchmark::State &state, const Sizes &dims, const std::string &order) {
    oxArray *a = filled(dims), *b = filled(dims);
    const std::size_t r = dims.size();
    Sizes extent(r), from(r);
    for (std::size_t k = 0; k < r; ++k) {
        const auto p = static_cast<std::size_t>(order[k] - '1');
        extent[k] = dims[p];
        from[k] = 1;
        for (std::size_t j = 0; j < p; ++j) from[k] *= dims[j];
    }
    for (auto _ : state) {
        Sizes at(r, 0);
        std::size_t src = 0;
        const double *s = oxGetPr(a);
        double *d = oxGetPr(b);
        for (std::size_t k = 0; k < r;) {
            for (std::size_t i = 0; i < extent[0]; ++i) *d++ = s[src + i * from[0]];
            for (k = 1; k < r; ++k) {
                src += from[k];
                if (++at[k] < extent[k]) break;
                src -= from[k] * extent[k];
                at[k] = 0;
            }
        }
        benchmark::ClobberMemory();
    }
    oxDestroyArray(a);
    oxDestroyArray(b);
}

const int registered = [] {
    const auto add = [](kwSize edge, const std::string &order) {
        const Sizes dims(order.size(), edge);
        const std::string base = "permute_" + order + "/" + std::to_string(edge) + "/";
        benchmark::RegisterBenchmark((base + "limit_memcpy").c_str(), limit, dims);
        benchmark::RegisterBenchmark((base + "ox").c_str(), permute, dims, order);
        benchmark::RegisterBenchmark((base + "plain_loop").c_str(), plain, dims, order);
    };
    for (kwSize edge : {kwSize{8}, kwSize{48}, kwSize{200}})
        for (const char *order : {"213", "132", "321", "231", "312"}) add(edge, order);
    for (kwSize edge : {kwSize{16}, kwSize{56}})
        for (const char *order : {"4321", "3412", "1432"}) add(edge, order);
    return 0;
}();

} // namespace
