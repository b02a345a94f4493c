// The sparse matrices and requests that are measured.
#include <sparse_cases.h>

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace sparse_cases {
namespace {

uint64_t random_bits() {
    static uint64_t x = 88172645463325252u;
    x ^= x << 13;
    x ^= x >> 7;
    return x ^= x << 17;
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

oxArray *make_random(kwSize m, kwSize n, std::size_t nnz) {
    List jc{0}, ir;
    for (kwSize j = 0; j < n; ++j) {
        const List rows = random_column(m, nnz / n);
        ir.insert(ir.end(), rows.begin(), rows.end());
        jc.push_back(ir.size());
    }
    return make(m, n, jc, ir);
}

List permutation(std::size_t count) {
    List list = range(0, count);
    for (std::size_t k = count; k > 1; --k) std::swap(list[k - 1], list[random_bits() % k]);
    return list;
}

List hundred_rows(kwSize m) {
    List rows = range(0, 100);
    for (kwIndex &r : rows) r = r * 9973 % m;
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace

const std::vector<Case> &references() {
    static const std::vector<Case> list{
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
             return Request{hundred_rows(m), range(n / 2, 100)};
         }},
        {"rows_100",
         [](kwSize m, kwSize) {
             return Request{hundred_rows(m), {}};
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
    return list;
}

List random_column(kwSize m, std::size_t count) {
    List rows(count);
    for (kwIndex &r : rows) r = random_bits() % m;
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

List range(kwIndex first, std::size_t count) {
    List list(count);
    std::iota(list.begin(), list.end(), first);
    return list;
}

oxArray *make(kwSize m, kwSize n, const List &jc, const List &ir) {
    oxArray *a = oxCreateSparse(m, n, ir.size(), oxREAL);
    std::copy(jc.begin(), jc.end(), oxGetJc(a));
    std::copy(ir.begin(), ir.end(), oxGetIr(a));
    for (std::size_t k = 0; k < ir.size(); ++k) oxGetPr(a)[k] = 1 + static_cast<double>(k % 7);
    return a;
}

const oxArray *matrix(const std::string &name) {
    static oxArray *grid = nullptr, *r1e6 = nullptr, *r1e7 = nullptr;
    oxArray *&a = name == "grid" ? grid : name == "r1e6" ? r1e6 : r1e7;
    if (!a)
        a = name == "grid" ? make_grid(1000)
                           : make_random(1000000, 100000, name == "r1e6" ? 1000000 : 10000000);
    return a;
}

} // namespace sparse_cases
