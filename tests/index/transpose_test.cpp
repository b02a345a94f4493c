// Transposes: kernels of every width against the formula, and arrays with their storage.
#include <core/stream_copy.h>
#include <index/transpose_kernels.h>
#include <support/calls.h>

#include <cstring>

#include "each_target.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes numbered(kwSize n) {
    Bytes b(n);
    for (kwSize i = 0; i < n; ++i) b[i] = static_cast<unsigned char>(i * 167 + (i >> 8) * 13);
    return b;
}

// dst(i, j) = src(j, i) byte by byte; bytes between the rows of dst keep their 0xEE.
Bytes model(const Bytes &src, kwSize m, kwSize n, kwSize lds, kwSize ldd, kwSize w) {
    Bytes dst(m * ldd * w, 0xEE);
    for (kwSize i = 0; i < m; ++i)
        for (kwSize j = 0; j < n; ++j)
            std::memcpy(&dst[(i * ldd + j) * w], &src[(i + j * lds) * w], w);
    return dst;
}

// Sides below, at and above every tile size and the staging run, also no multiples of a line.
constexpr kwSize sides[][2] = {{1, 1},    {2, 2},      {3, 5},     {7, 7},     {16, 16}, {17, 33},
                               {31, 31},  {64, 64},    {65, 65},   {33, 70},   {8, 600}, {600, 8},
                               {65, 600}, {130, 1100}, {129, 128}, {150, 150}, {257, 95}};

void check_kernels(const TransposeKernels *k, kwSize w, kwSize m, kwSize n, kwSize extra) {
    SCOPED_TRACE(testing::Message() << "width " << w << ", " << m << " by " << n << " + " << extra);
    const kwSize lds = m + extra, ldd = n + extra;
    Bytes src = numbered(lds * n * w);
    const Bytes want = model(src, m, n, lds, ldd, w);
    for (TransposeKernel kernel : {k->cached, k->streaming}) {
        Bytes dst(want.size() + 64, 0xEE);
        kernel(dst.data() + w, ldd, src.data(), lds, m, n);
        stream_fence();
        ASSERT_EQ(std::memcmp(dst.data() + w, want.data(), want.size()), 0);
    }
    if (lds != n) return;
    k->in_place(src.data(), n);
    ASSERT_EQ(src, want);
}

TEST(TransposeKernels, AgreeWithTheFormulaForEveryWidthAndPitch) {
    for_each_target([] {
        for (kwSize w : {1, 2, 4, 8, 32})
            for (auto [m, n] : sides)
                for (kwSize extra : {0, 3})
                    for (const TransposeKernels *k : {scalar_transpose(w), vector_transpose(w)})
                        check_kernels(k, w, m, n, extra);
    });
    EXPECT_EQ(vector_transpose(3), nullptr);
}

using Transpose = LayerTest;

const std::string refused = "!transpose:notImplemented ",
                  no_element = "Transpose on arbitrary element size is not implemented";

TEST_F(Transpose, EveryClass) {
    expect_rows([](auto &in) { return oxTranspose(in[0]); },
                {{{"1 2 3"}, "1; 2; 3", {}, true}, // real vectors share their data
                 {{"int8 3x1: 1; 2; 3"}, "int8 1x3: 1 2 3", {}, true},
                 {{"cell 1x2: {1} {2}"}, "cell 2x1: {1} {2}", {}, true},
                 {{"1+1i 2-2i; 3 4"}, "1+1i 3; 2-2i 4"}, // not conjugated
                 {{"double 0x3"}, "double 3x0"},
                 {{"cell 2x2: {1} {2} {} {char 1x1: 'x'}"}, "cell 2x2: {1} {} {2} {char 1x1: 'x'}"},
                 {{"sparse double 2x2: (0,1)=1+1i"}, "sparse double 2x2: (1,0)=1+1i"},
                 {{"function_handle 2x2: 1 2 3 4"}, "function_handle 2x2: 1 3 2 4"},
                 {{"double 1x2x2: 1 2 | 3 4"}, refused + "Transpose on ND array is not defined"},
                 {{"opaque 2x2: 1 2 3 4"}, refused + no_element},
                 {{"object Point 2x2 px: {1} {2} {3} {4}"}, refused + no_element}},
                {});
}

TEST_F(Transpose, AReusableSquareIsTransposedInItsOwnBlock) {
    oxArray *a = arr("1+5i 2; 3 4+6i");
    a->set_reusable(true);
    void *block = a->num.pdata;
    oxArray *b = oxTranspose(a);
    EXPECT_EQ(b->num.pdata, block);
    EXPECT_EQ(text(b), text(arr("1+5i 3; 2 4+6i")));
    EXPECT_EQ(text(a), text(b));
    EXPECT_FALSE(b->has_flag(oxFLAG_REUSABLE));
}

TEST_F(Transpose, BlocksByClass) {
    expect_rows(
        [](auto &in) {
            oxInPlaceBlockTranspose(in[0], oxGetData(in[0]), 3, 2); // as a 3-by-2 block
            return in[0];
        },
        {{{"int16 2x3: 1 2 3; 4 5 6"}, "int16 2x3: 1 4 2; 5 3 6"},
         {{"cell 2x3: {1} {} {} {} {} {}"}, "cell 2x3: {1} {} {} {} {} {}"}});
}

} // namespace
