// The sizes of a reshape: both forms, every message, and counts beyond 32 and 64 bits.
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>

namespace ox::test {
namespace {

using Reshape = HostTest;
using Sizes = std::vector<kwSize>;

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
    const oxArray *a = oxCreateNumericMatrix(3, 4, oxINT8_CLASS, oxREAL);
    EXPECT_EQ(reshape(a, true, {"2 6"}), Sizes({2, 6}));
    EXPECT_EQ(reshape(a, true, {"int8 1x3: 2 2 3"}), Sizes({2, 2, 3}));
    EXPECT_EQ(reshape(a, true, {"sparse double 1x2: (0,0)=2 (0,1)=6"}), Sizes({2, 6}));
    EXPECT_EQ(reshape(a, true, {"12 1 1 1"}), Sizes({12, 1})); // ones at the end go
    EXPECT_EQ(reshape(a, false, {"3", "uint64 1x1: 4"}), Sizes({3, 4}));
    EXPECT_EQ(reshape(a, false, {"3", "double 0x0", "2"}), Sizes({3, 2, 2}));
    EXPECT_EQ(reshape(a, false, {"char 0x3", "12"}), Sizes({1, 12}));
    const oxArray *empty = arr("double 0x5");
    EXPECT_EQ(reshape(empty, true, {"7 0 1e300"}), Sizes({7, 0, ~kwSize{0}}));
    EXPECT_EQ(reshape(empty, false, {"double 0x0", "5"}), Sizes({0, 5}));
}

TEST_F(Reshape, WhatIsNoSize) {
    const oxArray *a = oxCreateNumericMatrix(3, 4, oxINT8_CLASS, oxREAL);
    const struct {
        bool vector;
        std::vector<const char *> args;
        const char *id, *message;
    } cases[] = {
        {true, {"12"}, "getReshapeDims:sizeVector", "Size vector must have at least two elements."},
        {true, {"3+1i 4"}, "checkDimCommon:complexSize", "Size argument cannot be complex."},
        {true,
         {"-3 0.5"},
         "checkDimCommon:nonnegativeSize",
         "Size vector elements should be nonnegative."},
        {true,
         {"3; 4"},
         "checkDimRow:rowSize",
         "Size vector must be a row vector with integer elements."},
        {true, {"3 4.5"}, "checkDimRow:rowSize", nullptr},
        {true, {"3 NaN"}, "checkDimRow:rowSize", nullptr},
        {true, {"3 Inf"}, "getReshapeDims:notRealInt", "Size arguments must be real integers."},
        {true, {"char 1x2: 'ab'"}, "getReshapeDims:notRealInt", nullptr},
        {true, {"cell 1x2: {3} {4}"}, "getReshapeDims:notRealInt", nullptr},
        {true,
         {"3 5"},
         "getReshapeDims:notSameNumel",
         "To RESHAPE the number of elements must not change."},
        {false,
         {"3 4", "1"},
         "checkDimScalar:scalarSize",
         "Size arguments must be integer scalars."},
        {false, {"1+1i", "1"}, "checkDimCommon:complexSize", nullptr},
        {false, {"-1", "1"}, "checkDimCommon:nonnegativeSize", nullptr},
        {false, {"1.5", "1"}, "getReshapeDims:notRealInt", nullptr},
        {false, {"NaN", "1"}, "getReshapeDims:notRealInt", nullptr},
        {false, {"Inf", "1"}, "getReshapeDims:notRealInt", nullptr},
        {false, {"logical 1x1: 1", "12"}, "getReshapeDims:notRealInt", nullptr},
        {false,
         {"double 0x0", "cell 0x0"},
         "getReshapeDims:unknownDim",
         "Size can only have one unknown dimension."},
        {false,
         {"double 0x0", "5"},
         "getReshapeDims:notDivisible",
         "Product of known dimensions, 5, not divisible into total number of elements, 12."},
        {false,
         {"double 0x0", "0"},
         "getReshapeDims:notDivisible",
         "Product of known dimensions, 0, not divisible into total number of elements, 12."},
        {false,
         {"double 0x0", "4294967296", "1099511627776"},
         "getReshapeDims:notDivisible",
         "Product of known dimensions, 4722366482869645213696, not divisible into total number of "
         "elements, 12."},
        {false, {"4294967296", "4294967296"}, "getReshapeDims:notSameNumel", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args[0]);
        EXPECT_RAISES((std::string("VELTRO:") + c.id).c_str(), c.message,
                      reshape(a, c.vector, c.args));
    }
    const oxArray *empty = arr("double 0x1");
    EXPECT_RAISES("VELTRO:getReshapeDims:indeterminateAction",
                  "Indeterminate reshape action requested.",
                  reshape(empty, false, {"double 0x0", "0"}));
    // 2^64 elements are not none.
    EXPECT_RAISES("VELTRO:getReshapeDims:notSameNumel", nullptr,
                  reshape(empty, true, {"4294967296 4294967296"}));
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
        sweep(
            {.name = sizes, .inputs = {"1 2", sizes}, .make = nullptr, .act = act, .bare = false});
}

} // namespace
} // namespace ox::test
