// The Fortran entry points, called as a Fortran compiler calls them; they and the 32-bit level
// under failing allocations.
#include <compat/fortran.h>
#include <support/suite.h>

// Declared from the library's own list of them.
#define ENTRY(NAME, name, result, arguments, value) result NAME arguments;
#define SIZED(NAME, name, result, arguments, value) result NAME arguments;
namespace ox::fortran {
using Size = int;
extern "C" {
#include <compat/fortran.def>
}
} // namespace ox::fortran
#undef SIZED
#define SIZED(NAME, name, result, arguments, value) result NAME##730 arguments;
namespace ox::fortran::wide_sizes {
using Size = kwSize;
extern "C" {
#include <compat/fortran.def>
}
} // namespace ox::fortran::wide_sizes

using namespace ox::fortran;
using namespace ox::fortran::wide_sizes;

namespace {

using Fortran = HostTest;
const int zero = 0, one = 1, two = 2, three = 3, minus = -1;
const kwSize one_w = 1, two_w = 2;

TEST_F(Fortran, CreatorsOfBothWidths) {
    const int real_class = oxINT16_CLASS, any = 7;
    const int dims[] = {2, 3};
    const kwSize dims_w[] = {2, 3};
    const char names[] = "a  bc ";
    const std::pair<oxArray *, const char *> table[] = {
        {OXCREATEDOUBLEMATRIX(&one, &two, &any), "double 1x2: 0+0i 0+0i"},
        {OXCREATENUMERICARRAY(&two, dims, &real_class, &zero), "int16 2x3: 0 0 0; 0 0 0"},
        {OXCREATECELLARRAY730(&two_w, dims_w), "cell 2x3: {} {} {} {} {} {}"},
        {OXCREATESTRUCTARRAY730(&one_w, dims_w, &zero, nullptr, 0), "struct 2x1 :"},
        {OXCREATECHARMATRIXFROMSTRINGS(&two, names, 3), "char 2x2: 'a\\u0000'; 'bc'"},
        {OXCREATESTRING("hi there  ", 10), "char 1x8: 'hi there'"},
        {OXCREATESTRING("   ", 3), "char 0x0"},
    };
    for (const auto &[made, expected] : table) EXPECT_EQ(text(made), text(arr(expected)));
    EXPECT_RAISES_ENTRY(FP64BITSIZE, OXCREATEDOUBLEMATRIX(&minus, &two, &zero));
}

TEST_F(Fortran, SizesPredicatesAndNamesOfBothWidths) {
    oxArray *a = arr("1 2; 3 4"), *sparse = arr("sparse double 2x2: (0,0)=1 (1,1)=2");
    EXPECT_TRUE(OXGETDIMENSIONS(&a)[1] == 2 && OXGETDIMENSIONS730(&a)[1] == 2);
    EXPECT_EQ(OXGETIR730(&sparse)[1], 1u);
    EXPECT_RAISES("VELTRO:matrix:ERR_SPARSE_64BIT_OBSOLETE", nullptr, OXGETIR(&sparse));
    // A predicate of the C interface leaves the upper bytes of the register to chance.
    EXPECT_EQ(OXISDOUBLE(&a) - OXISCHAR(&a) - OXISEMPTY(&a) - OXISFROMGLOBALWS(&a), 1);
    EXPECT_EQ(OXISCLASS(&a, "double  ", 8) - OXISCLASS(&a, "double", 5), 1);
    char name[7];
    OXGETCLASSNAME(name, 7, &a);
    EXPECT_EQ(std::string(name, 7), "double ");
    OXGETCLASSNAME(name, 2, &a);
    EXPECT_EQ(std::string(name, 2), "do");
}

TEST_F(Fortran, GetStringPadsAndTellsOfCuts) {
    const std::tuple<const char *, int, int, std::string> table[] = {
        {"char 1x4: 'four'", 10, 0, "four      "},
        {"char 1x4: 'four'", 4, 0, "four"},
        {"char 1x4: 'four'", 3, 1, "fou"},
        {"char 1x4: 'four'", 0, 1, ""},
        {"char 0x0", 3, 0, "   "},
        {"double 1x1: 1", 3, 1, "???"},
        {"char 2x2: 'ab'; 'cd'", 5, 0, "acbd "},
        // What follows a NUL is blank, not left as it was.
        {"char 1x3: 'a\\u0000b'", 3, 0, std::string("a\0 ", 3)},
        {"null", 3, 1, "???"},
    };
    for (const auto &[array, length, result, expected] : table) {
        std::string buffer(expected.size(), '?');
        oxArray *a = arr(array);
        EXPECT_EQ(OXGETSTRING(&a, buffer.data(), &length, buffer.size()), result) << array;
        EXPECT_EQ(buffer, expected) << array;
    }
    oxArray *vast = arr("char 1x3: 'abc'");
    oxSetM(vast, kwSize{1} << 31);
    EXPECT_RAISES_ENTRY(FP64BITSIZE, OXGETSTRING(&vast, nullptr, &three, 3));
}

TEST_F(Fortran, CopiesTakeThePointerFirstInBothDirections) {
    // Each kind moves its own element size: three elements, of which the fourth must not change.
    using In = void (*)(void *const *, const void *, const int *);
    using Out = void (*)(void *const *, void *, const int *);
    const std::tuple<In, Out, kwSize> kinds[] = {
        {OXCOPYINTEGER1TOPTR, OXCOPYPTRTOINTEGER1, 1},
        {OXCOPYINTEGER2TOPTR, OXCOPYPTRTOINTEGER2, 2},
        {OXCOPYINTEGER4TOPTR, OXCOPYPTRTOINTEGER4, 4},
        {OXCOPYREAL4TOPTR, OXCOPYPTRTOREAL4, 4},
        {OXCOPYREAL8TOPTR, OXCOPYPTRTOREAL8, 8},
        {OXCOPYINTEGER8TOPTR, OXCOPYPTRTOINTEGER8, 8},
        {OXCOPYKWINDEXTOPTR, OXCOPYPTRTOKWINDEX, 8},
        {nullptr, OXCOPYPTRTOPTRARRAY, 8},
    };
    for (const auto &[in, out, size] : kinds) {
        std::string from(32, 'f'), to(32, 't');
        void *at = from.data();
        out(&at, to.data(), &three);
        EXPECT_EQ(to, std::string(3 * size, 'f') + std::string(32 - 3 * size, 't'));
        EXPECT_RAISES_ENTRY(FP64BITSIZE, out(&at, to.data(), &minus));
        if (!in) continue;
        in(&at, std::string(32, 'x').data(), &three);
        EXPECT_EQ(from, std::string(3 * size, 'x') + std::string(32 - 3 * size, 'f'));
    }
}

TEST_F(Fortran, RaisingWarningAndWithdrawnFunctions) {
    EXPECT_RAISES("VELTRO:mine:bad", "100% wrong",
                  OXERRMSGIDANDTXT("VELTRO:mine:bad ", "100% wrong  ", 16, 12));
    EXPECT_RAISES("", "No good.", OXERRMSGTXT("No good", 7));
    EXPECT_WARNS("VELTRO:mine:odd", "50% odd",
                 OXWARNINGMSGIDANDTXT("VELTRO:mine:odd", "50% odd ", 15, 8));
    EXPECT_RAISES(
        "VELTRO:matrix:ERR_FUNCTION_OBSOLETE",
        "The function OXCREATEFULL is obsolete. A vex file or Dravon S-function that calls "
        "it must call OXCREATEDOUBLEMATRIX instead. A Fortran Dravon S-function that does "
        "not call OXCREATEFULL is to be recompiled in the current release.",
        OXCREATEFULL(&one, &one, &zero));
}

// --- Both under failing allocations ---

TEST(CompatSweep, EveryAllocationFailsOnce) {
    static const int ones[] = {1, 1, 1, 1, 1, 1, 1, 1, 2, 2}, ten = 10;
    static const char names[] = "alphabeta ", *fields[] = {"alpha", "beta"};
    oxArray *(*const makers[])(const Arrays &) = {
        [](auto &) { return oxCreateNumericArray_700(10, ones, oxINT8_CLASS, oxREAL); },
        [](auto &) { return oxCreateStructArray_700(10, ones, 2, fields); },
        [](auto &) { return OXCREATESTRUCTARRAY(&ten, ones, &two, names, 5); },
        [](auto &) { return OXCREATECHARMATRIXFROMSTRINGS(&two, names, 5); },
    };
    for (const auto make : makers) sweep_everywhere({{}}, make);
    const auto dimensions = [](auto &in) {
        oxGetDimensions_700(in[0]); // kept at another length
        const kwSize dims[] = {1, 2, 3};
        return oxSetDimensions(in[0], dims, 3) == 0 && oxGetDimensions_700(in[0])[2] == 3;
    };
    sweep({.name = "dimensions",
           .inputs = {"double 2x3: 1 2 3; 4 5 6"},
           .act = dimensions,
           .silent = true,
           .changes_inputs = true});
    sweep({.name = "position in many dimensions",
           .inputs = {"double 2x2: 1 2; 3 4"},
           .act = [](auto &in) { return oxCalcSingleSubscript_700(in[0], 10, ones) > 0; }});
    sweep({.name = "Fortran class name", .inputs = {"char 1x1: 'x'"}, .act = [](auto &in) {
               return OXISCLASS(&in[0], "char ", 5) == one;
           }});
    const auto characters = [](auto &) {
        char block[8], *p = block;
        OXCOPYCHARACTERTOPTR(&p, "text ", &one, 5);
        return block[0] == 't';
    };
    sweep({.name = "Fortran characters", .act = characters});
}

} // namespace
