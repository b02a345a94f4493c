// Predicates: which arrays pass which, and the value kernels against plain loops.
#include <containers/value_tests.h>
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

namespace {

using Predicate = std::pair<std::string, bool (*)(const oxArray *)>;
// clang-format off
#define P(name) Predicate { #name, oxIs##name }
const Predicate predicates[] = {
    P(Vector), P(Vector2D), P(Scalar), P(CharVector), P(RealVector), P(RealOrInfVector),
    P(RealInfOrNaNVector), P(ComplexVector), P(IntVector), P(IntOrUIntVector),
    P(NumericInfOrNaNVector), P(SingleVector), P(FiniteNumericVector), P(RealScalar),
    P(RealOrInfScalar), P(IntScalar), P(FiniteDoubleArray), P(FiniteSingleArray),
    P(FiniteNumericArray), P(Double2dMatrix), P(Single2dMatrix), P(Real2dMatrix),
    P(Complex2dMatrix), P(FiniteNumeric2dMatrix), P(FiniteNumeric2dNonComplexMatrix)};
#undef P
// clang-format on

using Predicates = LayerTest;

TEST_F(Predicates, Table) {
    std::map<std::string, std::string> passes; // of arrays and of the names that stand for several
    for (const Record &r : records("containers/predicates.txt")) {
        SCOPED_TRACE(r.fields[0]);
        std::string expected = " ";
        std::istringstream in(r.fields[1]);
        for (std::string word; in >> word;)
            expected += passes.count(word) ? passes[word] : word + ' ';
        passes[r.fields[0]] = expected;
        if (r.fields[0].back() == '*') continue;
        const oxArray *a = arr(r.fields[0]);
        for (const auto &[name, holds] : predicates)
            EXPECT_EQ(holds(a), expected.find(' ' + name + ' ') != std::string::npos) << name;
    }
}

TEST_F(Predicates, OneArgumentIsOneInputAndAtMostOneOutput) {
    EXPECT_RAISES_ENTRY(FMAXLHS, oxCheckOneArg(2, 2));
    EXPECT_RAISES_ENTRY(FMAXRHS, oxCheckOneArg(1, 2));
    EXPECT_RAISES_ENTRY(FMINRHS, oxCheckOneArg(1, 0));
    oxCheckOneArg(0, 1);
}

TEST(ValueTests, KernelsAgreeWithPlainLoopsWhereverTheOddValueStands) {
    Random random(20);
    const double odd[] = {NAN, INFINITY, -INFINITY, 0.5, 0x1p31, -0x1p31 - 1, -0.0, 1e300};
    for (int round = 0; round < 3000; ++round) {
        const kwSize n = random.below(300);
        std::vector<double> x(n);
        for (double &v : x) v = static_cast<double>(random.between(-1000, 1000));
        if (n && round % 8) random.pick(x) = random.pick(odd);
        const std::vector<float> f(x.begin(), x.end());
        const auto is_finite = [](auto v) { return std::isfinite(v); };
        const auto whole = [](double v) {
            return v >= -0x1p31 && v < 0x1p31 && v == std::floor(v);
        };
        EXPECT_EQ(all_finite(x.data(), n), std::ranges::all_of(x, is_finite));
        EXPECT_EQ(all_finite(f.data(), n), std::ranges::all_of(f, is_finite));
        EXPECT_EQ(any_nan(x.data(), n), !std::ranges::all_of(x, [](double v) { return v == v; }));
        EXPECT_EQ(all_whole_within(x.data(), n, -0x1p31, 0x1p31 - 1),
                  std::ranges::all_of(x, whole));
    }
}

} // namespace
