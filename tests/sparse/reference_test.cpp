// Sparse references against a full model, and the storage operations under them.
#include <core/class_table.h>
#include <sparse/reference.h>
#include <sparse/storage/csc.h>
#include <support/suite.h>

#include <algorithm>
#include <complex>

namespace {

using Positions = std::vector<kwIndex>;

class SparseReference : public HostTest {
protected:
    // m-by-n with about `fill` of its elements stored, some of them zeros.
    oxArray *random_sparse(kwSize m, kwSize n, double fill, bool complex = false) {
        oxArray *full = oxCreateDoubleMatrix(m, n, complex ? oxCOMPLEX : oxREAL);
        for (kwSize k = 0; k < m * n; ++k) {
            if (!random.chance(fill)) continue;
            oxGetPr(full)[k] = static_cast<double>(random.between(1, 99));
            if (complex) oxGetPi(full)[k] = static_cast<double>(random.between(-9, 9));
        }
        oxArray *s = oxMustBeSparse(full);
        for (kwSize k = 0; k < nonzeros(s); k += 7) oxGetPr(s)[k] = 0;
        return s;
    }
    Positions random_positions(kwSize extent, kwSize most) {
        Positions p(extent ? random.below(most + 1) : 0);
        p.reserve(1); // an empty list is not a null one
        for (kwIndex &x : p) x = random.below(extent);
        if (random.chance(0.3)) std::sort(p.begin(), p.end());
        return p;
    }
    Random random{11};
};

void expect_well_formed(const oxArray *a) {
    EXPECT_EQ(broken_csc_rule(rows(a), cols(a), oxGetNzmax(a), oxGetJc(a), oxGetIr(a)), 0);
}

// All elements in column-major order, read entry by entry (or straight from full storage).
std::vector<std::complex<double>> elements(const oxArray *a) {
    std::vector<std::complex<double>> x(rows(a) * cols(a));
    const auto part = [&](const void *block, kwIndex k) {
        return !block           ? 0
               : oxIsLogical(a) ? static_cast<double>(static_cast<const uint8_t *>(block)[k])
                                : static_cast<const double *>(block)[k];
    };
    const bool sparse = oxIsSparse(a);
    for (kwSize j = 0, k = 0; j < cols(a); ++j)
        for (const kwIndex end = sparse ? oxGetJc(a)[j + 1] : (j + 1) * rows(a); k < end; ++k)
            x[sparse ? j * rows(a) + oxGetIr(a)[k] : k] = {part(oxGetData(a), k),
                                                           part(oxGetImagData(a), k)};
    return x;
}

TEST_F(SparseReference, RowsAndColumnsAgreeWithTheFullModel) {
    for (int round = 0; round < 400; ++round) {
        const Contexts contexts;
        const kwSize m = random.below(round % 3 ? 40 : 400), n = random.below(12);
        const bool complex = random.chance(0.3);
        const oxArray *a = random_sparse(m, n, random.unit() * random.unit(), complex);
        const Positions r = random_positions(m, m / (1 + random.below(8)) + 2);
        const Positions c = random_positions(n, 15);
        const bool all_rows = random.chance(0.2), all_cols = random.chance(0.2);
        const oxArray *b = oxSparseReference(a, all_rows ? nullptr : r.data(), r.size(),
                                             all_cols ? nullptr : c.data(), c.size());
        expect_well_formed(b);
        ASSERT_EQ(rows(b), all_rows ? m : r.size());
        ASSERT_EQ(cols(b), all_cols ? n : c.size());
        const auto x = elements(a), y = elements(b);
        for (kwSize j = 0; j < cols(b); ++j)
            for (kwSize i = 0; i < rows(b); ++i)
                ASSERT_EQ(y[j * rows(b) + i], x[(all_cols ? j : c[j]) * m + (all_rows ? i : r[i])])
                    << "round " << round;
    }
}

TEST_F(SparseReference, CapacityFollowsTheStrategy) {
    const kwIndex rows_wanted[] = {7, 900}, one[] = {1, 1}, column[] = {0};
    oxArray *tall = arr("sparse double 1000000x2: (7,0)=1 (8,0)=2 (900,1)=3");
    oxArray *b = oxSparseReference(tall, rows_wanted, 2, nullptr, 0);
    EXPECT_EQ(text(b), text(arr("sparse double 2x2 nzmax 3: (0,0)=1 (1,1)=3")));
    EXPECT_EQ(oxGetNzmax(b), 3u); // min(2, 2) + min(1, 2)
    oxArray *flat = arr("sparse double 20x2: (7,0)=1 (8,0)=2 (9,1)=3");
    EXPECT_EQ(oxGetNzmax(oxSparseReference(flat, rows_wanted, 1, nullptr, 0)), 1u);
    oxArray *repeated = oxSparseReference(arr("sparse double 5x5: (1,0)=4"), one, 2, column, 1);
    EXPECT_EQ(text(repeated), text(arr("sparse double 2x1 nzmax 2: (0,0)=4 (1,0)=4")));
    EXPECT_EQ(oxGetNzmax(oxSparseReference(flat, nullptr, 0, one, 0)), 1u);
}

TEST_F(SparseReference, PositionsBeyondTheArrayRaiseBeforeAnythingIsMade) {
    oxArray *a = arr("sparse double 5x2: (1,0)=4");
    const kwIndex row[] = {0, 5}, column[] = {2};
    for (kwSize rows : {2, 1})
        EXPECT_RAISES("VELTRO:badsubscript", "Index exceeds matrix dimensions.",
                      oxSparseReference(a, row, rows, rows == 1 ? column : nullptr, 1));
}

TEST_F(SparseReference, KernelsAnswerWithAStatus) {
    const oxArray *a = arr("sparse double 3x2: (0,0)=1 (2,1)=5");
    oxArray *result = nullptr;
    const auto ref2 = [&](const char *i, const char *j) {
        const oxArray *subs[] = {arr(i), arr(j)};
        return spRef2(a, subs, &result);
    };
    EXPECT_EQ(ref2("0", "1"), spZeroIndex);
    for (const char *bad : {"1.5", "NaN"}) EXPECT_EQ(ref2(bad, "1"), spBadIndex);
    EXPECT_EQ(ref2("4", "1"), spOutOfBounds);
    EXPECT_EQ(result, nullptr);
    const double good[] = {3, 2, 1}, far[] = {3, 2, 2};
    EXPECT_EQ(spRef3Scalar(a, good, &result), spOK);
    EXPECT_EQ(oxGetScalar(result), 5);
    EXPECT_EQ(spRef3Scalar(a, far, &result), spOutOfBounds);
    EXPECT_EQ(text(oxSparseColonReference(a)), text(arr("sparse double 6x1: (0,0)=1 (5,0)=5")));
}

// Random arrays take the direct way; this one never forms m * n.
TEST_F(SparseReference, ReshapeOfHugeShapes) {
    const kwSize m = kwSize{1} << 60;
    kwIndex huge_jc[] = {0, 2, 3}, huge_ir[] = {5, m - 1, 7};
    Positions starts = {0, 9, 9, 9, 9, 9, 9, 9, 9, 9}; // one more than there are
    oxReshapeSparse(m, 2, huge_jc, huge_ir, m / 4, 8, starts.data());
    EXPECT_EQ(Positions(huge_ir, huge_ir + 3), (Positions{5, m / 4 - 1, 7}));
    EXPECT_EQ(starts, (Positions{0, 1, 1, 1, 2, 3, 3, 3, 3, 9}));
}

oxArray *join(int form, const oxArray *a, const oxArray *b) {
    oxCatContext context{[](oxCatContext *, int, const oxArray **all) {
                             return static_cast<oxClassID>(all[0]->class_code);
                         },
                         nullptr};
    const oxArray *both[] = {a, b};
    const auto same = [](oxCatContext *, oxClassID, const oxArray *x) { return x; };
    return oxCatenateDispatch(form, 2, both, same, &context);
}

TEST_F(SparseReference, WholeArraysAgreeWithTheFullModel) {
    for (int round = 0; round < 200; ++round) {
        const kwSize m = random.below(round % 8 ? 8 : 500), n = random.below(8);
        const bool complex = random.chance(0.3), logical = !complex && random.chance(0.4);
        const auto make = [&] {
            oxArray *s = random_sparse(m, n, random.unit(), complex);
            return logical ? oxMustBe(s, oxLOGICAL_CLASS) : s;
        };
        oxArray *a = make(), *b = make(), *full = oxMustBeFull(a), *again = oxMustBeSparse(full);
        const auto x = elements(a), y = elements(b);
        EXPECT_EQ(elements(full), x);
        EXPECT_EQ(elements(again), x);
        EXPECT_EQ(oxGetNumNonZeroEl(again),
                  x.size() - static_cast<kwSize>(std::count(x.begin(), x.end(), 0.0)));
        EXPECT_TRUE(oxAreMatricesEqual(a, full));
        EXPECT_EQ(oxAreMatricesEqual(b, full), x == y);

        std::vector<std::complex<double>> turned(x.size()), beside(x), below;
        for (kwSize i = 0; i < x.size(); ++i) turned[i / m + i % m * n] = x[i];
        beside.insert(beside.end(), y.begin(), y.end());
        for (kwSize j = 0; j < n; ++j)
            for (const auto &z : {x, y})
                below.insert(below.end(), z.begin() + static_cast<std::ptrdiff_t>(j * m),
                             z.begin() + static_cast<std::ptrdiff_t>((j + 1) * m));
        const kwSize shape[] = {m * n, 1};
        oxArray *column = oxCreateSparse(0, 0, 1, oxREAL);
        oxSetDimensions(column, shape, 2);
        ox_inResizeSparseArray(column, oxCreateDeepCopy(a));
        const std::pair<const oxArray *, std::vector<std::complex<double>>> results[] = {
            {oxTranspose(a), turned},
            {join(oxCAT_HORIZONTAL, a, b), beside},
            {join(oxCAT_VERTICAL, a, b), below},
            {column, x}};
        for (const auto &[result, wanted] : results) {
            expect_well_formed(result);
            EXPECT_EQ(result->class_code, a->class_code);
            ASSERT_EQ(elements(result), wanted) << "round " << round;
        }
    }
}

// Deliberate: the numeric creator takes any class; only one without elements has no sparse form.
TEST_F(SparseReference, CreatorsTakeEveryClassThatHasElements) {
    for (int id = oxUNKNOWN_CLASS; id <= oxOBJECT_CLASS; ++id) {
        oxArray *a = oxCreateSparseNumericMatrix(1, 1, 0, static_cast<oxClassID>(id), oxCOMPLEX);
        ASSERT_EQ(a != nullptr, ox::class_info(id).element_size > 0) << id;
        if (!a) continue;
        EXPECT_TRUE(oxIsSparse(a)) << id;
        EXPECT_EQ(oxIsComplex(a), oxIsNumeric(a)) << id;
        EXPECT_EQ(oxGetNzmax(a), 1u);
        EXPECT_EQ(oxGetJc(a)[1], 0u);
        EXPECT_FALSE(a->has_flag(oxFLAG_SCALAR_DOUBLE));
        oxDestroyArray(a);
    }
    EXPECT_EQ(oxCreateSparse(1, kwSize{1} << 61, 1, oxREAL), nullptr);
    EXPECT_EQ(oxCreateSparse(1, ~kwSize{0}, 1, oxREAL), nullptr);
    EXPECT_EQ(oxCreateSparseLogicalMatrix(1, 1, ~kwSize{0}), nullptr);
}

TEST_F(SparseReference, FailingAllocations) {
    static const kwIndex r[] = {3, 0, 3}, c[] = {1, 0};
    const std::function<oxArray *(const Arrays &)> calls[] = {
        [](const Arrays &in) { return oxSparseReference(in[0], r, 3, c, 2); },
        [](const Arrays &in) { return oxSparseReference(in[1], r, 3, c, 2); },
        [](const Arrays &in) { return oxSparseColonReference(in[0]); },
        [](const Arrays &in) {
            oxArray *b = nullptr;
            const oxArray *subs[] = {in[2], in[2], in[3]};
            return spRef3(in[0], subs, &b) == spOK ? b : nullptr;
        },
        [](const Arrays &in) {
            oxArray *b = nullptr;
            const double subs[] = {4, 2, 1};
            return spRef3Scalar(in[0], subs, &b) == spOK ? b : nullptr;
        },
        [](const Arrays &in) { return oxMustBeFull(in[0]); },
        [](const Arrays &in) { return oxMustBeSparse(in[2]); },
    };
    for (const auto &make : calls)
        sweep_makes(
            {{"sparse double 5x2: (0,0)=1 (3,1)=5+1i", "sparse double 100x2: (3,1)=5", "2 1", "1"}},
            make);
    const std::function<oxArray *(const Arrays &)> creators[] = {
        [](const Arrays &) { return oxCreateSparse(3, 3, 4, oxCOMPLEX); },
        [](const Arrays &) { return oxCreateSparseNumericMatrix(3, 3, 0, oxINT8_CLASS, oxREAL); },
        [](const Arrays &) { return oxCreateSparseLogicalMatrix(0, 3, 1); },
    };
    for (const auto &create : creators) sweep({.name = "create", .make = create, .silent = true});
    sweep_changes({{"sparse double 2x4", "sparse double 4x2: (0,0)=1 (3,1)=5+1i"}},
                  [](auto &in) { ox_inResizeSparseArray(in[0], oxCreateSharedDataCopy(in[1])); });
}

} // namespace
