// Sparse assignment and deletion: the growth rule, statuses, operands of other kinds.
#include <sparse/assign.h>
#include <sparse/growth.h>
#include <support/suite.h>

namespace {

using SparseAssign = HostTest;

TEST_F(SparseAssign, GrowthRule) {
    const kwSize huge = kwSize{1} << 40;
    const struct {
        kwSize nzmax, q, delta, m, n, expected;
        bool possible;
    } rows[] = {
        {10, 2, 2, 100, 100, 20, true}, // five columns' worth of room
        {10, 2, 2, 4, 3, 12, true},     // but no more than all elements
        {max_size - 6, 1, 1, huge, huge, max_size - 1, true},
        {max_size - 5, 1, 1, huge, huge, max_size - 4, true}, // 2^48 - 1 refused: the exact need
        {max_size - 1, 1, 1, huge, huge, max_size, true},     // 2^48 - 1 accepted here
        {max_size, 1, 1, 1 << 20, 1 << 20, kwSize{1} << 40, true},
        {max_size, 1, 1, huge, huge, 0, false},
    };
    for (const auto &r : rows) {
        const Growth g = grown_capacity(r.nzmax, r.q, r.delta, r.m, r.n);
        EXPECT_EQ(g.possible, r.possible);
        EXPECT_EQ(g.possible ? g.nzmax : 0, r.expected);
    }
}

oxArray *random_sparse(Random &random, kwSize m, kwSize n) {
    oxArray *full = oxCreateDoubleMatrix(m, n, oxREAL);
    for (kwSize k = 0; k < m * n; ++k)
        if (random.chance(0.5)) oxGetPr(full)[k] = static_cast<double>(random.between(1, 9));
    return oxMustBeSparse(full);
}

// One column at a time and many in one rebuild leave the same elements and the same capacity.
TEST_F(SparseAssign, ManyColumnsAtOnceEqualOneByOne) {
    Random random{23};
    for (int round = 0; round < 200; ++round) {
        const kwSize m = 1 + random.below(6), n = 1 + random.below(6), count = 1 + random.below(30);
        oxArray *at_once = random_sparse(random, m, n), *one_by_one = oxCreateDeepCopy(at_once);
        oxArray *columns = oxCreateDoubleMatrix(1, count, oxREAL);
        oxArray *b = random_sparse(random, m, count);
        for (kwIndex k = 0; k < count; ++k) {
            oxGetPr(columns)[k] = static_cast<double>(1 + random.below(n + 9));
            const oxArray *to = oxCreateDoubleScalar(oxGetPr(columns)[k]);
            ASSERT_EQ(spAss4(one_by_one, oxSparseReference(b, nullptr, 0, &k, 1), to), spOK);
        }
        ASSERT_EQ(spAss4(at_once, b, columns), spOK);
        ASSERT_EQ(text(at_once), text(one_by_one)) << round;
        ASSERT_EQ(oxGetNzmax(at_once), oxGetNzmax(one_by_one)) << round;
    }
}

TEST_F(SparseAssign, StatusesAndWhatStaysAssigned) {
    oxArray *a = arr("sparse double 3x2: (0,0)=1"), *seven = oxCreateDoubleScalar(7);
    oxSetArrayScope(seven, 0); // no temporary, so that it is not consumed
    const auto assign = [&](const char *cols, oxArray *b) { return spAss4(a, b, arr(cols)); };
    for (const char *zero : {"0", "-1"}) EXPECT_EQ(assign(zero, seven), spZeroIndex);
    for (const char *bad : {"1.5", "NaN"}) EXPECT_EQ(assign(bad, seven), spBadIndex);
    EXPECT_EQ(assign("double 1x1: 1", arr("double 2x1: 1; 2")), spDimMismatch);
    EXPECT_EQ(assign("double 1x1: 1", arr("double 2x2x2: 1 2; 3 4 | 5 6; 7 8")), spDimMismatch);
    EXPECT_EQ(text(a), text(arr("sparse double 3x2: (0,0)=1")));
    // The columns before a bad index stay, and the array stays wide.
    EXPECT_EQ(assign("double 1x3: 4 0 1", seven), spZeroIndex);
    EXPECT_EQ(text(a), text(arr("sparse double 3x4: (0,0)=1 (0,3)=7 (1,3)=7 (2,3)=7")));
    EXPECT_EQ(assign("double 1x1: 4", oxCreateDoubleScalar(0)), spOK);
    EXPECT_EQ(oxGetNumNonZeroEl(a), 1u);
    oxDestroyArray(seven);
}

// An array that has room for something grows by the rule; one without gets what is assigned.
TEST_F(SparseAssign, CapacitiesThatCannotBe) {
    oxArray *a = oxCreateSparse(kwSize{1} << 61, 8, 1, oxREAL), *all = arr("char 1x1: ':'");
    oxArray *seven = oxCreateDoubleScalar(7), *first = arr("double 1x1: 1");
    oxSetArrayScope(seven, 0); // not consumed
    EXPECT_RAISES_ENTRY(FNOMEM, spAss4(a, seven, all));
    oxSetNzmax(a, 0);
    EXPECT_EQ(spAss4(a, seven, all), spTooLarge);
    oxSetNzmax(a, 0);
    EXPECT_RAISES("VELTRO:", "Indices are too large to convert to linear index.",
                  spAss4(a, seven, first));
    oxDestroyArray(seven);
}

TEST_F(SparseAssign, TargetsAndSourcesOfOtherKinds) {
    const struct {
        const char *target, *columns, *source, *expected;
    } rows[] = {
        {"double 2x2: 1 0; 0 2", "double 1x1: 1", "double 2x1: 0; 3",
         "sparse double 2x2: (1,0)=3 (1,1)=2"},
        {"sparse double 3x1", "double 1x1: 1", "double 1x3: 1 0 2",
         "sparse double 3x1: (0,0)=1 (2,0)=2"},
        {"sparse logical 2x1", "char 1x1: ':'", "double 1x1: 3",
         "sparse logical 2x1: (0,0)=1 (1,0)=1"},
        {"sparse double 2x2: (0,0)=1+2i (1,1)=3+0i", "double 1x1: 1", "double 1x1: 0",
         "sparse double 2x2: (1,1)=3"},
    };
    for (const auto &r : rows) {
        oxArray *a = arr(r.target);
        ASSERT_EQ(spAss4(a, arr(r.source), arr(r.columns)), spOK) << r.target;
        EXPECT_TRUE(oxAreMatricesEqual(a, arr(r.expected))) << text(a) << " is not " << r.expected;
    }
    oxArray *a = arr("sparse double 2x2: (0,0)=1 (1,0)=2");
    ASSERT_EQ(spAss4(a, a, arr("double 1x2: 2 1")), spOK);
    EXPECT_EQ(text(a), text(arr("sparse double 2x2: (0,1)=1 (1,1)=2")));
}

TEST_F(SparseAssign, FailingAllocations) {
    const auto one_more = [](const Arrays &in, auto assign) {
        oxArray *b = oxCreateDoubleMatrix(1, 1, oxCOMPLEX); // a temporary, which success consumes
        *oxGetPr(b) = *oxGetPi(b) = 1;
        return assign(in[0], b, in[1]) == spOK;
    };
    const auto fails = [](std::function<bool(const Arrays &)> act) {
        sweep({.name = "assignment",
               .inputs = {"sparse double 3x2: (0,0)=1", "double 1x1: 4", "double 1x2: 1 2",
                          "double 3x1: 1; 0; 2"},
               .act = act,
               .bare = false,
               .changes_inputs = true});
    };
    for (auto *assign : {spAss4, spAss5, spAss6}) {
        fails([&](const Arrays &in) { return one_more(in, assign); });
        fails([&](const Arrays &in) { return assign(in[0], nullptr, in[2]) == spOK; });
    }
    fails([&](const Arrays &in) {
        return one_more(in, [&](auto *a, auto *b, auto *i) { return spAss3(a, b, i, in[2]); });
    });
    fails([&](const Arrays &in) { // a full target
        return one_more(in, [&](auto *, auto *b, auto *j) { return spAss4(in[3], b, j); });
    });
}

} // namespace
