// Permutes against a model that moves one element after the other, and the sizes of a reshape with
// counts beyond 32 and 64 bits; what the arguments must be.
#include <containers/check_array.h>
#include <support/suite.h>

#include <algorithm>
#include <cstring>
#include <numeric>

#include "each_target.h"

namespace {

using Permute = LayerTest;

oxArray *permute(const oxArray *a, const oxArray *order) {
    const oxArray *prhs[] = {a, order};
    oxArray *plhs[1] = {};
    oxPermuteFcn(1, plhs, 2, prhs);
    return plhs[0];
}
oxArray *permute(const char *a, const char *order) { return permute(arr(a), arr(order)); }

// Permutes random bytes and looks for each element where the model says.
void check_order(Random &random, const Dims &dims, oxClassID id, oxComplexity complexity) {
    const Contexts contexts;
    const kwSize n = dims.size();
    std::vector<kwSize> order(n), stride(n, 1);
    std::iota(order.begin(), order.end(), kwSize{0});
    for (kwSize k = n; k-- > 1;) std::swap(order[k], order[random.below(k + 1)]);
    for (kwSize k = 1; k < n; ++k) stride[k] = stride[k - 1] * dims[k - 1];
    oxArray *p = oxCreateDoubleMatrix(1, n, oxREAL);
    std::transform(order.begin(), order.end(), oxGetPr(p),
                   [](kwSize k) { return static_cast<double>(k + 1); });
    oxArray *a = oxCreateNumericArray(n, dims.data(), id, complexity);
    const kwSize w = oxGetElementSize(a), count = a->get_number_of_elements();
    for (auto *block : {data<char>(a), imag<char>(a)})
        for (kwSize i = 0; block && i < count * w; ++i)
            block[i] = static_cast<char>(random.below(100));
    const oxArray *b = permute(a, p);
    ASSERT_FALSE(check_array(b));
    for (kwSize k = 0; k < n; ++k)
        ASSERT_EQ(k < b->ndims ? b->get_dimensions()[k] : 1, dims[order[k]]);
    ASSERT_TRUE(b->ndims == 2 || b->get_dimensions()[b->ndims - 1] != 1 ||
                std::is_sorted(order.begin(), order.end()));
    for (kwSize i = 0; i < count; ++i) {
        kwSize at = 0, rest = i;
        for (kwSize k : order) at += rest % dims[k] * stride[k] * w, rest /= dims[k];
        ASSERT_EQ(std::memcmp(data<char>(b) + i * w, data<char>(a) + at, w), 0) << i;
        ASSERT_TRUE(!oxIsComplex(a) ||
                    std::memcmp(imag<char>(b) + i * w, imag<char>(a) + at, w) == 0);
    }
}

// Up to six dimensions, of which some are 0 or 1 and one may be longer than a tile; then results
// that go past the caches.
TEST_F(Permute, RandomOrdersAgreeWithTheModel) {
    Random random(11);
    SCOPED_TRACE(random.seed());
    const oxClassID classes[] = {oxDOUBLE_CLASS, oxSINGLE_CLASS, oxCHAR_CLASS, oxUINT8_CLASS};
    for_each_target([&] {
        for (int round = 0; round < 250; ++round) {
            Dims dims(2 + random.below(5));
            for (kwSize &d : dims) d = random.chance(0.25) ? random.below(2) : 2 + random.below(6);
            dims[random.below(dims.size())] = random.below(90);
            check_order(random, dims, random.pick(classes),
                        random.chance(0.3) ? oxCOMPLEX : oxREAL);
        }
        for (int round = 0; round < 3; ++round)
            check_order(random, {40, 3, 130, 90}, oxDOUBLE_CLASS, oxREAL);
    });
}

// clang-format off
const char *const rows_of_classes[][3] = {
    {"double 1x1x2: 1 | 2", "3 2 1", "double 2x1: 1; 2"}, // ones at the end go
    {"struct 1x2 a,b: {1} {2} {} {4}", "2 1", "struct 2x1 a,b: {1} {2} {} {4}"},
    {"sparse double 2x2: (0,1)=3", "2 1 3", "sparse double 2x2: (1,0)=3"},
    {"1 2; 3 4", "sparse double 1x2: (0,0)=2 (0,1)=1", "1 3; 2 4"},
    {"1 2; 3 4", "1.5 0.5", "1 3; 2 4"},
    {"int64 1x2: 1 2", "1 2", "int64 1x2: 1 2"}, // the identity comes before the class
};
// clang-format on

TEST_F(Permute, EveryClass) {
    for (auto [in, order, out] : rows_of_classes) {
        oxArray *a = arr(in), *b = permute(a, arr(order));
        EXPECT_EQ(text(b), text(arr(out))) << in << " by " << order;
        EXPECT_EQ(text(a), text(arr(in)));
        EXPECT_FALSE(check_array(b));
    }
}

TEST_F(Permute, ElementsOfContainersAreSharedAndATrivialOrderSharesTheData) {
    oxArray *a = arr("cell 1x2: {1} {2}"), *b = permute(a, arr("2 1")),
            *c = permute(a, arr("1 2 3"));
    EXPECT_EQ(a->cell.slots[1], b->cell.slots[1]);
    EXPECT_EQ(oxGetReferenceCount(a->cell.slots[1]), 1u);
    EXPECT_TRUE(c != a && c->num.pdata == a->num.pdata && c->ndims == 2);
}

TEST_F(Permute, WrongArguments) {
    const auto fails = [](const char *in, const char *order, const char *id, const char *message) {
        SCOPED_TRACE(std::string(in) + " by " + order);
        EXPECT_RAISES((std::string("VELTRO:permute:") + id).c_str(), message, permute(in, order));
    };
    fails("1 2", "int8 1x2: 1 2", "badIndexType", "ORDER must contain double-precision indices");
    fails("1 2", "1", "tooFewIndices", "ORDER must have at least N elements for an N-D array");
    fails("double 1x2x2: 1 2 | 3 4", "1 2", "tooFewIndices", nullptr);
    for (const char *order :
         {"1 3", "0.4 1", "1 NaN", "-1 1e300", "1 1 9"}) // ranges before repeats
        fails("1 2", order, "badIndex", "ORDER contains an invalid permutation index");
    fails("1 2", "1 1", "repeatedIndex", "ORDER cannot contain repeated permutation indices");
    for (const char *in :
         {"int64 1x2: 1 2", "uint64 1x2: 1 2", "object Point 1x2 px: {1} {2}", "opaque 1x2: 1 2"})
        fails(in, "2 1", "unsupportedType", "Unsupported data type");
    fails("sparse double 2x2: (0,1)=3", "1 3 2", "unsupportedType", nullptr);
    const oxArray *prhs[] = {arr("1"), arr("1"), arr("1")};
    oxArray *plhs[2];
    EXPECT_RAISES_ENTRY(FMAXLHS, oxPermuteFcn(2, plhs, 3, prhs)); // outputs first
    EXPECT_RAISES_ENTRY(FMAXRHS, oxPermuteFcn(1, plhs, 3, prhs));
    EXPECT_RAISES_ENTRY(FMINRHS, oxPermuteFcn(0, plhs, 1, prhs));
}

TEST_F(Permute, FailingAllocations) {
    for (const char *in : {"1+1i 2; 3 4", "cell 1x2: {1} {2}", "struct 1x2 a: {1} {2}",
                           "sparse double 2x2: (0,1)=3", "char 1x2: 'ab'"})
        for (const char *order : {"2 1", "sparse double 1x2: (0,0)=1 (0,1)=2"})
            sweep_makes({{in, order}}, [](auto &arg) { return permute(arg[0], arg[1]); });
}

using Reshape = HostTest;
using Sizes = std::vector<kwSize>;

constexpr const char *twelve = "cell 3x4: {} {} {} {} {} {} {} {} {} {} {} {}";

Sizes reshape(const oxArray *a, bool vector, const std::vector<const char *> &args) {
    std::vector<const oxArray *> list;
    for (const char *t : args) list.push_back(arr(t));
    kwSize n = 0;
    kwSize *dims = oxGetReshapeDims(vector, list.data(), static_cast<int>(list.size()), a, &n);
    const Sizes sizes(dims, dims + n);
    oxFree(dims);
    return sizes;
}

TEST_F(Reshape, Sizes) {
    const std::tuple<const char *, bool, std::vector<const char *>, Sizes> rows[] = {
        {twelve, true, {"2 6"}, {2, 6}},
        {twelve, true, {"sparse double 1x2: (0,0)=2 (0,1)=6"}, {2, 6}},
        {twelve, true, {"12 1 1 1"}, {12, 1}}, // ones at the end go
        {twelve, false, {"3", "double 0x0", "2"}, {3, 2, 2}},
        {twelve, false, {"char 0x3", "12"}, {1, 12}},
        {"double 0x5", true, {"7 0 1e300"}, {7, 0, ~kwSize{0}}},
        {"double 0x5", false, {"double 0x0", "5"}, {0, 5}},
        {"double 0x5", true, {"int64 1x2: 9007199254740993 0"}, {9007199254740993, 0}}, // exact
    };
    for (const auto &[a, vector, args, sizes] : rows)
        EXPECT_EQ(reshape(arr(a), vector, args), sizes) << args[0];
}

TEST_F(Reshape, WhatIsNoSize) {
    const oxArray *a = arr(twelve), *none = arr("double 0x1");
    const auto fails = [](const oxArray *of, bool vector, const std::vector<const char *> &args,
                          const std::string &id, const std::string &message) {
        SCOPED_TRACE(args[0]);
        EXPECT_RAISES(("VELTRO:" + id).c_str(), message.c_str(), reshape(of, vector, args));
    };
    const std::string row = "Size vector must be a row vector with integer elements.",
                      real = "Size arguments must be real integers.",
                      same = "To RESHAPE the number of elements must not change.",
                      sign = "Size vector elements should be nonnegative.",
                      complex = "Size argument cannot be complex.";
    fails(a, true, {"12"}, "getReshapeDims:sizeVector",
          "Size vector must have at least two elements.");
    fails(a, true, {"3+1i 4"}, "checkDimCommon:complexSize", complex);
    fails(a, true, {"-3 0.5"}, "checkDimCommon:nonnegativeSize", sign);
    for (const char *no_row : {"3; 4", "3 4.5", "3 NaN"})
        fails(a, true, {no_row}, "checkDimRow:rowSize", row);
    for (const char *no_int : {"3 Inf", "char 1x2: 'ab'", "cell 1x2: {3} {4}"})
        fails(a, true, {no_int}, "getReshapeDims:notRealInt", real);
    fails(a, true, {"3 5"}, "getReshapeDims:notSameNumel", same);
    fails(none, true, {"4294967296 4294967296"}, "getReshapeDims:notSameNumel", same); // 2^64
    fails(a, false, {"3 4", "1"}, "checkDimScalar:scalarSize",
          "Size arguments must be integer scalars.");
    for (const char *no_int : {"1.5", "NaN", "Inf", "logical 1x1: 1"})
        fails(a, false, {no_int, "12"}, "getReshapeDims:notRealInt", real);
    fails(a, false, {"double 0x0", "cell 0x0"}, "getReshapeDims:unknownDim",
          "Size can only have one unknown dimension.");
    for (const char *p : {"5", "0", "4294967296"})
        fails(a, false, {"double 0x0", p}, "getReshapeDims:notDivisible",
              std::string("Product of known dimensions, ") + p +
                  ", not divisible into total number of elements, 12.");
    fails(none, false, {"double 0x0", "0"}, "getReshapeDims:indeterminateAction",
          "Indeterminate reshape action requested.");
}

// A sparse array may have more elements than 64 bits count.
TEST_F(Reshape, SparseCountsAreExact) {
    oxArray *a = oxCreateSparse(4, 1, 1, oxREAL);
    const Sizes shape = {kwSize{1} << 41, kwSize{1} << 39};
    for (auto *set : {oxSetM, oxSetN}) set(a, kwSize{1} << 40); // only its size is looked at
    EXPECT_EQ(reshape(a, true, {"2199023255552 549755813888"}), shape);
    EXPECT_EQ(reshape(a, false, {"double 0x0", "549755813888"}), shape);
    EXPECT_RAISES("VELTRO:getReshapeDims:notSameNumel", nullptr,
                  reshape(a, true, {"549755813888 549755813888"}));
    oxSetM(a, 4);
    oxSetN(a, 1);
}

TEST_F(Reshape, FailingAllocations) {
    const auto act = [](const Arrays &in) {
        kwSize n;
        const oxArray *args[] = {in[1]};
        kwSize *dims = oxGetReshapeDims(true, args, 1, in[0], &n);
        oxFree(dims);
        return dims != nullptr;
    };
    for (const char *sizes : {"2 1", "sparse double 1x2: (0,0)=2 (0,1)=1"})
        sweep({.name = sizes, .inputs = {"1 2", sizes}, .act = act, .bare = false});
}

} // namespace
