// What else does the work of sparse.cpp: hand-written loops, and Eigen and CHOLMOD where they are
// installed.
#include <benchmark/benchmark.h>
#include <sparse_cases.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

#ifdef OX_BENCH_EIGEN
#include <Eigen/SparseCore>
#endif
#ifdef OX_BENCH_CHOLMOD
#include <suitesparse/cholmod.h>
#endif

namespace {

using namespace sparse_cases;

// The vectors of a matrix.
struct Csc {
    explicit Csc(const oxArray *a)
        : m(oxGetM(a)), n(oxGetN(a)), jc(oxGetJc(a)), ir(oxGetIr(a)), pr(oxGetPr(a)) {}
    kwSize m, n;
    kwIndex *jc, *ir;
    double *pr;
};

// A result of so many elements and columns.
struct Result {
    Result(kwSize columns, kwSize nnz)
        : jc(new kwIndex[columns + 1]), ir(new kwIndex[nnz]), pr(new double[nnz]) {
        jc[0] = 0;
    }
    std::unique_ptr<kwIndex[]> jc, ir;
    std::unique_ptr<double[]> pr;
};

void hand_columns(const Csc &a, const Request &r) {
    kwSize nnz = 0;
    for (const kwIndex j : r.columns) nnz += a.jc[j + 1] - a.jc[j];
    const Result b(r.columns.size(), nnz);
    kwIndex at = 0, c = 0;
    for (const kwIndex j : r.columns) {
        for (kwIndex k = a.jc[j]; k < a.jc[j + 1]; ++k, ++at)
            b.ir[at] = a.ir[k], b.pr[at] = a.pr[k];
        b.jc[++c] = at;
    }
    benchmark::DoNotOptimize(b.pr.get());
}

// One bit a row, one scan of the row indices; the rows increase.
void hand_few_rows(const Csc &a, const Request &r) {
    List bits(a.m / 64 + 1);
    for (const kwIndex i : r.rows) bits[i / 64] |= kwIndex{1} << i % 64;
    const auto jc = std::make_unique<kwIndex[]>(a.n + 1);
    List ir;
    std::vector<double> pr;
    for (kwIndex j = 0; j < a.n; ++j) {
        for (kwIndex k = a.jc[j]; k < a.jc[j + 1]; ++k) {
            if (!(bits[a.ir[k] / 64] >> a.ir[k] % 64 & 1)) continue;
            const auto at = std::lower_bound(r.rows.begin(), r.rows.end(), a.ir[k]);
            ir.push_back(static_cast<kwIndex>(at - r.rows.begin()));
            pr.push_back(a.pr[k]);
        }
        jc[j + 1] = ir.size();
    }
    benchmark::DoNotOptimize(ir.data());
}

// A map of the rows, and insertion sort inside the columns.
void hand_permuted_rows(const Csc &a, const Request &r) {
    List to(a.m);
    for (std::size_t k = 0; k < r.rows.size(); ++k) to[r.rows[k]] = k;
    const Result b(a.n, a.jc[a.n]);
    for (kwIndex j = 0; j < a.n; ++j) {
        for (kwIndex k = a.jc[j]; k < a.jc[j + 1]; ++k) {
            const kwIndex row = to[a.ir[k]];
            kwIndex at = k;
            for (; at > a.jc[j] && b.ir[at - 1] > row; --at)
                b.ir[at] = b.ir[at - 1], b.pr[at] = b.pr[at - 1];
            b.ir[at] = row;
            b.pr[at] = a.pr[k];
        }
        b.jc[j + 1] = a.jc[j + 1];
    }
    benchmark::DoNotOptimize(b.pr.get());
}

void hand_transpose(const Csc &a) {
    const kwSize nnz = a.jc[a.n];
    const Result b(a.m + 1, nnz);
    std::fill_n(b.jc.get(), a.m + 2, 0);
    for (kwIndex k = 0; k < nnz; ++k) ++b.jc[a.ir[k] + 2];
    for (kwIndex i = 2; i < a.m + 2; ++i) b.jc[i] += b.jc[i - 1];
    for (kwIndex j = 0; j < a.n; ++j)
        for (kwIndex k = a.jc[j]; k < a.jc[j + 1]; ++k) {
            const kwIndex at = b.jc[a.ir[k] + 1]++;
            b.ir[at] = j;
            b.pr[at] = a.pr[k];
        }
    benchmark::DoNotOptimize(b.pr.get());
}

// Vectors that double, 50 elements a column.
void hand_append(kwSize columns) {
    const List rows = random_column(100000, 50);
    const std::vector<double> values(rows.size(), 1);
    List jc{0}, ir;
    std::vector<double> pr;
    for (kwSize j = 0; j < columns; ++j) {
        ir.insert(ir.end(), rows.begin(), rows.end());
        pr.insert(pr.end(), values.begin(), values.end());
        jc.push_back(ir.size());
    }
    benchmark::DoNotOptimize(pr.data());
}

// Moves the tail for each of 20 columns all over the matrix.
void hand_replace(Csc &a, kwIndex count) {
    for (kwIndex c = 0; c < 20; ++c) {
        const kwIndex j = 5000 * c, old = a.jc[j + 1] - a.jc[j], tail = a.jc[a.n] - a.jc[j + 1];
        std::memmove(a.ir + a.jc[j] + count, a.ir + a.jc[j + 1], tail * 8);
        std::memmove(a.pr + a.jc[j] + count, a.pr + a.jc[j + 1], tail * 8);
        for (kwIndex k = 0; k < count; ++k) a.ir[a.jc[j] + k] = k;
        for (kwIndex k = j + 1; k <= a.n; ++k) a.jc[k] += count - old;
    }
    benchmark::ClobberMemory();
}

void run(benchmark::State &state, const std::function<void()> &once) {
    for (auto _ : state) once();
}

#ifdef OX_BENCH_EIGEN
using EigenSparse = Eigen::SparseMatrix<double, Eigen::ColMajor, int64_t>;

EigenSparse to_eigen(const Csc &a) {
    return Eigen::Map<const EigenSparse>(
        static_cast<Eigen::Index>(a.m), static_cast<Eigen::Index>(a.n),
        static_cast<Eigen::Index>(a.jc[a.n]), reinterpret_cast<const int64_t *>(a.jc),
        reinterpret_cast<const int64_t *>(a.ir), a.pr);
}

void eigen_append(Eigen::Index columns) {
    const List rows = random_column(100000, 50);
    EigenSparse s(100000, columns);
    for (Eigen::Index j = 0; j < columns; ++j) {
        s.startVec(j);
        for (const kwIndex i : rows) s.insertBack(static_cast<Eigen::Index>(i), j) = 1;
    }
    s.finalize();
    benchmark::DoNotOptimize(s.valuePtr());
}
#endif

#ifdef OX_BENCH_CHOLMOD
cholmod_common *cholmod() {
    static cholmod_common *common = [] {
        static cholmod_common c;
        cholmod_l_start(&c);
        return &c;
    }();
    return common;
}

cholmod_sparse to_cholmod(const Csc &a) {
    cholmod_sparse s{};
    s.nrow = a.m, s.ncol = a.n, s.nzmax = a.jc[a.n];
    s.p = a.jc, s.i = a.ir, s.x = a.pr;
    s.itype = CHOLMOD_LONG, s.xtype = CHOLMOD_REAL, s.dtype = CHOLMOD_DOUBLE;
    s.sorted = s.packed = 1;
    return s;
}

void cholmod_reference(benchmark::State &state, const Csc &a, Request r) {
    cholmod_sparse s = to_cholmod(a);
    const auto list = [](List &l) {
        return l.empty() ? nullptr : reinterpret_cast<SuiteSparse_long *>(l.data());
    };
    const auto count = [](const List &l) {
        return l.empty() ? -1 : static_cast<SuiteSparse_long>(l.size());
    };
    for (auto _ : state) {
        cholmod_sparse *b = cholmod_l_submatrix(&s, list(r.rows), count(r.rows), list(r.columns),
                                                count(r.columns), 1, 1, cholmod());
        benchmark::DoNotOptimize(b);
        cholmod_l_free_sparse(&b, cholmod());
    }
}

void cholmod_transpose_of(benchmark::State &state, const Csc &a) {
    cholmod_sparse s = to_cholmod(a);
    for (auto _ : state) {
        cholmod_sparse *b = cholmod_l_transpose(&s, 1, cholmod());
        benchmark::DoNotOptimize(b);
        cholmod_l_free_sparse(&b, cholmod());
    }
}
#endif

void (*hand_loop(const std::string &operation))(const Csc &, const Request &) {
    if (operation.starts_with("columns")) return hand_columns;
    if (operation == "rows_100") return hand_few_rows;
    return operation == "rows_permuted" ? hand_permuted_rows : nullptr;
}

const bool registered = [] {
    const auto add = [](const std::string &name, auto f) {
        benchmark::RegisterBenchmark(("sparse_" + name).c_str(), f);
    };
    for (const std::string name : names) {
        for (const Case &c : references()) {
            const std::string path = std::string(c.name) + "/" + name + "/";
            if (const auto hand = hand_loop(c.name))
                add(path + "hand_loop", [=](benchmark::State &s) {
                    const Csc a(matrix(name));
                    const Request r = c.of(a.m, a.n);
                    run(s, [&] { hand(a, r); });
                });
#ifdef OX_BENCH_CHOLMOD
            add(path + "cholmod", [=](benchmark::State &s) {
                const Csc a(matrix(name));
                cholmod_reference(s, a, c.of(a.m, a.n));
            });
#endif
        }
        add("transpose/" + name + "/hand_counting", [=](benchmark::State &s) {
            const Csc a(matrix(name));
            run(s, [&] { hand_transpose(a); });
        });
#ifdef OX_BENCH_CHOLMOD
        add("transpose/" + name + "/cholmod",
            [=](benchmark::State &s) { cholmod_transpose_of(s, Csc(matrix(name))); });
#endif
#ifdef OX_BENCH_EIGEN
        add("transpose/" + name + "/eigen", [=](benchmark::State &s) {
            const EigenSparse a = to_eigen(Csc(matrix(name)));
            run(s, [&] { benchmark::DoNotOptimize(EigenSparse(a.transpose()).valuePtr()); });
        });
        add("columns_range/" + name + "/eigen", [=](benchmark::State &s) {
            const EigenSparse a = to_eigen(Csc(matrix(name)));
            run(s, [&] {
                const EigenSparse b = a.middleCols(a.cols() / 3, a.cols() / 10);
                benchmark::DoNotOptimize(b.valuePtr());
            });
        });
#endif
    }
    for (const int n : {1000, 10000}) {
        const std::string path = "append/" + std::to_string(n) + "_columns/";
        add(path + "hand_doubling",
            [=](benchmark::State &s) { run(s, [n] { hand_append(static_cast<kwSize>(n)); }); });
#ifdef OX_BENCH_EIGEN
        add(path + "eigen", [=](benchmark::State &s) { run(s, [n] { eigen_append(n); }); });
#endif
    }
    add("replace_20/r1e6/hand_memmove", [](benchmark::State &s) {
        Csc a(matrix("r1e6"));
        const kwSize nnz = a.jc[a.n];
        List jc(a.jc, a.jc + a.n + 1), ir(a.ir, a.ir + nnz);
        std::vector<double> pr(a.pr, a.pr + nnz);
        ir.resize(nnz + 20 * replaced[0]);
        pr.resize(ir.size());
        a.jc = jc.data(), a.ir = ir.data(), a.pr = pr.data();
        kwIndex round = 0;
        run(s, [&] { hand_replace(a, replaced[round++ % 2]); });
    });
    return true;
}();

} // namespace
