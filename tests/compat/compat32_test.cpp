// The 32-bit level: what it converts, what it refuses, and the dimensions that it keeps.
#include <core/array.h>
#include <ox.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/host.h>

#include <ut.h>

#include <climits>
#include <functional>

using namespace ox;
using namespace ox::test;

namespace {

using Compat32 = HostTest;
constexpr kwSize huge = kwSize{1} << 31;

TEST_F(Compat32, FunctionsConvertAndForward) {
    const int dims[] = {2, 1, 3}, many[] = {1, 1, 1, 1, 1, 1, 1, 1, 2, 3}, empty[] = {4, 0};
    const char *names[] = {"a", "bc"};
    const char *rows[] = {"xy", "z"};
    const oxChar wide_text[] = {u'h', u'i', 0};
    const oxChar *wide_rows[] = {wide_text, wide_text + 1};
    const struct {
        oxArray *made;
        const char *expected;
    } table[] = {
        {oxCreateDoubleMatrix_700(1, 2, oxCOMPLEX), "double 1x2: 0+0i 0+0i"},
        {oxCreateNumericMatrix_700(2, 1, oxINT8_CLASS, oxREAL), "int8 2x1: 0; 0"},
        {oxCreateLogicalMatrix_700(0, INT_MAX), "logical 0x2147483647"},
        {oxCreateCellMatrix_700(1, 2), "cell 1x2: {} {}"},
        {oxCreateStructMatrix_700(1, 1, 2, names), "struct 1x1 a,bc: {} {}"},
        {oxCreateSparse_700(3, 2, 5, oxREAL), "sparse double 3x2 nzmax 5:"},
        {oxCreateSparseLogicalMatrix_700(3, 2, 1), "sparse logical 3x2:"},
        {oxCreateNumericArray_700(3, dims, oxSINGLE_CLASS, oxREAL),
         "single 2x1x3: 0; 0 | 0; 0 | 0; 0"},
        {oxCreateNumericArray_700(10, many, oxDOUBLE_CLASS, oxREAL),
         "double 1x1x1x1x1x1x1x1x2x3: 0 | 0 | 0 | 0 | 0 | 0"},
        {oxCreateNumericArray_700(0, dims, oxDOUBLE_CLASS, oxREAL), "double 0x0"},
        {oxCreateLogicalArray_700(2, nullptr), "logical 0x0"},
        {oxCreateCharArray_700(2, empty), "char 4x0"},
        {oxCreateCellArray_700(1, dims), "cell 2x1: {} {}"},
        {oxCreateStructArray_700(2, empty, 1, names), "struct 4x0 a:"},
        {oxCreateStringFromNChars_700("abc", 2), "char 1x2: 'ab'"},
        {oxCreateStringFromNChars_UTF8_700("abc", 0), "char 0x0"},
        {oxCreateStringFromNChars_UTF16_700(wide_text, 2), "char 1x2: 'hi'"},
        {oxCreateCharMatrixFromStrings_700(2, rows), "char 2x2: 'xy'; 'z\\u0000'"},
        {oxCreateCharMatrixFromStrs_700(2, rows), "char 2x2: 'xy'; 'z\\u0000'"},
        {oxCreateCharMatrixFromStrings_UTF8_700(1, rows), "char 1x2: 'xy'"},
        {oxCreateCharMatrixFromStrings_UTF16_700(2, wide_rows), "char 2x2: 'hi'; 'i\\u0000'"},
    };
    for (const auto &r : table) EXPECT_EQ(text(r.made), text(arr(r.expected)));
}

TEST_F(Compat32, ElementsSizesAndText) {
    oxArray *cell = arr("cell 1x3: {1} {2} {}"), *s = arr("struct 1x2 f,g: {1} {2} {3} {4}");
    EXPECT_EQ(oxGetScalar(oxGetCell_700(cell, 1)), 2);
    oxSetCell_700(cell, 2, arr("7"));
    EXPECT_EQ(text(cell), text(arr("cell 1x3: {1} {2} {7}")));
    EXPECT_EQ(oxGetScalar(oxGetField_700(s, 1, "f")), 3);
    EXPECT_EQ(oxGetScalar(oxGetFieldByNumber_700(s, 1, 1)), 4);
    oxDestroyArray(oxGetField_700(s, 0, "g"));
    oxSetField_700(s, 0, "g", arr("8"));
    oxDestroyArray(oxGetFieldByNumber_700(s, 1, 0));
    oxSetFieldByNumber_700(s, 1, 0, arr("9"));
    EXPECT_EQ(text(s), text(arr("struct 1x2 f,g: {1} {8} {9} {4}")));

    oxArray *a = arr("double 2x3: 1 2 3; 4 5 6");
    const int shape[] = {3, 1, 2}, subs[] = {2, 0, 1};
    EXPECT_EQ(oxSetDimensions_700(a, shape, 3), 0);
    EXPECT_EQ(oxGetNumberOfDimensions_700(a), 3);
    EXPECT_EQ(oxCalcSingleSubscript_700(a, 3, subs), 5);
    oxSetN_700(a, 2);
    oxSetM_700(a, 1);
    EXPECT_EQ(text(a), text(arr("double 1x2: 1 4")));
    int count = -1;
    EXPECT_TRUE(oxSubsCount_700(a, oxCreateString(":"), 2, 2, &count));
    EXPECT_EQ(count, 2);
    EXPECT_FALSE(oxSubsCount_700(a, arr("double 1x2: 1 2"), 1, 2, &count));
    EXPECT_EQ(count, 0);
    oxArray *sparse = arr("sparse double 2x2: (0,0)=1");
    oxSetNzmax_700(sparse, 1);
    EXPECT_EQ(oxGetNzmax_700(sparse), 1);

    char buf[8] = "-------";
    EXPECT_EQ(oxGetString_700(oxCreateString("abc"), buf, 3), 1);
    EXPECT_STREQ(buf, "ab");
    EXPECT_EQ(oxGetString_UTF8_700(oxCreateString("abc"), buf, 8), 0);
    oxGetNChars_700(oxCreateString("xyz"), buf, 1);
    EXPECT_STREQ(buf, "xbc");
    oxGetNChars_UTF8_700(oxCreateString("uv"), buf, 8);
    EXPECT_STREQ(buf, "uv");
}

TEST_F(Compat32, NegativeSizesRaiseTheTooLargeErrorInBothDirections) {
    oxArray *a = arr("double 1x2: 1 2"), *cell = arr("cell 1x1: {1}");
    oxArray *s = arr("struct 1x1 f: {1}"), *sparse = arr("sparse double 2x2: (0,0)=1");
    const int bad[] = {2, -1}, good[] = {2, 2};
    const char *rows[] = {"x"};
    char buf[2];
    int count;
    const std::function<void()> calls[] = {
        [&] { oxCreateDoubleMatrix_700(-1, 3, oxREAL); },
        [&] { oxCreateNumericMatrix_700(3, -1, oxINT8_CLASS, oxREAL); },
        [&] { oxCreateLogicalMatrix_700(-1, 0); },
        [&] { oxCreateCellMatrix_700(INT_MIN, 1); },
        [&] { oxCreateStructMatrix_700(-1, 1, 0, nullptr); },
        [&] { oxCreateSparse_700(1, 1, -1, oxREAL); },
        [&] { oxCreateSparseLogicalMatrix_700(1, -1, 1); },
        [&] { oxCreateNumericArray_700(2, bad, oxDOUBLE_CLASS, oxREAL); },
        [&] { oxCreateLogicalArray_700(-1, nullptr); },
        [&] { oxCreateCharArray_700(2, bad); },
        [&] { oxCreateCellArray_700(2, bad); },
        [&] { oxCreateStructArray_700(2, bad, 0, nullptr); },
        [&] { oxCreateStringFromNChars_700("x", -1); },
        [&] { oxCreateStringFromNChars_UTF8_700("x", -1); },
        [&] { oxCreateStringFromNChars_UTF16_700(u"x", -1); },
        [&] { oxCreateCharMatrixFromStrings_700(-1, rows); },
        [&] { oxCreateCharMatrixFromStrings_UTF8_700(-1, rows); },
        [&] { oxCreateCharMatrixFromStrs_700(-1, rows); },
        [&] { oxSetM_700(a, -1); },
        [&] { oxSetN_700(a, -1); },
        [&] { oxSetNzmax_700(sparse, -1); },
        [&] { oxSetDimensions_700(a, bad, 2); },
        [&] { oxSetDimensions_700(a, good, -2); },
        [&] { oxSetCell_700(cell, -1, nullptr); },
        [&] { oxSetField_700(s, -1, "f", nullptr); },
        [&] { oxSetFieldByNumber_700(s, -1, 0, nullptr); },
        [&] { oxSetProperty_700(s, -1, "f", a); },
        [&] { oxGetCell_700(cell, -1); },
        [&] { oxGetField_700(s, -1, "f"); },
        [&] { oxGetFieldByNumber_700(s, -1, 0); },
        [&] { oxGetProperty_700(s, -1, "f"); },
        [&] { oxCalcSingleSubscript_700(a, 2, bad); },
        [&] { oxSubsCount_700(a, a, -1, 1, &count); },
        [&] { oxGetString_700(a, buf, -1); },
        [&] { oxGetString_UTF8_700(a, buf, -1); },
        [&] { oxGetNChars_700(a, buf, -1); },
        [&] { oxGetNChars_UTF8_700(a, buf, -1); },
    };
    for (const auto &call : calls)
        EXPECT_RAISES("VELTRO:p64bitsize",
                      "Maximum variable size allowed by the function is exceeded.", call());
    EXPECT_EQ(text(a), text(arr("double 1x2: 1 2")));
}

TEST_F(Compat32, ResultsOf2To31AndMoreAreNotNarrowed) {
    const kwSize dims[] = {huge, 0, 2};
    oxArray *a = oxCreateNumericArray(3, dims, oxDOUBLE_CLASS, oxREAL);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetDimensions_700(a));
    const int subs[] = {0, 1};
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCalcSingleSubscript_700(a, 2, subs));
    int count;
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxSubsCount_700(a, oxCreateString(":"), 1, 3, &count));
    oxArray *sparse = arr("sparse double 2x2: (0,0)=1");
    oxSetNzmax(sparse, huge);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetNzmax_700(sparse));
    oxSetNzmax(sparse, huge - 1);
    EXPECT_EQ(oxGetNzmax_700(sparse), INT_MAX);
    oxSetNzmax(sparse, 1);
}

