// Predicates: which arrays pass which, and the value kernels against plain loops.
#include <containers/value_tests.h>
#include <support/suite.h>

#include <algorithm>
#include <cmath>

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

// What every finite double of two dimensions is, and its real vectors of whole numbers.
const std::string finite = "FiniteDoubleArray FiniteNumericArray Double2dMatrix Complex2dMatrix "
                           "FiniteNumeric2dMatrix ";
const std::string real = finite + "Real2dMatrix FiniteNumeric2dNonComplexMatrix ";
const std::string any_vector = "Vector Vector2D NumericInfOrNaNVector ";
const std::string real_vector = real + any_vector +
                                "RealVector RealOrInfVector RealInfOrNaNVector ComplexVector "
                                "FiniteNumericVector ";
const std::string whole_vector = real_vector + "IntOrUIntVector IntVector ";
const std::string single = "FiniteSingleArray FiniteNumericArray Single2dMatrix "
                           "FiniteNumeric2dMatrix FiniteNumeric2dNonComplexMatrix ";

const std::pair<const char *, std::string> rows_of_table[] = {
    {"double 0x0", "Vector"},
    {"double 1x0", "Vector Vector2D"},
    {"double 3x0x2", ""},
    {"1 2; 3 4", real},
    {"double 1x1x5: 1 | 2 | 3 | 4 | 5",
     "Vector RealVector RealOrInfVector RealInfOrNaNVector ComplexVector IntVector IntOrUIntVector "
     "NumericInfOrNaNVector FiniteNumericVector FiniteDoubleArray FiniteNumericArray"},
    {"7", whole_vector + "Scalar RealScalar RealOrInfScalar IntScalar"},
    {"-0.5", real_vector + "Scalar RealScalar RealOrInfScalar"},
    {"Inf", any_vector + "Scalar RealOrInfVector RealInfOrNaNVector RealOrInfScalar"},
    {"NaN", any_vector + "Scalar RealInfOrNaNVector"},
    {"1 2 3000000000", real_vector + "IntOrUIntVector"},
    {"-2147483648 2147483647", whole_vector},
    {"-1 4294967295", real_vector + "IntOrUIntVector"},
    {"1+2i 3", finite + any_vector + "ComplexVector FiniteNumericVector"},
    {"1+NaN*i", any_vector + "Scalar"},
    {"single 1x2: 1 2.5", single + any_vector + "SingleVector FiniteNumericVector"},
    {"single 1x2: 1+2i 3", "FiniteSingleArray FiniteNumericArray Single2dMatrix "
                           "FiniteNumeric2dMatrix SingleVector FiniteNumericVector " +
                               any_vector},
    // Deliberate: only double elements are looked at here.
    {"single 2x2: 1 2; 3 NaN", "FiniteNumeric2dNonComplexMatrix"},
    {"int8 1x2: 1 2", any_vector + "FiniteNumericVector FiniteNumericArray FiniteNumeric2dMatrix "
                                   "FiniteNumeric2dNonComplexMatrix"},
    {"logical 1x1: 1", "Vector Vector2D Scalar"},
    {"char 1x2: 'ab'", "Vector Vector2D CharVector"},
    {"char 2x3: 'abc'; 'def'", ""},
    {"sparse double 1x3: (0,0)=1", "Vector Vector2D"},
    {"lazy 1x3: 4", "Vector Vector2D"},
};

using Predicates = LayerTest;

TEST_F(Predicates, Table) {
    for (const auto &[array, passes] : rows_of_table) {
        SCOPED_TRACE(array);
        const oxArray *a = arr(array);
        const std::string expected = ' ' + passes + ' ';
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
