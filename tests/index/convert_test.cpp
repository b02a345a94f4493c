// Element conversion: values, warnings and their order, whole arrays, and the must-be family.
#include <containers/check_array.h>
#include <core/imaginary.h>
#include <index/operands/conversion_warnings.h>
#include <support/calls.h>

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

// The first array converted to the class of the second.
oxArray *converted(const Arrays &in) { return oxCreateConvertedCopy(in[0], oxGetClassID(in[1])); }

TEST_F(Convert, EveryRule) {
    const char *const logical = "logical 0x0", *const character = "char 0x0";
    const auto to = [](const std::string &name, const char *in, const char *values,
                       const char *letters = "") {
        const std::vector<Warning> shown = warnings(letters, name);
        expect_rows(converted, {{{in, name + " 0x0"}, name + values, shown}}, {.silent = true});
    };
    to("int8", "-128.5 -127.5 2.5 -2.5 NaN 127.4", " 1x6: -128 -128 3 -3 0 127", "orn");
    to("uint8", "-0.3 -0.0 0.3 255 255.2", " 1x5: 0 0 0 255 255", "or");
    to("int32", "0.49999999999999994 0.5 1.5", " 1x3: 1 1 2", "r");
    to("uint32", "4294967295 4294967296 -1", " 1x3: 4294967295 4294967295 0", "o");
    to("int64", "1152921504606846976 4503599627370497 -9223372036854775808",
       " 1x3: 1152921504606846976 4503599627370497 -9223372036854775808");
    to("int64", "9223372036854775808 -9223372036854777856 NaN 0.5",
       " 1x4: 9223372036854775807 -9223372036854775808 0 1", "onr");
    to("uint64", "9223372036854775808 18446744073709549568 18446744073709551616 -0.3 NaN 2.5",
       " 1x6: 9223372036854775808 18446744073709549568 18446744073709551615 0 0 3", "onr");
    to("single", "int64 1x1: 9007199791611905", " 1x1: 9007200328482816"); // one rounding
    to("int64", "uint64 1x1: 18446744073709551615", " 1x1: 9223372036854775807", "o");
    to("int8", "char 1x2: 'a\\u0100'", " 1x2: 97 127", "o");
    to("int8", "1.5+2.5i 3", " 1x2: 2+3i 3+0i", "rr"); // each part may warn
    to("int8", "1+0.2i 2", " 1x2: 1 2", "r");          // the imaginary part came out zero
    expect_rows(
        converted,
        {{{"int8 1x2: -5 7", character}, "char 1x2: '\\u0000\\u0007'", warnings("o", "uint16")},
         {{"65535.9 3.7 97.5 70000 -1 NaN", character},
          "char 1x6: '\\uffff\\u0003a\\uffff\\u0000\\u0000'"},
         {{"97+1i", character}, "char 1x1: 'a'"},
         {{"logical 0x0", character}, "null"}, // an empty one too
         {{"0 -0.0 2 1e-300", logical}, "logical 1x4: 0 0 1 1"},
         {{"1 NaN", logical}, std::string("!nologicalnan ") + oxGetErrorTableEntry(FNOLOGICALNAN)},
         {{"sparse double 1x1: (0,0)=1+1i", logical},
          std::string("!nologicalcomplex ") + oxGetErrorTableEntry(FNOLOGICALCOMPLEX)},
         {{"sparse double 2x2: (0,0)=3 (1,1)=-1", logical}, "sparse logical 2x2: (0,0)=1 (1,1)=1"},
         {{"double 1x2x2: 1+1i 2 | 3 4", "single 0x0"}, "single 1x2x2: 1+1i 2 | 3 4"},
         {{"3:-1:0", "int8 0x0"}, "int8 1x4: 3 2 1 0"}, // the range of a colon object
         {{"3:-1:0", logical}, "logical 1x4: 1 1 1 0"},
         {{"uint8 1x3: 0 1 1", logical}, "logical 1x3: 0 1 1", {}, true}, // nothing but 0 and 1
         {{"int8 1x2: 1 2", logical}, "logical 1x2: 1 1"},
         {{"double 0x3", "struct 0x0"}, "struct 0x3"},
         {{"double 0x2x2", "cell 0x0"}, "cell 0x2x2"},
         {{"struct 1x1 a: {1}", "cell 0x0"}, "cell 1x1x1: {1}"}},
        {.silent = true});
    for (const char *other : {"single 0x0", "int8 0x0", "char 0x0"})
        expect_rows(converted, {{{"sparse double 1x1: (0,0)=1", other},
                                 "!unimplementedSparseType Attempt to convert to unimplemented "
                                 "sparse type"}});
}

