// Sparse arrays against full ones, capacities of results, statuses, and the storage below. Random
// references are with those of full arrays.
#include <core/check_header.h>
#include <core/class_table.h>
#include <support/calls.h>
#include <support/naive_index.h>

#include "random_sparse.h"

namespace {

using SparseReference = HostTest;

TEST_F(SparseReference, CapacityFollowsTheStrategy) {
    const kwIndex rows_wanted[] = {7, 900}, one[] = {1, 1}, column[] = {0};
    oxArray *tall = arr("sparse double 1000000x2: (7,0)=1 (8,0)=2 (900,1)=3");
    oxArray *b = oxSparseReference(tall, rows_wanted, 2, nullptr, 0);
    // min(2, 2) + min(1, 2)
    EXPECT_EQ(text(b), text(arr("sparse double 2x2 nzmax 3: (0,0)=1 (1,1)=3")));
    // Ten rows for each stored element are counted exactly, more have an upper bound.
    for (auto [m, nzmax] : {std::pair{30, 1}, {31, 2}}) {
        oxArray *a = arr("sparse double " + std::to_string(m) + "x2: (7,0)=1 (8,0)=2 (9,1)=3");
        EXPECT_EQ(oxGetNzmax(oxSparseReference(a, rows_wanted, 1, nullptr, 0)), kwSize(nzmax));
    }
    oxArray *repeated = oxSparseReference(arr("sparse double 5x5: (1,0)=4"), one, 2, column, 1);
    EXPECT_EQ(text(repeated), text(arr("sparse double 2x1 nzmax 2: (0,0)=4 (1,0)=4")));
    EXPECT_EQ(oxGetNzmax(oxSparseReference(tall, nullptr, 0, one, 0)), 1u);
}

TEST_F(SparseReference, KernelsGiveAResultOrAStatus) {
    const std::string a = "sparse double 5x2: (0,0)=1 (3,1)=5+1i",
                      tall = "sparse double 100x2: (3,1)=5",
                      outside = "!badsubscript Index exceeds matrix dimensions.",
                      far = std::to_string(spOutOfBounds), bad = std::to_string(spBadIndex);
    const auto done = [](auto kernel, const oxArray *of, auto *subs) {
        oxArray *b = nullptr;
        const spStatus status = kernel(of, subs, &b);
        return status == spOK ? b : oxCreateDoubleScalar(status);
    };
    expect_rows(
        [&](auto &in) {
            const auto kernel = in.size() == 3 ? spRef2 : in.size() == 4 ? spRef3 : spRef6;
            return done(kernel, in[0], Subs(in.begin() + 1, in.end()).data());
        },
        {{{a, "4", "2 1", "1"}, "sparse double 1x2: (0,0)=5+1i"},
         {{tall, ":", "1 1 1 1 1 1 1 1 1 1 1 1 2"}, "sparse double 100x13: (3,12)=5"},
         {{a, "4", "2", "1", "1 1", "1", ":"}, "sparse double 1x2: (0,0)=5+1i (0,1)=5+1i"},
         {{a, "4", "2", "1", "1", "1", "2"}, far},
         {{a, "0", "1"}, std::to_string(spZeroIndex)},
         {{a, "1.5", "1"}, bad},
         {{a, "NaN", "1"}, bad},
         {{a, "6", "1"}, far}});
    expect_rows(
        [&](auto &in) {
            return done(oxGetN(in[1]) == 3 ? spRef3Scalar : spRef6Scalar, in[0], oxGetPr(in[1]));
        },
        {{{a, "4 2 1"}, "sparse double 1x1: (0,0)=5+1i"},
         {{a, "4 2 2"}, far},
         {{a, "4 2 1 1 1 1"}, "sparse double 1x1: (0,0)=5+1i"},
         {{a, "4 2 1 1 1 2"}, far}});
    expect_rows(
        [](auto &in) { // zero-based positions
            const std::vector<kwIndex> r(oxGetPr(in[1]), oxGetPr(in[1]) + oxGetN(in[1]));
            const kwIndex c[] = {1, 0};
            return oxSparseReference(in[0], r.data(), r.size(), c, 2);
        },
        {{{a, "3 0 3"}, "sparse double 3x2: (0,0)=5+1i (2,0)=5+1i (1,1)=1+0i"},
         {{tall, "3 0 3"}, "sparse double 3x2: (0,0)=5 (2,0)=5"},
         {{a, "0 5"}, outside}});
    expect_rows([](auto &in) { return oxSparseColonReference(in[0]); },
                {{{a}, "sparse double 10x1: (0,0)=1+0i (8,0)=5+1i"}});
    const kwIndex column[] = {5};
    EXPECT_RAISES("VELTRO:badsubscript", nullptr,
                  oxSparseReference(arr("sparse double 3x2"), nullptr, 0, column, 1));
}

// Random arrays take the direct way; this one never forms m * n.
TEST_F(SparseReference, ReshapeOfHugeShapes) {
    const kwSize m = kwSize{1} << 60;
    kwIndex huge_jc[] = {0, 2, 3}, huge_ir[] = {5, m - 1, 7};
    std::vector<kwIndex> starts = {0, 9, 9, 9, 9, 9, 9, 9, 9, 9}; // one more than there are
    oxReshapeSparse(m, 2, huge_jc, huge_ir, m / 4, 8, starts.data());
    EXPECT_EQ(std::vector(huge_ir, huge_ir + 3), (std::vector<kwIndex>{5, m / 4 - 1, 7}));
    EXPECT_EQ(starts, (std::vector<kwIndex>{0, 1, 1, 1, 2, 3, 3, 3, 3, 9}));
}

oxArray *operated(int which, oxArray *a, oxArray *b) {
    if (which == 0) return a;
    if (which == 1) return oxTranspose(a);
    if (which == 2) return cat(oxCAT_HORIZONTAL, {a, b});
    if (which == 3) return cat(oxCAT_VERTICAL, {a, b});
    const Dims column = {rows(a) * cols(a), 1};
    oxArray *c = oxIsSparse(a) ? oxCreateSparse(0, 0, 1, oxREAL) : oxCreateDeepCopy(a);
    oxSetDimensions(c, column.data(), 2);
    if (oxIsSparse(a)) ox_inResizeSparseArray(c, oxCreateDeepCopy(a));
    return c;
}

TEST_F(SparseReference, WholeArraysAgreeWithFullOnes) {
    Random random{11};
    for (int round = 0; round < 200; ++round) {
        const kwSize m = random.below(round % 8 ? 8 : 500), n = random.below(8);
        const bool complex = random.chance(0.3), logical = !complex && random.chance(0.4);
        const auto make = [&] {
            oxArray *s = random_sparse(random, m, n, complex);
            for (kwSize k = 0; k < oxGetNumNonZeroEl(s); k += 7) oxGetPr(s)[k] = 0; // stored
            return logical ? oxMustBe(s, oxLOGICAL_CLASS) : s;
        };
        oxArray *a = make(), *b = make(), *x = oxMustBeFull(a), *y = oxMustBeFull(b);
        for (int which = 0; which < 5; ++which) {
            const oxArray *result = operated(which, a, b);
            EXPECT_EQ(check_header(result, CheckDepth::storage), 0);
            ASSERT_EQ(Naive::read(result), Naive::read(operated(which, x, y))) << round;
        }
        EXPECT_TRUE(oxAreMatricesEqual(a, x));
        EXPECT_EQ(oxAreMatricesEqual(b, x), Naive::read(b) == Naive::read(x));
    }
}

// Deliberate: the numeric creator takes any class; only one without elements has no sparse form.
TEST_F(SparseReference, CreatorsTakeEveryClassThatHasElements) {
    for (int id = oxUNKNOWN_CLASS; id <= oxOBJECT_CLASS; ++id) {
        oxArray *a = oxCreateSparseNumericMatrix(1, 1, 0, static_cast<oxClassID>(id), oxCOMPLEX);
        ASSERT_EQ(a != nullptr, ox::class_info(id).element_size > 0) << id;
        if (!a) continue;
        EXPECT_TRUE(oxIsSparse(a) && oxIsComplex(a) == oxIsNumeric(a)) << id;
        EXPECT_TRUE(oxGetNzmax(a) == 1 && oxGetJc(a)[1] == 0) << id;
        EXPECT_FALSE(a->has_flag(oxFLAG_SCALAR_DOUBLE));
        oxDestroyArray(a);
    }
    EXPECT_EQ(oxCreateSparse(1, kwSize{1} << 61, 1, oxREAL), nullptr);
    EXPECT_EQ(oxCreateSparse(1, ~kwSize{0}, 1, oxREAL), nullptr);
    EXPECT_EQ(oxCreateSparseLogicalMatrix(1, 1, ~kwSize{0}), nullptr);
}

TEST_F(SparseReference, FailingAllocations) {
    for (auto make : {+[](const Arrays &) { return oxCreateSparse(3, 3, 4, oxCOMPLEX); },
                      +[](const Arrays &) { return oxCreateSparseLogicalMatrix(0, 3, 1); }})
        sweep({.name = "create", .make = make, .silent = true});
    sweep_changes({{"sparse double 2x4", "sparse double 4x2: (0,0)=1 (3,1)=5+1i"}},
                  [](auto &in) { ox_inResizeSparseArray(in[0], oxCreateSharedDataCopy(in[1])); });
}

} // namespace
