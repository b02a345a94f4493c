// The 32-bit level: what it converts, what it refuses, and the dimensions that it keeps.
#include <support/suite.h>

#include <climits>
#include <functional>
#include <ut.h>
#include <utility>

namespace {

using Compat32 = HostTest;
constexpr kwSize huge = kwSize{1} << 31;

const char *fields[] = {"a", "bc"}, *strings[] = {"xy", "z"};
const oxChar units[] = {u'h', u'i', 0}, *wide_strings[] = {units, units + 1};

// A list of two sizes.
struct List {
    int list[2];
    operator const int *() const { return list; }
};

oxArray *number(int x) { return oxCreateDoubleScalar(x); }
oxArray *abc() { return oxCreateString("abc"); }
oxArray *cell() { return arr("cell 1x3: {1} {} {3}"); }
oxArray *fg() { return arr("struct 1x2 f,g: {1} {2} {3} {}"); }
oxArray *after(oxArray *a, const std::function<void(oxArray *)> &call) {
    call(a);
    return a;
}
template<class Get> oxArray *text_by(Get get, int n) {
    char buf[] = "-------";
    get(abc(), buf, n);
    return oxCreateString(buf);
}
oxArray *subs_count(const oxArray *sub, int k, int n) {
    int count = -1;
    const bool told = oxSubsCount_700(arr("1 2; 3 4"), sub, k, n, &count);
    return number(told ? count : count - 1);
}

#define CALL(...) [](int m, [[maybe_unused]] int n) -> oxArray * { return __VA_ARGS__; }
#define CHANGED(a, ...) CALL(after(a, [=](oxArray *x) { __VA_ARGS__; }))

// The call with the sizes or positions 1 and 2, of which it uses so many.
const struct {
    int sizes;
    const char *expected;
    oxArray *(*call)(int m, int n);
} calls[] = {
    {2, "double 1x2: 0+0i 0+0i", CALL(oxCreateDoubleMatrix_700(m, n, oxCOMPLEX))},
    {2, "int8 1x2: 0 0", CALL(oxCreateNumericMatrix_700(m, n, oxINT8_CLASS, oxREAL))},
    {2, "logical 1x2: 0 0", CALL(oxCreateLogicalMatrix_700(m, n))},
    {2, "cell 1x2: {} {}", CALL(oxCreateCellMatrix_700(m, n))},
    {2, "struct 1x2 a,bc: {} {} {} {}", CALL(oxCreateStructMatrix_700(m, n, 2, fields))},
    {2, "sparse double 1x2", CALL(oxCreateSparse_700(m, n, 5, oxREAL))},
    {1, "1", CALL(number(oxGetNzmax_700(oxCreateSparse_700(3, 2, m, oxREAL))))},
    {2, "sparse logical 1x2", CALL(oxCreateSparseLogicalMatrix_700(m, n, 1))},
    {1, "1", CALL(number(oxGetNzmax_700(oxCreateSparseLogicalMatrix_700(3, 2, m))))},
    {2, "single 1x2: 0 0", CALL(oxCreateNumericArray_700(2, List{m, n}, oxSINGLE_CLASS, oxREAL))},
    {1, "logical 0x0", CALL(oxCreateLogicalArray_700(m, nullptr))},
    {1, "double 0x0", CALL(oxCreateNumericArray_700(m - 1, List{}, oxDOUBLE_CLASS, oxREAL))},
    {2, "char 1x2: '\\u0000\\u0000'", CALL(oxCreateCharArray_700(2, List{m, n}))},
    {2, "cell 1x2: {} {}", CALL(oxCreateCellArray_700(2, List{m, n}))},
    {2, "struct 1x2 a: {} {}", CALL(oxCreateStructArray_700(2, List{m, n}, 1, fields))},
    {1, "char 1x1: 'a'", CALL(oxCreateStringFromNChars_700("abc", m))},
    {1, "char 1x1: 'a'", CALL(oxCreateStringFromNChars_UTF8_700("abc", m))},
    {1, "char 1x1: 'h'", CALL(oxCreateStringFromNChars_UTF16_700(units, m))},
    {1, "char 1x2: 'xy'", CALL(oxCreateCharMatrixFromStrings_700(m, strings))},
    {1, "char 1x2: 'xy'", CALL(oxCreateCharMatrixFromStrs_700(m, strings))},
    {1, "char 1x2: 'xy'", CALL(oxCreateCharMatrixFromStrings_UTF8_700(m, strings))},
    {1, "char 1x2: 'hi'", CALL(oxCreateCharMatrixFromStrings_UTF16_700(m, wide_strings))},
    {1, "cell 1x3: {1} {7} {3}", CHANGED(cell(), oxSetCell_700(x, m, number(7)))},
    {1, "struct 1x2 f,g: {1} {2} {3} {7}", CHANGED(fg(), oxSetField_700(x, m, "g", number(7)))},
    {1, "struct 1x2 f,g: {1} {2} {3} {7}",
     CHANGED(fg(), oxSetFieldByNumber_700(x, m, 1, number(7)))},
    {1, "3", CALL(oxGetCell_700(cell(), 2 * m))},
    {1, "3", CALL(oxGetField_700(fg(), m, "f"))},
    {1, "3", CALL(oxGetFieldByNumber_700(fg(), m, 0))},
    {1, "cell 1x3: {1} {} {3}", CHANGED(cell(), oxSetM_700(x, m))},
    {1, "char 1x1: 'a'", CHANGED(abc(), oxSetN_700(x, m))},
    {1, "sparse double 2x2: (0,0)=1",
     CHANGED(arr("sparse double 2x2: (0,0)=1"), oxSetNzmax_700(x, m))},
    {2, "double 1x2: 1 3", CHANGED(arr("1 2; 3 4"), oxSetDimensions_700(x, List{m, n}, 2))},
    {2, "6", CALL(number(oxCalcSingleSubscript_700(oxCreateCellMatrix(4, 3), 2, List{n, m})))},
    {2, "2", CALL(subs_count(oxCreateString(":"), m, n))},
    {1, "-1", CALL(subs_count(arr("1 2"), m, 2))}, // the values must be converted first
    {1, "char 1x1: 'a'", CALL(text_by(oxGetString_700, 2 * m))},
    {1, "char 1x1: 'a'", CALL(text_by(oxGetString_UTF8_700, 2 * m))},
    {1, "char 1x7: 'a------'", CALL(text_by(oxGetNChars_700, m))},
    {1, "char 1x7: 'a------'", CALL(text_by(oxGetNChars_UTF8_700, m))},
};

TEST_F(Compat32, FunctionsConvertAndForwardAndRaiseTheTooLargeErrorForNegativeSizes) {
    for (const auto &c : calls) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(text(c.call(1, 2)), text(arr(c.expected)));
        EXPECT_RAISES("VELTRO:p64bitsize",
                      "Maximum variable size allowed by the function is exceeded.", c.call(-1, 2));
        if (c.sizes == 2) {
            EXPECT_RAISES_ENTRY(FP64BITSIZE, c.call(1, INT_MIN));
        }
    }
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetProperty_700(fg(), -1, "f"));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxSetProperty_700(fg(), -1, "f", abc()));
}

