// Sparse reference, assignment and transpose beside memcpy of the result's row indices and values.
//
// grid: the 5-point pattern on a 1000-by-1000 grid, five neighbouring elements a column of 1e6.
// r1e6, r1e7: random 1e6-by-1e5 with that many elements. They are made when a case first needs one.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

using List = std::vector<kwIndex>;

uint64_t random_bits() {
    static uint64_t x = 88172645463325252u;
    x ^= x << 13;
    x ^= x >> 7;
    return x ^= x << 17;
}

oxArray *make(kwSize m, kwSize n, const List &jc, const List &ir) {
    oxArray *a = oxCreateSparse(m, n, ir.size(), oxREAL);
    std::copy(jc.begin(), jc.end(), oxGetJc(a));
    std::copy(ir.begin(), ir.end(), oxGetIr(a));
    for (std::size_t k = 0; k < ir.size(); ++k) oxGetPr(a)[k] = 1 + static_cast<double>(k % 7);
    return a;
}

oxArray *make_grid(kwSize side) {
    const kwSize n = side * side;
    List jc{0}, ir;
    for (kwSize j = 0; j < n; ++j) {
        const kwSize x = j % side, y = j / side;
        if (y > 0) ir.push_back(j - side);
        if (x > 0) ir.push_back(j - 1);
        ir.push_back(j);
        if (x + 1 < side) ir.push_back(j + 1);
        if (y + 1 < side) ir.push_back(j + side);
        jc.push_back(ir.size());
    }
    return make(n, n, jc, ir);
}

List random_column(kwSize m, std::size_t count) {
    List rows(count);
    for (kwIndex &r : rows) r = random_bits() % m;
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

oxArray *make_random(kwSize m, kwSize n, std::size_t nnz) {
    List jc{0}, ir;
    for (kwSize j = 0; j < n; ++j) {
        const List rows = random_column(m, nnz / n);
        ir.insert(ir.end(), rows.begin(), rows.end());
        jc.push_back(ir.size());
    }
    return make(m, n, jc, ir);
}

const oxArray *matrix(const std::string &name) {
    static oxArray *grid = nullptr, *r1e6 = nullptr, *r1e7 = nullptr;
    oxArray *&a = name == "grid" ? grid : name == "r1e6" ? r1e6 : r1e7;
    if (!a)
        a = name == "grid" ? make_grid(1000)
                           : make_random(1000000, 100000, name == "r1e6" ? 1000000 : 10000000);
    return a;
}

List range(kwIndex first, std::size_t count) {
    List list(count);
    std::iota(list.begin(), list.end(), first);
    return list;
}

List permutation(std::size_t count) {
    List list = range(0, count);
    for (std::size_t k = count; k > 1; --k) std::swap(list[k - 1], list[random_bits() % k]);
    return list;
}

kwSize stored(const oxArray *a) { return oxGetNumNonZeroEl(a); }

void copy_limit(benchmark::State &state, std::size_t bytes) {
    std::vector<char> from(bytes + 1, 1), to(bytes + 1);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
}

// One reference; empty lists mean all rows or all columns.
struct Request {
    List rows, columns;

    oxArray *of(const oxArray *a) const {
        return oxSparseReference(a, rows.empty() ? nullptr : rows.data(), rows.size(),
                                 columns.empty() ? nullptr : columns.data(), columns.size());
    }
};

using MakeRequest = std::function<Request(kwSize m, kwSize n)>;

void reference(benchmark::State &state, const std::string &name, const MakeRequest &request) {
    const oxArray *a = matrix(name);
    const Request r = request(oxGetM(a), oxGetN(a));
    for (auto _ : state) {
        oxArray *b = r.of(a);
        benchmark::DoNotOptimize(b);
        oxDestroyArray(b);
    }
}

// Copies as many bytes as the result stores.
void reference_limit(benchmark::State &state, const std::string &name, const MakeRequest &request) {
    const oxArray *a = matrix(name);
    oxArray *b = request(oxGetM(a), oxGetN(a)).of(a);
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
    oxArray *content[] = {column(1000000, range(0, 12)), column(1000000, range(0, 10))};
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
    const MakeRequest all = [](kwSize, kwSize) { return Request{}; };
    const std::pair<const char *, MakeRequest> requests[] = {
        {"columns_range",
         [](kwSize, kwSize n) {
             return Request{{}, range(n / 3, n / 10)};
         }},
        {"columns_random",
         [](kwSize, kwSize n) {
             List columns = permutation(n);
             columns.resize(n / 10);
             return Request{{}, columns};
         }},
        {"block_100x100",
         [](kwSize m, kwSize n) {
             List rows = range(0, 100);
             for (kwIndex &r : rows) r = r * 9973 % m;
             std::sort(rows.begin(), rows.end());
             return Request{rows, range(n / 2, 100)};
         }},
        {"rows_permuted",
         [](kwSize m, kwSize) {
             return Request{permutation(m), {}};
         }},
        {"rows_repeated",
         [](kwSize m, kwSize) {
             List rows = permutation(m);
             rows.resize(m / 2);
             for (std::size_t k = 0; k + 1 < rows.size(); k += 2) rows[k] = rows[k + 1];
             return Request{rows, {}};
         }},
    };
    for (const std::string name : {"grid", "r1e6", "r1e7"}) {
        for (const auto &[operation, request] : requests) {
            const std::string path = operation + ("/" + name);
            add(path + "/limit_memcpy",
                [=, r = request](benchmark::State &s) { reference_limit(s, name, r); });
            add(path + "/ox", [=, r = request](benchmark::State &s) { reference(s, name, r); });
        }
        add("rows_100/" + name + "/limit_read", [=](auto &s) { reading_limit(s, name); });
        add("rows_100/" + name + "/ox", [=](auto &s) {
            reference(s, name, [](kwSize m, kwSize) {
                List rows = range(0, 100);
                for (kwIndex &r : rows) r = r * 9973 % m;
                std::sort(rows.begin(), rows.end());
                return Request{rows, {}};
            });
        });
        add("transpose/" + name + "/limit_memcpy", [=](auto &s) { reference_limit(s, name, all); });
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
