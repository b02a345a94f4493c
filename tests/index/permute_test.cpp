// Permutes against a model that moves one element after the other, and the sizes of a reshape with
// counts beyond 32 and 64 bits; what the arguments must be.
#include <containers/check_array.h>
#include <support/calls.h>

#include <algorithm>
#include <cstring>

#include "each_target.h"

namespace {

using Permute = LayerTest;

oxArray *permute(oxArray *a, oxArray *order) {
    const oxArray *prhs[] = {a, order};
    oxArray *plhs[1] = {};
    oxPermuteFcn(1, plhs, 2, prhs);
    return plhs[0];
}

// Permutes random bytes and looks for each element where the model says.
void check_order(Random &random, const Dims &dims, oxClassID id, oxComplexity complexity) {
    const Contexts contexts;
    const kwSize n = dims.size();
    oxArray *p = oxColonop(1, 1, static_cast<double>(n), oxDOUBLE_CLASS);
    for (kwSize k = n; k-- > 1;) std::swap(oxGetPr(p)[k], oxGetPr(p)[random.below(k + 1)]);
    std::vector<kwSize> order(oxGetPr(p), oxGetPr(p) + n), stride(n, 1); // one-based
    for (kwSize k = 1; k < n; ++k) stride[k] = stride[k - 1] * dims[k - 1];
    oxArray *a = oxCreateNumericArray(n, dims.data(), id, complexity);
    const kwSize w = oxGetElementSize(a), count = a->get_number_of_elements();
    for (auto *block : {data<char>(a), imag<char>(a)})
        for (kwSize i = 0; block && i < count * w; ++i)
            block[i] = static_cast<char>(random.below(100));
    const oxArray *b = permute(a, p);
    ASSERT_FALSE(check_array(b));
    for (kwSize k = 0; k < n; ++k)
        ASSERT_EQ(k < b->ndims ? b->get_dimensions()[k] : 1, dims[order[k] - 1]);
    ASSERT_TRUE(b->ndims == 2 || b->get_dimensions()[b->ndims - 1] != 1 ||
                std::is_sorted(order.begin(), order.end()));
    for (kwSize i = 0; i < count; ++i) {
        kwSize at = 0, rest = i;
        for (kwSize k : order) {
            at += rest % dims[k - 1] * stride[k - 1] * w;
            rest /= dims[k - 1];
        }
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

TEST_F(Permute, ClassesAndOrders) {
    const auto call = [](const Arrays &in) { return permute(in[0], in[1]); };
    const std::string few = "!permute:tooFewIndices ORDER must have at least N elements for an "
                            "N-D array",
                      no_class = "!permute:unsupportedType Unsupported data type";
    expect_rows(call,
                {{{"double 1x1x2: 1 | 2+1i", "3 2 1"}, "1; 2+1i"}, // ones at the end go
                 {{"struct 1x2 a,b: {1} {2} {} {4}", "2 1"}, "struct 2x1 a,b: {1} {2} {} {4}"},
                 {{"cell 1x2: {1} {2}", "2 1"}, "cell 2x1: {1} {2}"},
                 {{"char 1x2: 'ab'", "2 1"}, "char 2x1: 'a'; 'b'"},
                 {{"sparse double 2x2: (0,1)=3", "2 1 3"}, "sparse double 2x2: (1,0)=3"},
                 {{"sparse double 2x2: (0,1)=3", "1 3 2"}, no_class},
                 {{"1 2; 3 4", "sparse double 1x2: (0,0)=2 (0,1)=1"}, "1 3; 2 4"},
                 {{"1 2; 3 4", "1.5 0.5"}, "1 3; 2 4"},
                 {{"cell 1x2: {1} {2}", "1 2 3"}, "cell 1x2: {1} {2}", {}, true},
                 {{"int64 1x2: 1 2", "1 2"},
                  "int64 1x2: 1 2",
                  {},
                  true}, // the identity comes before the class
                 {{"1 2", "int8 1x2: 1 2"},
                  "!permute:badIndexType ORDER must contain double-precision indices"},
                 {{"1 2", "1"}, few},
                 {{"double 1x2x2: 1 2 | 3 4", "1 2"}, few},
                 {{"1 2", "1 1"},
                  "!permute:repeatedIndex ORDER cannot contain repeated permutation indices"}});
    for (const char *in :
         {"int64 1x2: 1 2", "uint64 1x2: 1 2", "object Point 1x2 px: {1} {2}", "opaque 1x2: 1 2"})
        expect_rows(call, {{{in, "2 1"}, no_class}});
    for (const char *order : {"1 3", "0.4 1", "1 NaN", "-1 1e300", "1 1 9"}) // before repeats
        expect_rows(call, {{{"1 2", order},
                            "!permute:badIndex ORDER contains an invalid permutation index"}});
}

TEST_F(Permute, CountsOfArguments) {
    const oxArray *prhs[] = {arr("1"), arr("1"), arr("1")};
    oxArray *plhs[2];
    EXPECT_RAISES_ENTRY(FMAXLHS, oxPermuteFcn(2, plhs, 3, prhs)); // outputs first
    EXPECT_RAISES_ENTRY(FMAXRHS, oxPermuteFcn(1, plhs, 3, prhs));
    EXPECT_RAISES_ENTRY(FMINRHS, oxPermuteFcn(0, plhs, 1, prhs));
}

using Reshape = HostTest;
// The sizes as an array: of a size vector, or of two and more size arguments.
oxArray *reshape(const Arrays &in) {
    kwSize n = 0;
    const int count = static_cast<int>(in.size()) - 1;
    const Subs args(in.begin() + 1, in.end());
    kwSize *dims = oxGetReshapeDims(count == 1, Subs(args).data(), count, in[0], &n);
    oxArray *sizes = oxCreateNumericMatrix(1, n, oxUINT64_CLASS, oxREAL);
    std::copy_n(dims, n, data<uint64_t>(sizes));
    oxFree(dims);
    return sizes;
}

TEST_F(Reshape, Sizes) {
    const std::string a = "cell 3x4: {} {} {} {} {} {} {} {} {} {} {} {}", none = "double 0x1",
                      big = "sparse double 2305843009213693952x8", // 2^64 elements
        same = "!getReshapeDims:notSameNumel To RESHAPE the number of elements must "
               "not change.",
                      row = "!checkDimRow:rowSize Size vector must be a row vector with integer "
                            "elements.",
                      real = "!getReshapeDims:notRealInt Size arguments must be real integers.",
                      divides = "!getReshapeDims:notDivisible Product of known dimensions, ";
    expect_rows(
        reshape,
        {{{a, "2 6"}, "uint64 1x2: 2 6"},
         {{a, "sparse double 1x2: (0,0)=2 (0,1)=6"}, "uint64 1x2: 2 6"},
         {{a, "12 1 1 1"}, "uint64 1x2: 12 1"}, // ones at the end go
         {{a, "3", "double 0x0", "2"}, "uint64 1x3: 3 2 2"},
         {{a, "char 0x3", "12"}, "uint64 1x2: 1 12"},
         {{"double 0x5", "7 0 1e300"}, "uint64 1x3: 7 0 18446744073709551615"},
         {{"double 0x5", "int64 1x2: 9007199254740993 0"}, "uint64 1x2: 9007199254740993 0"},
         {{"double 0x5", "double 0x0", "5"}, "uint64 1x2: 0 5"},
         {{big, "4611686018427387904 4"}, "uint64 1x2: 4611686018427387904 4"},
         {{big, "double 0x0", "4"}, "uint64 1x2: 4611686018427387904 4"},
         {{big, "4611686018427387904 8"}, same},
         {{none, "4294967296 4294967296"}, same},
         {{a, "3 5"}, same},
         {{a, "12"}, "!getReshapeDims:sizeVector Size vector must have at least two elements."},
         {{a, "3+1i 4"}, "!checkDimCommon:complexSize Size argument cannot be complex."},
         {{a, "-3 0.5"},
          "!checkDimCommon:nonnegativeSize Size vector elements should be nonnegative."},
         {{a, "3 4", "1"}, "!checkDimScalar:scalarSize Size arguments must be integer scalars."},
         {{a, "double 0x0", "cell 0x0"},
          "!getReshapeDims:unknownDim Size can only have one unknown dimension."},
         {{none, "double 0x0", "0"},
          "!getReshapeDims:indeterminateAction Indeterminate reshape action requested."}});
    for (const char *sizes : {"3; 4", "3 4.5", "3 NaN"}) expect_rows(reshape, {{{a, sizes}, row}});
    for (const char *sizes : {"3 Inf", "char 1x2: 'ab'", "cell 1x2: {3} {4}"})
        expect_rows(reshape, {{{a, sizes}, real}});
    for (const char *m : {"1.5", "NaN", "Inf", "logical 1x1: 1"})
        expect_rows(reshape, {{{a, m, "12"}, real}});
    for (const std::string n : {"5", "0", "4294967296"})
        expect_rows(reshape,
                    {{{a, "double 0x0", n},
                      divides + n + ", not divisible into total number of elements, 12."}});
}

} // namespace
