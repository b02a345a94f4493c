// Sparse reference, assignment and transpose beside memcpy of the result's row indices and values.
#include <benchmark/benchmark.h>
#include <ox.h>
#include <sparse_cases.h>

#include <cstring>
#include <numeric>

namespace {

using namespace sparse_cases;

kwSize stored(const oxArray *a) { return oxGetNumNonZeroEl(a); }

void copy_limit(benchmark::State &state, std::size_t bytes) {
    std::vector<char> from(bytes + 1, 1), to(bytes + 1);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
}

oxArray *reference(const oxArray *a, const Request &r) {
    return oxSparseReference(a, r.rows.empty() ? nullptr : r.rows.data(), r.rows.size(),
                             r.columns.empty() ? nullptr : r.columns.data(), r.columns.size());
}

void run_reference(benchmark::State &state, const std::string &name, const Case &c) {
    const oxArray *a = matrix(name);
    const Request r = c.of(oxGetM(a), oxGetN(a));
    for (auto _ : state) {
        oxArray *b = reference(a, r);
        benchmark::DoNotOptimize(b);
        oxDestroyArray(b);
    }
}

// Copies as many bytes as the result stores.
void reference_limit(benchmark::State &state, const std::string &name, const Case &c) {
    const oxArray *a = matrix(name);
    oxArray *b = reference(a, c.of(oxGetM(a), oxGetN(a)));
    const kwSize nnz = stored(b);
    oxDestroyArray(b);
    copy_limit(state, nnz * 16);
}

// Reads every row index once, as a reference of few rows must.
void reading_limit(benchmark::State &state, const std::string &name) {
    const oxArray *a = matrix(name);
    for (auto _ : state)
        benchmark::DoNotOptimize(std::accumulate(oxGetIr(a), oxGetIr(a) + stored(a), kwIndex{0}));
}

void transpose(benchmark::State &state, const std::string &name) {
    for (auto _ : state) {
        oxArray *b = oxTranspose(matrix(name));
        benchmark::DoNotOptimize(b);
        oxDestroyArray(b);
    }
}

oxArray *column(kwSize m, const List &rows) {
    oxArray *c = make(m, 1, {0, rows.size()}, rows);
    oxSetArrayScope(c, 0); // not consumed
    return c;
}

// S(:, end + 1) = c, n times, with 50 elements each.
void append(benchmark::State &state, kwSize n) {
    const kwSize m = 100000;
    oxArray *c = column(m, random_column(m, 50)), *at = oxCreateDoubleScalar(1);
    for (auto _ : state) {
        oxArray *s = oxCreateSparse(m, 0, 1, oxREAL);
        for (kwSize j = 1; j <= n; ++j) {
            *oxGetPr(at) = static_cast<double>(j);
            spAss4(s, c, at);
        }
        oxDestroyArray(s);
    }
    state.SetItemsProcessed(static_cast<int64_t>(n) * state.iterations());
    oxDestroyArray(c);
    oxDestroyArray(at);
}

// Twenty columns all over r1e6 become longer, and in the next round shorter: the tails move.
void replace(benchmark::State &state) {
    oxArray *s = oxCreateDeepCopy(matrix("r1e6")), *at = oxCreateDoubleScalar(1);
    oxArray *content[] = {column(1000000, range(0, replaced[0])),
                          column(1000000, range(0, replaced[1]))};
    int64_t round = 0;
    for (auto _ : state) {
        for (int k = 0; k < 20; ++k) {
            *oxGetPr(at) = 5000 * k + 1;
            spAss4(s, content[round % 2], at);
        }
        ++round;
    }
    for (oxArray *x : {s, at, content[0], content[1]}) oxDestroyArray(x);
}

const bool registered = [] {
    const auto add = [](const std::string &name, auto run) {
        benchmark::RegisterBenchmark(("sparse_" + name).c_str(), run);
    };
    for (const std::string name : names) {
        for (const Case &c : references()) {
            const std::string path = std::string(c.name) + "/" + name;
            if (c.name == std::string("rows_100"))
                add(path + "/limit_read", [=](auto &s) { reading_limit(s, name); });
            else
                add(path + "/limit_memcpy", [=](auto &s) { reference_limit(s, name, c); });
            add(path + "/ox", [=](auto &s) { run_reference(s, name, c); });
        }
        add("transpose/" + name + "/limit_memcpy",
            [=](auto &s) { copy_limit(s, stored(matrix(name)) * 16); });
        add("transpose/" + name + "/ox", [=](auto &s) { transpose(s, name); });
    }
    for (const kwSize n : {1000, 10000}) {
        const std::string path = "append/" + std::to_string(n) + "_columns/";
        add(path + "limit_memcpy", [=](auto &s) { copy_limit(s, n * 50 * 16); });
        add(path + "ox", [=](auto &s) { append(s, n); });
    }
    add("replace_20/r1e6/limit_memcpy",
        [](benchmark::State &s) { copy_limit(s, stored(matrix("r1e6")) * 16 / 2 * 20); });
    add("replace_20/r1e6/ox", [](auto &s) { replace(s); });
    return true;
}();

} // namespace
