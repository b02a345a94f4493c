// Sparse assignment and deletion against a full model, the growth rule, and statuses.
#include "support/array_text.h"
#include "support/expect.h"
#include "support/faults.h"
#include "support/host.h"
#include "support/random.h"

#include <core/array.h>
#include <ox.hpp>
#include <sparse/assign.h>
#include <sparse/growth.h>
#include <sparse/storage/csc.h>

#include <map>
#include <vector>

namespace ox::test {
namespace {

// Element (i, j) of a matrix that grows; absent ones are zero.
using Model = std::map<std::pair<kwSize, kwSize>, double>;

class SparseAssignTest : public HostTest {
protected:
    oxArray *sparse_of(kwSize m, kwSize n, const Model &model) {
        oxArray *s = oxCreateSparse(m, n, model.size(), oxREAL);
        kwSize k = 0;
        for (kwSize j = 0; j < n; ++j) {
            for (kwSize i = 0; i < m; ++i)
                if (auto e = model.find({i, j}); e != model.end()) {
                    oxGetIr(s)[k] = i;
                    oxGetPr(s)[k++] = e->second;
                }
            oxGetJc(s)[j + 1] = k;
        }
        return s;
    }
    Model random_model(kwSize m, kwSize n, double fill) {
        Model model;
        for (kwSize j = 0; j < n; ++j)
            for (kwSize i = 0; i < m; ++i)
                if (random.chance(fill)) model[{i, j}] = static_cast<double>(random.between(1, 9));
        return model;
    }
    oxArray *subscript(const std::vector<kwSize> &zero_based) {
        oxArray *a = oxCreateDoubleMatrix(1, zero_based.size(), oxREAL);
        for (kwSize k = 0; k < zero_based.size(); ++k)
            oxGetPr(a)[k] = static_cast<double>(zero_based[k] + 1);
        return a;
    }
    std::vector<kwSize> positions(kwSize extent, kwSize most) {
        std::vector<kwSize> p(1 + random.below(most));
        for (kwSize &x : p) x = random.below(extent);
        return p;
    }
    void expect_equal(const oxArray *a, const Model &model, const char *what, int round) {
        EXPECT_EQ(broken_csc_rule(rows(a), cols(a), oxGetNzmax(a), oxGetJc(a), oxGetIr(a)), 0);
        EXPECT_GE(oxGetNzmax(a), 1u);
        Model found;
        for (kwSize j = 0; j < cols(a); ++j)
            for (kwIndex k = oxGetJc(a)[j]; k < oxGetJc(a)[j + 1]; ++k)
                if (oxGetPr(a)[k] != 0) found[{oxGetIr(a)[k], j}] = oxGetPr(a)[k];
        Model wanted;
        for (const auto &[at, x] : model)
            if (x != 0) wanted[at] = x;
        EXPECT_EQ(found, wanted) << what << " round " << round;
    }
    static double value(const Model &b, kwSize i, kwSize j) {
        const auto e = b.find({i, j});
        return e == b.end() ? 0 : e->second;
    }
    Random random{23};
};

TEST_F(SparseAssignTest, BlocksAgreeWithTheModel) {
    for (int round = 0; round < 500; ++round) {
        const kwSize m = 1 + random.below(9), n = 1 + random.below(9);
        Model model = random_model(m, n, 0.3);
        oxArray *a = sparse_of(m, n, model);
        const bool all_rows = random.chance(0.4), scalar = random.chance(0.3);
        std::vector<kwSize> r = positions(m + 3, 6);
        const std::vector<kwSize> c = positions(n + 4, round % 2 ? 3 : 14);
        if (all_rows) {
            r.resize(m);
            for (kwSize i = 0; i < m; ++i) r[i] = i;
        }
        const Model b = scalar ? random_model(1, 1, 0.7) : random_model(r.size(), c.size(), 0.4);
        oxArray *rhs =
            scalar ? oxCreateDoubleScalar(value(b, 0, 0)) : sparse_of(r.size(), c.size(), b);
        for (kwSize k = 0; k < c.size(); ++k)
            for (kwSize i = 0; i < r.size(); ++i)
                model[{r[i], c[k]}] = scalar ? value(b, 0, 0) : value(b, i, k);
        const spStatus status =
            all_rows ? spAss4(a, rhs, subscript(c)) : spAss3(a, rhs, subscript(r), subscript(c));
        ASSERT_EQ(status, spOK);
        expect_equal(a, model, "block", round);
    }
}

// One column at a time and many in one rebuild leave the same elements and the same capacity.
TEST_F(SparseAssignTest, ManyColumnsAtOnceEqualOneByOne) {
    for (int round = 0; round < 200; ++round) {
        const kwSize m = 1 + random.below(6), n = 1 + random.below(6);
        const Model model = random_model(m, n, 0.5);
        const std::vector<kwSize> c = positions(n + 9, 30);
        const Model b = random_model(m, c.size(), 0.5);
        oxArray *at_once = sparse_of(m, n, model), *one_by_one = sparse_of(m, n, model);
        ASSERT_EQ(spAss4(at_once, sparse_of(m, c.size(), b), subscript(c)), spOK);
        for (kwSize k = 0; k < c.size(); ++k) {
            Model column;
            for (kwSize i = 0; i < m; ++i)
                if (b.count({i, k})) column[{i, 0}] = value(b, i, k);
            ASSERT_EQ(spAss4(one_by_one, sparse_of(m, 1, column), subscript({c[k]})), spOK);
        }
        ASSERT_EQ(text(at_once), text(one_by_one)) << round;
        ASSERT_EQ(oxGetNzmax(at_once), oxGetNzmax(one_by_one)) << round;
    }
}

TEST_F(SparseAssignTest, GrowthRule) {
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

TEST_F(SparseAssignTest, StatusesAndWhatStaysAssigned) {
    oxArray *a = arr("sparse double 3x2: (0,0)=1"), *seven = oxCreateDoubleScalar(7);
    oxSetArrayScope(seven, 0); // no temporary, so that it is not consumed
    const auto assign = [&](const char *cols, oxArray *b) { return spAss4(a, b, arr(cols)); };
    EXPECT_EQ(assign("double 1x1: 0", seven), spZeroIndex);
    EXPECT_EQ(assign("double 1x1: 1.5", seven), spBadIndex);
    EXPECT_EQ(assign("double 1x1: NaN", seven), spBadIndex);
    EXPECT_EQ(assign("double 1x1: -1", seven), spZeroIndex);
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
TEST_F(SparseAssignTest, CapacitiesThatCannotBe) {
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

TEST_F(SparseAssignTest, TargetsAndSourcesOfOtherKinds) {
    struct Row {
        const char *target, *columns, *source, *expected;
    };
    const Row rows[] = {
        {"double 0x0", "double 1x1: 2", "double 2x1: 5; 0", "sparse double 2x2: (0,1)=5"},
        {"double 2x2: 1 0; 0 2", "double 1x1: 1", "double 2x1: 0; 3",
         "sparse double 2x2: (1,0)=3 (1,1)=2"},
        {"sparse double 3x1", "double 1x1: 1", "double 1x3: 1 0 2",
         "sparse double 3x1: (0,0)=1 (2,0)=2"},
        {"sparse double 2x2: (0,0)=1", "logical 1x2: 0 1", "int8 2x1: 4; 5",
         "sparse double 2x2: (0,0)=1 (0,1)=4 (1,1)=5"},
        {"sparse logical 2x1", "char 1x1: ':'", "double 1x1: 3",
         "sparse logical 2x1: (0,0)=1 (1,0)=1"},
        {"sparse double 2x2: (0,0)=1+2i (1,1)=3+0i", "double 1x1: 1", "double 1x1: 0",
         "sparse double 2x2: (1,1)=3"},
        {"sparse double 2x0", "char 1x1: ':'", "double 2x3: 1 0 0; 0 0 2",
         "sparse double 2x3: (0,0)=1 (1,2)=2"},
    };
    for (const Row &r : rows) {
        oxArray *a = arr(r.target);
        ASSERT_EQ(spAss4(a, arr(r.source), arr(r.columns)), spOK) << r.target;
        EXPECT_TRUE(oxAreMatricesEqual(a, arr(r.expected))) << text(a) << " is not " << r.expected;
    }
    oxArray *a = arr("sparse double 2x2: (0,0)=1 (1,0)=2");
    ASSERT_EQ(spAss4(a, a, arr("double 1x2: 2 1")), spOK);
    EXPECT_EQ(text(a), text(arr("sparse double 2x2: (0,1)=1 (1,1)=2")));
    // A member of a ring gets storage of its own first.
    oxArray *shared = oxCreateSharedDataCopy(a);
    ASSERT_EQ(spAss4(shared, arr("double 1x1: 9"), arr("double 1x1: 2")), spOK);
    EXPECT_EQ(text(a), text(arr("sparse double 2x2: (0,1)=1 (1,1)=2")));
}

TEST(SparseAssignSweep, FailingAllocations) {
    const auto one_more = [](const Arrays &in, auto assign) {
        oxArray *b = oxCreateDoubleMatrix(1, 1, oxCOMPLEX); // a temporary, which success consumes
        *oxGetPr(b) = *oxGetPi(b) = 1;
        return assign(in[0], b, in[1]) == spOK;
    };
    const std::function<bool(const Arrays &)> calls[] = {
        [&](const Arrays &in) { return one_more(in, spAss4); },
        [&](const Arrays &in) { return one_more(in, spAss5); },
        [&](const Arrays &in) { return one_more(in, spAss6); },
        [&](const Arrays &in) {
            return one_more(in, [&](oxArray *a, oxArray *b, const oxArray *i) {
                return spAss3(a, b, i, in[2]);
            });
        },
        [](const Arrays &in) { return spAss4(in[0], nullptr, in[2]) == spOK; },
        [](const Arrays &in) { return spAss5(in[0], nullptr, in[2]) == spOK; },
        [](const Arrays &in) { return spAss6(in[0], nullptr, in[2]) == spOK; },
        [&](const Arrays &in) { // a full target
            return one_more(
                in, [&](oxArray *, oxArray *b, const oxArray *j) { return spAss4(in[3], b, j); });
        },
    };
    for (const auto &act : calls)
        sweep({.name = "assignment",
               .inputs = {"sparse double 3x2: (0,0)=1", "double 1x1: 4", "double 1x2: 1 2",
                          "double 3x1: 1; 0; 2"},
               .make = nullptr,
               .act = act,
               .bare = false,
               .changes_inputs = true,
               .setup = nullptr});
}

} // namespace
} // namespace ox::test