TEST_F(Compat32, ResultsOf2To31AndMoreAreNotNarrowed) {
    oxArray *a = oxCreateDoubleMatrix(huge, 0, oxREAL);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetDimensions_700(a));
    const int subs[] = {0, 1};
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxCalcSingleSubscript_700(a, 2, subs));
    int count;
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxSubsCount_700(a, oxCreateString(":"), 1, 2, &count));
    oxArray *sparse = arr("sparse double 2x2: (0,0)=1");
    oxSetNzmax(sparse, huge);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, oxGetNzmax_700(sparse));
    oxSetNzmax(sparse, huge - 1);
    EXPECT_EQ(oxGetNzmax_700(sparse), INT_MAX);
    oxSetNzmax(sparse, 1);
}

TEST_F(Compat32, DimensionsAreKeptWithTheArrayAndRefilledByEveryCall) {
    const WithLayer layer;
    const auto read = [](const oxArray *a) {
        const int *dims = oxGetDimensions_700(a);
        return std::vector<int>(dims, dims + oxGetNumberOfDimensions_700(a));
    };
    oxArray *a = oxCreateNumericArray(3, std::vector<kwSize>{3, 4, 5}.data(), oxINT8_CLASS, oxREAL);
    EXPECT_EQ(read(a), (std::vector<int>{3, 4, 5}));
    EXPECT_EQ(oxGetDimensions_700(a), a->dim32->dims);
    oxSetN(a, 20);
    EXPECT_EQ(read(a), (std::vector<int>{3, 20}));
    EXPECT_EQ(a->dim32->length, 2);
    EXPECT_EQ(oxDuplicateArray(a)->dim32, nullptr);                // a copy starts without
    EXPECT_EQ(read(arr("lazy 2x3: 7")), (std::vector<int>{2, 3})); // its class knows them
}

TEST_F(Compat32, SparseIndexVectorsAreRefusedByName) {
    oxArray *a = arr("sparse double 2x2: (0,0)=1");
    const int position = 0;
    const std::pair<const char *, std::function<void()>> table[] = {
        {"oxGetIr_700", [&] { oxGetIr_700(a); }},
        {"oxGetJc_700", [&] { oxGetJc_700(a); }},
        {"oxSetIr_700", [&] { oxSetIr_700(a, nullptr); }},
        {"oxSetJc_700", [&] { oxSetJc_700(a, nullptr); }},
        {"oxSparseReference_700", [&] { oxSparseReference_700(a, &position, 1, nullptr, 0); }},
        {"oxReshapeSparse_700",
         [&] { oxReshapeSparse_700(2, 2, nullptr, nullptr, 1, 4, nullptr); }},
    };
    for (int last_line = 0; const auto &[name, call] : table) {
        const std::string message =
            std::string("64-bit vex files using sparse matrices must be rebuilt with the "
                        "\"-largeArrayDims\" option: ") +
            name + " cannot serve them. See the release notes for more details.";
        EXPECT_RAISES("VELTRO:matrix:ERR_SPARSE_64BIT_OBSOLETE", message.c_str(), call());
        const char *file;
        int line;
        utGetLastErrorPlace(&file, &line);
        EXPECT_STREQ(file, "compat32");
        EXPECT_GT(line, std::exchange(last_line, line));
    }
}

} // namespace
