// Element conversion: values, warnings and their order, whole arrays, and the must-be family.
#include <containers/check_array.h>
#include <core/imaginary.h>
#include <index/operands/conversion_warnings.h>
#include <support/suite.h>

#include <cmath>
#include <map>
#include <ut.h>

namespace {

class Convert : public HostTest {
protected:
    void SetUp() override {
        shown_conversion_warnings(); // the manager keeps the callback for good
        HostTest::SetUp();
    }
    WithLayer layer;
};

// The warnings of a string of letters: n NaN, o out of range, r rounded, c cut to char.
std::vector<Warning> warnings(const std::string &letters, const std::string &name) {
    // clang-format off
    const std::map<char, Warning> all = {
        {'n', {"VELTRO:intConvertNaN", "NaN converted to " + name + "(0)."}},
        {'o', {"VELTRO:intConvertOverflow", "Out of range value converted to intmin('" + name + "') or intmax('" + name + "')."}},
        {'r', {"VELTRO:intConvertNonIntVal", "Conversion rounded non-integer floating point value to nearest " + name + " value."}},
        {'c', {"VELTRO:nonIntegerTruncatedInConversionToChar", "Out of range or non-integer values truncated during conversion to character."}},
    };
    // clang-format on
    std::vector<Warning> w;
    for (char c : letters) w.push_back(all.at(c));
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
    {"1152921504606846976 4503599627370497 -9223372036854775808", oxINT64_CLASS,
     "int64 1x3: 1152921504606846976 4503599627370497 -9223372036854775808"},
    {"9223372036854775808 -9223372036854777856 NaN 0.5", oxINT64_CLASS,
     "int64 1x4: 9223372036854775807 -9223372036854775808 0 1", "onr"},
    {"9223372036854775808 18446744073709549568 18446744073709551616 -0.3 NaN 2.5", oxUINT64_CLASS,
     "uint64 1x6: 9223372036854775808 18446744073709549568 18446744073709551615 0 0 3", "onr"},
    {"int64 1x1: 9007199791611905", oxSINGLE_CLASS, "single 1x1: 9007200328482816"}, // one rounding
    {"int8 1x2: -5 7", oxCHAR_CLASS, "char 1x2: '\\u0000\\u0007'", "o"},
    {"uint64 1x1: 18446744073709551615", oxINT64_CLASS, "int64 1x1: 9223372036854775807", "o"},
    {"char 1x2: 'a\\u0100'", oxINT8_CLASS, "int8 1x2: 97 127", "o"},
    {"0 -0.0 2 1e-300", oxLOGICAL_CLASS, "logical 1x4: 0 0 1 1"},
    {"65535.9 3.7 97.5 70000 -1 NaN", oxCHAR_CLASS, "char 1x6: '\\uffff\\u0003a\\uffff\\u0000\\u0000'"},
    {"1.5+2.5i 3", oxINT8_CLASS, "int8 1x2: 2+3i 3+0i", "rr"}, // each part may warn
    {"1+0.2i 2", oxINT8_CLASS, "int8 1x2: 1 2", "r"}, // the imaginary part came out zero
    {"97+1i", oxCHAR_CLASS, "char 1x1: 'a'"},
    {"double 0x3", oxSTRUCT_CLASS, "struct 0x3"},
    {"logical 0x0", oxCHAR_CLASS, nullptr}, // an empty one too
    {"struct 1x1 a: {1}", oxCELL_CLASS, "cell 1x1x1: {1}"},
    {"object Point 1x1 px: {1}", oxSTRUCT_CLASS, "struct 1x1 px: {1}"},
    {"object Point 1x1 px: {1}", oxCELL_CLASS, "cell 1x1x1: {1}"},
    {"sparse double 2x2: (0,0)=3 (1,1)=-1", oxLOGICAL_CLASS, "sparse logical 2x2: (0,0)=1 (1,1)=1"},
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
        EXPECT_EQ(layer_calls.objects_created, layer_calls.objects_released); // none, or one freed
    }
}

TEST_F(Convert, AColonObjectIsConvertedAsItsRange) {
    const oxArray *a = oxCreateColonObj(3, -1, 0);
    EXPECT_EQ(text(oxCreateConvertedCopy(a, oxINT8_CLASS)), "int8 1x4: 3 2 1 0");
    EXPECT_EQ(text(oxCreateConvertedCopy(a, oxLOGICAL_CLASS)), "logical 1x4: 1 1 1 0");
    EXPECT_NO_WARNING(oxMustBe(const_cast<oxArray *>(a), oxCHAR_CLASS));
}

