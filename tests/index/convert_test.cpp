// Element conversion: values, warnings and their order, whole arrays, and the must-be family.
#include <containers/check_array.h>
#include <core/imaginary.h>
#include <index/operands/conversion_warnings.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/faults.h>
#include <support/host.h>

#include <cmath>
#include <ut.h>

namespace ox::test {
namespace {

class Convert : public HostTest {
protected:
    void SetUp() override {
        shown_conversion_warnings(); // the manager keeps the callback for good
        HostTest::SetUp();
    }
    WithLayer layer;
};
using ConvertSweep = Convert;

// The warnings of a string of letters: n NaN, o out of range, r rounded, c cut to char.
std::vector<Warning> warnings(const std::string &letters, const std::string &name) {
    std::vector<Warning> w;
    for (char c : letters)
        if (c == 'n')
            w.push_back({"VELTRO:intConvertNaN", "NaN converted to " + name + "(0)."});
        else if (c == 'o')
            w.push_back({"VELTRO:intConvertOverflow", "Out of range value converted to intmin('" +
                                                          name + "') or intmax('" + name + "')."});
        else if (c == 'r')
            w.push_back({"VELTRO:intConvertNonIntVal",
                         "Conversion rounded non-integer floating point value to nearest " + name +
                             " value."});
        else
            w.push_back({"VELTRO:nonIntegerTruncatedInConversionToChar",
                         "Out of range or non-integer values truncated during conversion to "
                         "character."});
    return w;
}

struct Row {
    const char *in;
    oxClassID to;
    const char *out; // null: no conversion
    const char *shown = "";
};

// Clang-format would spread the table.
// clang-format off
const Row rows_of_values[] = {
    {"-128.5 -127.5 2.5 -2.5 NaN 127.4", oxINT8_CLASS, "int8 1x6: -128 -128 3 -3 0 127", "orn"},
    {"-0.3 -0.0 0.3 255 255.2", oxUINT8_CLASS, "uint8 1x5: 0 0 0 255 255", "or"},
    {"0.49999999999999994 0.5 1.5", oxINT32_CLASS, "int32 1x3: 1 1 2", "r"},
    {"4294967295 4294967296 -1", oxUINT32_CLASS, "uint32 1x3: 4294967295 4294967295 0", "o"},
    {"Inf -Inf", oxINT16_CLASS, "int16 1x2: 32767 -32768", "o"},
    {"1152921504606846976 4503599627370497 -9223372036854775808", oxINT64_CLASS,
     "int64 1x3: 1152921504606846976 4503599627370497 -9223372036854775808"},
    {"9223372036854775808 -9223372036854777856 NaN 0.5", oxINT64_CLASS,
     "int64 1x4: 9223372036854775807 -9223372036854775808 0 1", "onr"},
    {"9223372036854775808 18446744073709549568 18446744073709551616 -0.3 NaN 2.5", oxUINT64_CLASS,
     "uint64 1x6: 9223372036854775808 18446744073709549568 18446744073709551615 0 0 3", "onr"},
    {"single 1x2: 8388609 0.5", oxINT32_CLASS, "int32 1x2: 8388609 1", "r"},
    {"int64 1x1: 9007199791611905", oxSINGLE_CLASS, "single 1x1: 9007200328482816"}, // one rounding
    {"int8 1x2: -5 7", oxCHAR_CLASS, "char 1x2: '\\u0000\\u0007'", "o"},
    {"int32 1x2: 70000 -1", oxUINT16_CLASS, "uint16 1x2: 65535 0", "o"},
    {"uint64 1x1: 18446744073709551615", oxINT64_CLASS, "int64 1x1: 9223372036854775807", "o"},
    {"int64 1x1: -1", oxUINT64_CLASS, "uint64 1x1: 0", "o"},
    {"char 1x2: 'a\\u0100'", oxINT8_CLASS, "int8 1x2: 97 127", "o"},
    {"char 1x1: '\\uffff'", oxUINT16_CLASS, "uint16 1x1: 65535"},
    {"uint16 1x1: 65535", oxCHAR_CLASS, "char 1x1: '\\uffff'"},
    {"char 1x2: 'a\\u0000'", oxLOGICAL_CLASS, "logical 1x2: 1 0"},
    {"logical 1x2: 1 0", oxSINGLE_CLASS, "single 1x2: 1 0"},
    {"0 -0.0 2 1e-300", oxLOGICAL_CLASS, "logical 1x4: 0 0 1 1"},
    {"65535.9 3.7 97.5 70000 -1 NaN", oxCHAR_CLASS, "char 1x6: '\\uffff\\u0003a\\uffff\\u0000\\u0000'"},
    {"1+2i 3", oxINT8_CLASS, "int8 1x2: 1+2i 3+0i"},
    {"1.5+2.5i 3", oxINT8_CLASS, "int8 1x2: 2+3i 3+0i", "rr"}, // each part may warn
    {"1+0.2i 2", oxINT8_CLASS, "int8 1x2: 1 2", "r"}, // the imaginary part came out zero
    {"97+1i", oxCHAR_CLASS, "char 1x1: 'a'"},
    {"double 1x2x2: 1 2 | 3 4", oxUINT8_CLASS, "uint8 1x2x2: 1 2 | 3 4"},
    {"int8 1x1: 3", oxDOUBLE_CLASS, "3"},
    {"double 0x3", oxSTRUCT_CLASS, "struct 0x3"},
    {"double 0x3x2", oxCELL_CLASS, "cell 0x3x2"},
    {"double 1x1: 1", oxSTRUCT_CLASS, nullptr},
    {"double 1x1: 1", oxCELL_CLASS, nullptr},
    {"double 1x1: 1", oxFUNCTION_CLASS, nullptr},
    {"logical 1x1: 1", oxCHAR_CLASS, nullptr},
    {"logical 0x0", oxCHAR_CLASS, nullptr}, // an empty one too
    {"cell 0x0", oxDOUBLE_CLASS, nullptr},
    {"struct 1x1 a: {1}", oxCELL_CLASS, "cell 1x1x1: {1}"},
    {"struct 1x1 a: {1}", oxDOUBLE_CLASS, nullptr},
    {"struct 1x1 a: {1}", oxSTRUCT_CLASS, "struct 1x1 a: {1}"},
    {"object Point 1x1 px: {1}", oxSTRUCT_CLASS, "struct 1x1 px: {1}"},
    {"object Point 1x1 px: {1}", oxCELL_CLASS, "cell 1x1x1: {1}"},
    {"object Point 1x1 px: {1}", oxDOUBLE_CLASS, nullptr},
    {"sparse double 2x2: (0,0)=3 (1,1)=-1", oxLOGICAL_CLASS, "sparse logical 2x2: (0,0)=1 (1,1)=1"},
    {"sparse logical 2x2: (1,0)=1", oxDOUBLE_CLASS, "sparse double 2x2: (1,0)=1"},
};
// clang-format on

TEST_F(Convert, EveryRule) {
    for (const Row &row : rows_of_values) {
        SCOPED_TRACE(std::string(row.in) + " to " + oxArrayClassIDName(row.to));
        const oxArray *a = arr(row.in);
        const std::string before = describe(a);
        oxArray *b = nullptr;
        const char *name = oxArrayClassIDName(row.to == oxCHAR_CLASS ? oxUINT16_CLASS : row.to);
        EXPECT_TRUE(
            warns(warnings(row.shown, name), [&] { b = oxCreateConvertedCopy(a, row.to); }));
        EXPECT_EQ(text(b), row.out ? text(arr(row.out)) : "null");
        if (b) {
            EXPECT_FALSE(check_array(b));
            EXPECT_EQ(oxIsScalarDoubleFlagSet(b), oxIsDouble(b) && oxGetNumberOfElements(b) == 1);
        }
        EXPECT_EQ(describe(a), before);
    }
}

TEST_F(Convert, WhatCannotBeIsRaised) {
    EXPECT_RAISES_ENTRY(FNOLOGICALNAN, oxCreateConvertedCopy(arr("1 NaN"), oxLOGICAL_CLASS));
    EXPECT_RAISES_ENTRY(FNOLOGICALCOMPLEX, oxCreateConvertedCopy(arr("1+1i"), oxLOGICAL_CLASS));
    EXPECT_RAISES_ENTRY(
        FNOLOGICALCOMPLEX,
        oxCreateConvertedCopy(arr("sparse double 1x1: (0,0)=1+1i"), oxLOGICAL_CLASS));
    for (oxClassID to : {oxSINGLE_CLASS, oxINT8_CLASS, oxCHAR_CLASS})
        EXPECT_RAISES("VELTRO:unimplementedSparseType",
                      "Attempt to convert to unimplemented sparse type",
                      oxCreateConvertedCopy(arr("sparse double 1x1: (0,0)=1"), to));
}

TEST_F(Convert, ElementsBeforeANanAreWrittenWhenItRaises) {
    for (std::size_t n : {std::size_t{10}, std::size_t{20000}}) {
        std::vector<double> x(n, 2.0);
        std::vector<unsigned char> y(n, 9);
        x[n - 3] = std::nan("");
        EXPECT_RAISES_ENTRY(FNOLOGICALNAN, oxConvertBufferToType(y.data(), oxLOGICAL_CLASS,
                                                                 x.data(), oxDOUBLE_CLASS, n));
        EXPECT_EQ(std::vector<int>({y[0], y[n - 4], y[n - 3]}), std::vector<int>({1, 1, 9}));
    }
}

TEST_F(Convert, PairsWithoutAConversionWriteNothing) {
    const double x = 1;
    for (auto [to, from] : {std::pair{oxLOGICAL_CLASS, oxLOGICAL_CLASS},
                            {oxCHAR_CLASS, oxLOGICAL_CLASS},
                            {oxVOID_CLASS, oxDOUBLE_CLASS},
                            {oxCELL_CLASS, oxDOUBLE_CLASS},
                            {oxDOUBLE_CLASS, oxFUNCTION_CLASS},
                            {static_cast<oxClassID>(25), oxDOUBLE_CLASS},
                            {oxDOUBLE_CLASS, static_cast<oxClassID>(31)}}) {
        uint64_t y = 77;
        oxConvertBufferToType(&y, to, &x, from, 1);
        EXPECT_EQ(y, 77u);
    }
}

// The order is that of the elements, also when they are far apart and past the caches.
TEST_F(Convert, EachWarningComesOncePerCallInTheOrderOfTheElements) {
    const std::size_t n = std::size_t{3} << 20;
    std::vector<double> x(n, 1.0);
    std::vector<int32_t> y(n);
    for (std::size_t i : {n / 2, n / 2 + 1, n - 1}) x[i] = 1e10;
    for (std::size_t i : {n / 2 + 2, n - 2}) x[i] = std::nan("");
    x[n / 3] = 0.5;
    EXPECT_TRUE(warns(warnings("ron", "int32"), [&] {
        oxConvertBufferToType(y.data(), oxINT32_CLASS, x.data(), oxDOUBLE_CLASS, n);
    }));
    EXPECT_EQ(y[n / 2], INT32_MAX);
    EXPECT_EQ(y[n / 2 + 2], 0);
    EXPECT_EQ(y[n / 3], 1);
    std::vector<double> nans(1000, std::nan(""));
    EXPECT_TRUE(warns(warnings("n", "int32"), [&] {
        oxConvertBufferToType(y.data(), oxINT32_CLASS, nans.data(), oxDOUBLE_CLASS, 1000);
    }));
}

TEST_F(Convert, AWarningWhoseStatusIsErrorIsNeitherIssuedNorRaised) {
    utWarnCtx *manager = utGetWarningManagerContext();
    const oxArray *a = arr("NaN 300 0.5");
    for (int status : {UT_WARNING_RECORDED, UT_WARNING_ERROR}) {
        utSetWarningStatus(manager, "VELTRO:intConvertOverflow", status);
        EXPECT_TRUE(
            warns(warnings("nr", "uint8"), [&] { oxCreateConvertedCopy(a, oxUINT8_CLASS); }));
    }
    utSetWarningStatus(manager, "VELTRO:intConvertOverflow", UT_WARNING_SHOWN);
    EXPECT_TRUE(warns(warnings("nor", "uint8"), [&] { oxCreateConvertedCopy(a, oxUINT8_CLASS); }));
}

TEST_F(Convert, BytesOfZeroAndOneBecomeLogicalWithoutCopying) {
    for (const char *in : {"uint8 1x3: 0 1 1", "int8 2x1: 1; 0"}) {
        const oxArray *a = arr(in);
        const oxArray *b = oxCreateConvertedCopy(a, oxLOGICAL_CLASS);
        EXPECT_EQ(a->num.pdata, b->num.pdata);
        EXPECT_EQ(a->cross_link, b);
        EXPECT_TRUE(oxIsLogical(b) && !oxIsNumeric(b) && !check_array(b));
    }
    const oxArray *a = arr("uint8 1x3: 0 2 1");
    const oxArray *b = oxCreateConvertedCopy(a, oxLOGICAL_CLASS);
    EXPECT_TRUE(a->num.pdata != b->num.pdata && !a->cross_link);
    EXPECT_EQ(text(b), text(arr("logical 1x3: 0 1 1")));
}

TEST_F(Convert, ImaginaryPartsGoWhenTheyAreZero) {
    const auto kept = [](oxArray *a) {
        oxFreeImagIfZero(a);
        return oxIsComplex(a);
    };
    EXPECT_FALSE(kept(arr("1+0i 2+0i")));
    EXPECT_FALSE(kept(arr("single 1x2: 1+0i 2-0i")));
    EXPECT_TRUE(kept(arr("1+0i 2+NaN*i")));
    EXPECT_TRUE(kept(arr("int8 1x2: 1+0i 2+1i")));
    EXPECT_FALSE(kept(arr("sparse double 2x2 nzmax 3: (0,0)=1+0i (1,1)=2+0i")));
    oxArray *shared = arr("1+0i");
    oxCreateSharedDataCopy(shared);
    EXPECT_TRUE(kept(shared));
    oxArray *marked = arr("1 2");
    oxMarkImagData(marked);
    EXPECT_TRUE(kept(marked));
}

TEST_F(ConvertSweep, FailingAllocations) {
    const auto to = [](oxClassID id) {
        return [id](const Arrays &in) { return oxCreateConvertedCopy(in[0], id); };
    };
    const auto quiet = [](const char *name, const char *in, auto make) {
        return Sweep{.name = name, .inputs = {in}, .make = make, .act = nullptr, .silent = true};
    };
    const Sweep sweeps[] = {
        quiet("full", "double 1x2: 1 2", to(oxINT8_CLASS)),
        quiet("complex", "double 1x2x2: 1+1i 2 | 3 4", to(oxSINGLE_CLASS)),
        quiet("shared", "uint8 1x2: 1 0", to(oxLOGICAL_CLASS)),
        quiet("empty", "double 0x2x2", to(oxCELL_CLASS)),
        quiet("sparse", "sparse double 2x2: (0,0)=1", to(oxLOGICAL_CLASS)),
    };
    for (const Sweep &s : sweeps) sweep(s);
}

// --- The must-be family
// ---------------------------------------------------------------------------

using MustBe = Convert;

TEST_F(MustBe, WhatHasTheFormComesBackItself) {
    for (auto [in, to] : {std::pair{"double 1x2: 1 2", oxDOUBLE_CLASS},
                          {"cell 1x1: {1}", oxCELL_CLASS},
                          {"sparse double 1x1: (0,0)=1", oxVOID_CLASS}}) {
        oxArray *a = arr(in);
        EXPECT_EQ(oxMustBe(a, to), a);
    }
    oxArray *d = arr("1+1i 2");
    EXPECT_TRUE(oxMustBeFullDouble(d) == d && oxMustBeFull(d) == d && oxMustBeComplex(d) == d);
}

TEST_F(MustBe, Forms) {
    const oxClassID v = oxVOID_CLASS;
    EXPECT_EQ(text(oxMustBe(arr("0 3"), v)), text(arr("sparse double 1x2: (0,1)=3")));
    EXPECT_EQ(text(oxMustBeFull(arr("sparse double 1x2: (0,1)=3"))), text(arr("0 3")));
    EXPECT_EQ(text(oxMustBeComplex(arr("int8 1x2: 1 2"))), text(arr("int8 1x2: 1+0i 2+0i")));
    EXPECT_EQ(text(oxMustBeComplex(arr("logical 1x2: 1 0"))), text(arr("1+0i 0+0i")));
    for (const char *in : {"sparse double 1x2: (0,1)=3", "sparse logical 1x2: (0,1)=1",
                           "logical 1x2: 0 1", "int8 1x2: 0 3", "char 1x1: 'a'"})
        EXPECT_TRUE(oxIsDouble(oxMustBeFullDouble(arr(in))) &&
                    !oxIsSparse(oxMustBeFullDouble(arr(in))));
    oxArray *unknown = oxCreateNumericMatrix(0, 3, oxUNKNOWN_CLASS, oxREAL);
    EXPECT_EQ(text(oxMustBeFullDouble(unknown)), "double 0x3");
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to double from unknown is not possible.",
                  oxMustBe(unknown, oxDOUBLE_CLASS));
}

TEST_F(MustBe, NamesBothClassesWhenItCannotBe) {
    for (auto [in, to, message] :
         {std::tuple{"1", oxSTRUCT_CLASS, "Conversion to struct from double is not possible."},
          {"logical 1x1: 1", oxCHAR_CLASS, "Conversion to char from logical is not possible."},
          {"struct 1x1 a: {1}", oxCELL_CLASS, "Conversion to cell from struct is not possible."},
          {"object Point 1x1 px: {1}", oxDOUBLE_CLASS,
           "Conversion to double from Point is not possible."},
          {"cell 0x0", oxDOUBLE_CLASS, "Conversion to double from cell is not possible."}})
        EXPECT_RAISES("VELTRO:invalidConversion", message, oxMustBe(arr(in), to));
    for (const char *in : {"cell 1x1: {1}", "struct 1x1 a: {1}", "function_handle 1x1: 8"})
        EXPECT_RAISES("VELTRO:invalidConversion", nullptr, oxMustBeFullDouble(arr(in)));
    for (const char *in : {"int8 1x1: 1", "double 1x1x2: 1 | 2", "cell 1x1: {1}"})
        EXPECT_RAISES("VELTRO:unimplementedSparseType", nullptr, oxMustBeSparse(arr(in)));
}

TEST_F(MustBe, CharWarnsOfValuesOutsideItsRangeOnly) {
    for (auto [in, shown] : {std::pair{"3.7 65535", ""},
                             {"-0.5", "c"},
                             {"65536", "c"},
                             {"NaN", "c"},
                             {"single 1x1: 70000", "c"}})
        EXPECT_TRUE(warns(warnings(shown, ""), [&] { oxMustBe(arr(in), oxCHAR_CLASS); }));
    EXPECT_RAISES("VELTRO:noConversionComplexToChar", "Complex values cannot be converted to chars",
                  oxMustBe(arr("int8 1x1: 1+1i"), oxCHAR_CLASS));
    EXPECT_RAISES_ENTRY(FNOLOGICALCOMPLEX, oxMustBe(arr("1+1i"), oxLOGICAL_CLASS));
}

TEST_F(MustBe, FailedMemoryReadsAsAnImpossibleConversion) {
    oxArray *a = arr("1 2");
    FailingAllocation fault(1);
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to int8 from double is not possible.",
                  oxMustBe(a, oxINT8_CLASS));
}

} // namespace
} // namespace ox::test