TEST_F(Convert, AnObjectThatBecomesAnotherClassIsReleasedOnce) {
    for (const char *other : {"struct 1x1 px: {1}", "cell 1x1x1: {1}"}) {
        const oxArray *wanted = arr(other), *object = arr("object Point 1x1 px: {1}");
        EXPECT_EQ(text(oxCreateConvertedCopy(object, oxGetClassID(wanted))), text(wanted));
    }
    EXPECT_EQ(layer_calls.objects_created, layer_calls.objects_released);
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

TEST_F(Convert, ImaginaryPartsGoWhenTheyAreZero) {
    oxArray *shared = arr("1+0i"), *marked = arr("1 2");
    oxCreateSharedDataCopy(shared);
    oxMarkImagData(marked);
    for (auto [a, kept] : {std::pair{arr("1+0i 2-0i"), false},
                           {arr("1+0i 2+NaN*i"), true},
                           {arr("int8 1x2: 1+0i 2+1i"), true},
                           {shared, true},
                           {marked, true},
                           {arr("sparse double 2x2 nzmax 3: (0,0)=1+0i"), false}}) {
        oxFreeImagIfZero(a);
        EXPECT_EQ(oxIsComplex(a), kept);
    }
}

TEST_F(Convert, WhatMustBe) {
    const std::string impossible = "!invalidConversion Conversion to ",
                      unsparse = "!unimplementedSparseType";
    expect_rows([](auto &in) { return oxMustBe(in[0], oxGetClassID(in[1])); },
                {{{"1", "struct 0x0"}, impossible + "struct from double is not possible."},
                 {{"object Point 1x1 px: {1}", "double 0x0"},
                  impossible + "double from Point is not possible."},
                 {{"cell 0x0", "double 0x0"}, impossible + "double from cell is not possible."},
                 // Chars warn of values outside their range, not of fractions.
                 {{"3.7 65535", "char 0x0"}, "char 1x2: '\\u0003\\uffff'"},
                 {{"97:2:99", "char 0x0"}, "char 1x2: 'ac'"},
                 {{"-0.5", "char 0x0"}, "char 1x1: '\\u0000'", warnings("c", "")},
                 {{"65536", "char 0x0"}, "char 1x1: '\\uffff'", warnings("c", "")},
                 {{"NaN", "char 0x0"}, "char 1x1: '\\u0000'", warnings("c", "")},
                 {{"int8 1x1: 1+1i", "char 0x0"},
                  "!noConversionComplexToChar Complex values cannot be converted to chars"}},
                {.bare = false, .other_raise = true});
    expect_rows([](auto &in) { return oxMustBeFullDouble(in[0]); },
                {{{"sparse logical 1x2: (0,1)=1"}, "0 1"},
                 {{"sparse double 2x2: (0,0)=0 (1,0)=3 (1,1)=2+1i"}, "0 0; 3 2+1i"},
                 {{"char 1x1: 'a'"}, "97"},
                 {{"cell 1x1: {1}"}, "!invalidConversion"},
                 {{"struct 1x1 a: {1}"}, "!invalidConversion"},
                 {{"function_handle 1x1: 8"}, "!invalidConversion"}},
                {.bare = false, .other_raise = true});
    expect_rows([](auto &in) { return oxMustBeComplex(in[0]); },
                {{{"int8 1x2: 1 2"}, "int8 1x2: 1+0i 2+0i"}, {{"logical 1x2: 1 0"}, "1+0i 0+0i"}},
                {.bare = false, .other_raise = true});
    expect_rows([](auto &in) { return oxMustBeSparse(in[0]); },
                {{{"0 0; 3 2+1i"}, "sparse double 2x2: (1,0)=3+0i (1,1)=2+1i"},
                 {{"int8 1x1: 1"}, unsparse},
                 {{"double 1x1x2: 1 | 2"}, unsparse},
                 {{"cell 1x1: {1}"}, unsparse}});
}

TEST_F(Convert, WhatIsAlreadyItOrNothingAtAll) {
    oxArray *d = arr("1+1i 2"), *sp = arr("sparse double 1x2: (0,1)=3");
    EXPECT_TRUE(oxMustBe(d, oxDOUBLE_CLASS) == d && oxMustBe(sp, oxVOID_CLASS) == sp &&
                oxMustBeFullDouble(d) == d && oxMustBeComplex(d) == d);
    oxArray *unknown = oxCreateNumericMatrix(0, 3, oxUNKNOWN_CLASS, oxREAL);
    EXPECT_EQ(text(oxMustBeFullDouble(unknown)), "double 0x3");
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to double from unknown is not possible.",
                  oxMustBe(unknown, oxDOUBLE_CLASS));
    const FailingAllocation fault(1); // reads as an impossible conversion
    EXPECT_RAISES("VELTRO:invalidConversion", "Conversion to int8 from double is not possible.",
                  oxMustBe(d, oxINT8_CLASS));
}

} // namespace