TEST_F(Compat32, DimensionsAreKeptWithTheArrayAndRefilledByEveryCall) {
    const kwSize three[] = {3, 4, 5}, two[] = {6, 10};
    oxArray *a = oxCreateNumericArray(3, three, oxINT8_CLASS, oxREAL);
    int *dims = oxGetDimensions_700(a);
    EXPECT_EQ(std::vector<int>(dims, dims + 3), (std::vector<int>{3, 4, 5}));
    EXPECT_EQ(oxGetDimensions_700(a), dims);
    oxSetDimensions(a, two, 2);
    dims = oxGetDimensions_700(a);
    EXPECT_EQ(a->dim32->length, 2);
    EXPECT_EQ(std::vector<int>(dims, dims + 2), (std::vector<int>{6, 10}));
    oxSetM(a, 7);
    EXPECT_EQ(*oxGetDimensions_700(a), 7);
    oxSetM(a, huge);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetDimensions_700(a));
    oxSetM(a, 6);

    oxArray *copy = oxDuplicateArray(a); // a copy starts without
    EXPECT_EQ(copy->dim32, nullptr);
    EXPECT_NE(oxGetDimensions_700(copy), oxGetDimensions_700(a));

    WithLayer layer;
    oxArray *lazy = arr("lazy 2x3: 7"); // whose class knows its dimensions
    dims = oxGetDimensions_700(lazy);
    EXPECT_EQ(std::vector<int>(dims, dims + 2), (std::vector<int>{2, 3}));
}