TEST_F(Convert, WhatCannotBeIsRaised) {
    const auto to = [](const char *in, oxClassID id) { oxCreateConvertedCopy(arr(in), id); };
    EXPECT_RAISES_ENTRY(FNOLOGICALNAN, to("1 NaN", oxLOGICAL_CLASS));
    EXPECT_RAISES_ENTRY(FNOLOGICALCOMPLEX, to("sparse double 1x1: (0,0)=1+1i", oxLOGICAL_CLASS));
    for (oxClassID id : {oxSINGLE_CLASS, oxINT8_CLASS, oxCHAR_CLASS})
        EXPECT_RAISES("VELTRO:unimplementedSparseType",
                      "Attempt to convert to unimplemented sparse type",
                      to("sparse double 1x1: (0,0)=1", id));
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
    EXPECT_TRUE(y[n / 2] == INT32_MAX && y[n / 2 + 2] == 0 && y[n / 3] == 1 && y[n - 3] == 1);
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
    for (auto [in, shares] : {std::pair{"uint8 1x3: 0 1 1", true}, {"int8 1x2: 1 2", false}}) {
        const oxArray *a = arr(in), *b = oxCreateConvertedCopy(a, oxLOGICAL_CLASS);
        EXPECT_EQ(a->num.pdata == b->num.pdata, shares);
        EXPECT_EQ(a->cross_link == b, shares);
        EXPECT_TRUE(oxIsLogical(b) && !oxIsNumeric(b) && !check_array(b));
    }
}

TEST_F(Convert, ImaginaryPartsGoWhenTheyAreZero) {
    oxArray *shared = arr("1+0i"), *marked = arr("1 2");
    oxCreateSharedDataCopy(shared);
    oxMarkImagData(marked);
    const std::pair<oxArray *, bool> rows[] = {
        {arr("1+0i 2-0i"), false},
        {arr("1+0i 2+NaN*i"), true},
        {arr("int8 1x2: 1+0i 2+1i"), true},
        {shared, true},
        {marked, true},
        {arr("sparse double 2x2 nzmax 3: (0,0)=1+0i"), false}};
    for (auto [a, kept] : rows) {
        oxFreeImagIfZero(a);
        EXPECT_EQ(oxIsComplex(a), kept);
    }
}

TEST_F(Convert, FailingAllocations) {
    for (auto [in, id] : {std::pair{"double 1x2: 1 2", oxINT8_CLASS},
                          {"double 1x2x2: 1+1i 2 | 3 4", oxSINGLE_CLASS},
                          {"uint8 1x2: 1 0", oxLOGICAL_CLASS},
                          {"double 0x2x2", oxCELL_CLASS},
                          {"sparse double 2x2: (0,0)=1", oxLOGICAL_CLASS}}) {
        const auto make = [id](const Arrays &a) { return oxCreateConvertedCopy(a[0], id); };
        sweep({.name = in, .inputs = {in}, .make = make, .silent = true});
    }
}

using MustBe = Convert;

TEST_F(MustBe, TheArrayItselfOrItsForm) {
    oxArray *d = arr("1+1i 2"), *sp = arr("sparse double 1x2: (0,1)=3");
    EXPECT_TRUE(oxMustBe(d, oxDOUBLE_CLASS) == d && oxMustBe(sp, oxVOID_CLASS) == sp &&
                oxMustBeFullDouble(d) == d && oxMustBeComplex(d) == d);
    EXPECT_EQ(text(oxMustBeComplex(arr("int8 1x2: 1 2"))), text(arr("int8 1x2: 1+0i 2+0i")));
    EXPECT_EQ(text(oxMustBeComplex(arr("logical 1x2: 1 0"))), text(arr("1+0i 0+0i")));
    for (const char *in : {"sparse logical 1x2: (0,1)=1", "int8 1x2: 0 3", "char 1x1: 'a'"})
        EXPECT_EQ(oxMustBeFullDouble(arr(in))->get_attributes() & oxATTR_FULL, oxATTR_FULL);
    oxArray *unknown = oxCreateNumericMatrix(0, 3, oxUNKNOWN_CLASS, oxREAL);
    EXPECT_EQ(text(oxMustBeFullDouble(unknown)), "double 0x3");
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to double from unknown is not possible.",
                  oxMustBe(unknown, oxDOUBLE_CLASS));
}

TEST_F(MustBe, NamesBothClassesWhenItCannotBe) {
    for (auto [in, to, message] :
         {std::tuple{"1", oxSTRUCT_CLASS, "Conversion to struct from double is not possible."},
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
    for (auto [in, shown] :
         {std::pair{"3.7 65535", ""}, {"-0.5", "c"}, {"65536", "c"}, {"NaN", "c"}})
        EXPECT_TRUE(warns(warnings(shown, ""), [&] { oxMustBe(arr(in), oxCHAR_CLASS); }));
    EXPECT_RAISES("VELTRO:noConversionComplexToChar", "Complex values cannot be converted to chars",
                  oxMustBe(arr("int8 1x1: 1+1i"), oxCHAR_CLASS));
    oxArray *a = arr("1 2");
    FailingAllocation fault(1); // reads as an impossible conversion
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to int8 from double is not possible.",
                  oxMustBe(a, oxINT8_CLASS));
}

} // namespace
