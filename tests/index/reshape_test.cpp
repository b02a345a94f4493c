// The sizes of a reshape: both forms, every message, and counts beyond 32 and 64 bits.
#include <support/suite.h>

namespace {

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
        {twelve, true, {"int8 1x3: 2 2 3"}, {2, 2, 3}},
        {twelve, true, {"sparse double 1x2: (0,0)=2 (0,1)=6"}, {2, 6}},
        {twelve, true, {"12 1 1 1"}, {12, 1}}, // ones at the end go
        {twelve, false, {"3", "uint64 1x1: 4"}, {3, 4}},
        {twelve, false, {"3", "double 0x0", "2"}, {3, 2, 2}},
        {twelve, false, {"char 0x3", "12"}, {1, 12}},
        {"double 0x5", true, {"7 0 1e300"}, {7, 0, ~kwSize{0}}},
        {"double 0x5", false, {"double 0x0", "5"}, {0, 5}},
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
    fails(a, false, {"1+1i", "1"}, "checkDimCommon:complexSize", complex);
    fails(a, false, {"-1", "1"}, "checkDimCommon:nonnegativeSize", sign);
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
    const kwSize m = oxGetM(a);
    oxSetM(a, kwSize{1} << 40);
    oxSetN(a, kwSize{1} << 40); // only its size is looked at
    EXPECT_EQ(reshape(a, true, {"2199023255552 549755813888"}),
              Sizes({kwSize{1} << 41, kwSize{1} << 39}));
    EXPECT_EQ(reshape(a, false, {"double 0x0", "549755813888"}),
              Sizes({kwSize{1} << 41, kwSize{1} << 39}));
    EXPECT_RAISES("VELTRO:getReshapeDims:notSameNumel", nullptr,
                  reshape(a, true, {"549755813888 549755813888"}));
    oxSetM(a, m);
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
