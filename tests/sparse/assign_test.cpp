// Sparse assignment and deletion: the growth rule, statuses, operands of other kinds.
#include <sparse/assign.h>
#include <sparse/growth.h>

#include <support/calls.h>

#include "random_sparse.h"

namespace {

using SparseAssign = HostTest;

TEST_F(SparseAssign, GrowthRule) {
    const kwSize huge = kwSize{1} << 40;
    // capacity, elements now and to come, rows and columns; the answer, 0 where none is possible
    const kwSize rows[][6] = {
        {10, 2, 2, 100, 100, 20}, // five columns' worth of room
        {10, 2, 2, 4, 3, 12},     // but no more than all elements
        {max_size - 6, 1, 1, huge, huge, max_size - 1},
        {max_size - 5, 1, 1, huge, huge, max_size - 4}, // 2^48 - 1 refused: the exact need
        {max_size - 1, 1, 1, huge, huge, max_size},     // 2^48 - 1 accepted here
        {max_size, 1, 1, 1 << 20, 1 << 20, kwSize{1} << 40},
        {max_size, 1, 1, huge, huge, 0},
    };
    for (const auto &[nzmax, q, delta, m, n, expected] : rows) {
        const Growth g = grown_capacity(nzmax, q, delta, m, n);
        EXPECT_EQ(g.possible ? g.nzmax : 0, expected);
    }
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

TEST_F(SparseAssign, StatusesAndResults) {
    const std::string a = "sparse double 3x2: (0,0)=1", filled = "(0,0)=1 (0,3)=1 (1,3)=1 (2,3)=1",
                      zero = std::to_string(spZeroIndex), bad = std::to_string(spBadIndex),
                      sides = std::to_string(spDimMismatch);
    // Target, source and subscripts; the target is left, or a status. Success consumes a temporary.
    using Assign = std::function<spStatus(const Arrays &in, oxArray *b)>;
    const auto rows = [](const Assign &assign, const std::vector<Row> &all) {
        const auto call = [&](const Arrays &in) {
            oxArray *b = arr(text(in[1])); // shares nothing
            const spStatus status = assign(in, b);
            if (status == spOK) return in[0];
            oxDestroyArray(b);
            return oxCreateDoubleScalar(status);
        };
        expect_rows(call, all);
    };
    rows([](auto &in, auto *b) { return spAss3(in[0], b, in[2], in[3]); },
         {{{a, "1+1i", "4", "1 2"}, "sparse double 4x2: (0,0)=1+0i (3,0)=1+1i (3,1)=1+1i"},
          // Deliberate: an empty source grows the array, a scalar for nothing does not.
          {{a, "double 1x0", "4", "double 1x0"}, "sparse double 4x2: (0,0)=1"},
          {{a, "7", "4", "double 1x0"}, a}});
    rows([](auto &in, auto *b) { return spAss5(in[0], b, in[2]); },
         {{{a, "1+1i", "4"}, "sparse double 4x2: (0,0)=1+0i (3,0)=1+1i (3,1)=1+1i"}});
    rows([](auto &in, auto *b) { return spAss6(in[0], b, in[2]); },
         {{{a, "1+1i", "4"}, "sparse double 3x2: (0,0)=1+0i (0,1)=1+1i"}});
    rows([](auto &in, auto *b) { return spAss4(in[0], b, in[2]); },
         {{{a, "1", "4"}, "sparse double 3x4: " + filled},
          {{a, "7 8 9", "2"}, "sparse double 3x2: (0,0)=1 (0,1)=7 (1,1)=8 (2,1)=9"}, // turned
          {{a, "7", "0"}, zero},
          {{a, "7", "-1"}, zero},
          {{a, "7", "1.5"}, bad},
          {{a, "7", "NaN"}, bad},
          {{a, "1; 2", "1"}, sides},
          {{a, "double 2x2x2: 1 2; 3 4 | 5 6; 7 8", "1"}, sides},
          {{"1 0; 0 2", "0; 3", "1"}, "sparse double 2x2: (1,0)=3 (1,1)=2"},
          {{"sparse double 1x2: (0,0)=1+2i (0,1)=3+0i", "0", "1"}, "sparse double 1x2: (0,1)=3"}});
}

TEST_F(SparseAssign, TheSourceMayBeTheTarget) {
    oxArray *a = arr("sparse double 2x2: (0,0)=1 (1,0)=2");
    ASSERT_EQ(spAss4(a, a, arr("2 1")), spOK);
    EXPECT_EQ(text(a), text(arr("sparse double 2x2: (0,1)=1 (1,1)=2")));
    ASSERT_EQ(spAss3(a, a, arr("2 1"), arr("1 2")), spOK);
    EXPECT_EQ(text(a), text(arr("sparse double 2x2: (0,1)=2 (1,1)=1")));
}

TEST_F(SparseAssign, TheColumnsBeforeABadIndexStay) {
    oxArray *a = arr("sparse double 3x2: (0,0)=1");
    EXPECT_EQ(spAss4(a, arr("7"), arr("4 0 1")), spZeroIndex);
    EXPECT_EQ(text(a), text(arr("sparse double 3x4: (0,0)=1 (0,3)=7 (1,3)=7 (2,3)=7")));
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

TEST_F(SparseAssign, FailingAllocations) {
    const auto one_more = [](const Arrays &in, auto assign) {
        oxArray *b = oxCreateDoubleMatrix(1, 1, oxCOMPLEX); // a temporary, which success consumes
        *oxGetPr(b) = *oxGetPi(b) = 1;
        return assign(in[0], b, in[1]) == spOK;
    };
    const auto fails = [](std::function<bool(const Arrays &)> act) {
        sweep({.name = "assignment",
               .inputs = {"sparse double 3x2: (0,0)=1", "4", "1 2", "1; 0; 2"},
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