TEST_F(Compat32, SparseIndexVectorsAreRefusedByName) {
    oxArray *a = arr("sparse double 2x2: (0,0)=1");
    const int position = 0;
    const struct {
        const char *name;
        std::function<void()> call;
    } table[] = {
        {"oxGetIr_700", [&] { oxGetIr_700(a); }},
        {"oxGetJc_700", [&] { oxGetJc_700(a); }},
        {"oxSetIr_700", [&] { oxSetIr_700(a, nullptr); }},
        {"oxSetJc_700", [&] { oxSetJc_700(a, nullptr); }},
        {"oxSparseReference_700", [&] { oxSparseReference_700(a, &position, 1, nullptr, 0); }},
        {"oxReshapeSparse_700",
         [&] { oxReshapeSparse_700(2, 2, nullptr, nullptr, 1, 4, nullptr); }},
    };
    int last_line = 0;
    for (const auto &r : table) {
        void *block = oxMalloc(8); // the raise frees it, as every raise does
        const std::string message =
            std::string("64-bit vex files using sparse matrices must be rebuilt with the "
                        "\"-largeArrayDims\" option: ") +
            r.name + " cannot serve them. See the release notes for more details.";
        EXPECT_RAISES("VELTRO:matrix:ERR_SPARSE_64BIT_OBSOLETE", message.c_str(), r.call());
        EXPECT_FALSE(oxIsOnAllocList(block));
        const char *file;
        int line;
        utGetLastErrorPlace(&file, &line);
        EXPECT_STREQ(file, "compat32");
        EXPECT_GT(line, last_line);
        last_line = line;
    }
}

} // namespace
