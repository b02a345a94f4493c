// The 32-bit level and the Fortran entry points under failing allocations.
#include "fortran_names.h"

#include <support/suite.h>

using namespace ox::fortran;

namespace {

const int ones[] = {1, 1, 1, 1, 1, 1, 1, 1, 2, 2}, ten = 10, one = 1, two = 2;
const char names[] = "alphabeta ", *fields[] = {"alpha", "beta"};

using Make = std::function<oxArray *(const Arrays &)>;
const Make makers[] = {
    [](auto &) { return oxCreateNumericArray_700(10, ones, oxINT8_CLASS, oxREAL); },
    [](auto &) { return oxCreateStructArray_700(10, ones, 2, fields); },
    [](auto &) { return OXCREATESTRUCTARRAY(&ten, ones, &two, names, 5); },
    [](auto &) { return OXCREATECHARMATRIXFROMSTRINGS(&two, names, 5); },
};

const Sweep sweeps[] = {
    {.name = "string", // the converter's buffer may fall back
     .make = [](auto &) { return oxCreateStringFromNChars_700("text", 4); },
     .may_survive = true},
    {.name = "dimensions of another length",
     .inputs = {"double 2x3: 1 2 3; 4 5 6"},
     .act =
         [](auto &in) {
             oxGetDimensions_700(in[0]);
             const kwSize dims[] = {1, 2, 3};
             return oxSetDimensions(in[0], dims, 3) == 0 && oxGetDimensions_700(in[0])[2] == 3;
         },
     .silent = true,
     .changes_inputs = true},
    {"position in many dimensions",
     {"double 2x2: 1 2; 3 4"},
     nullptr,
     [](auto &in) { return oxCalcSingleSubscript_700(in[0], 10, ones) > 0; }},
    {.name = "Fortran class name",
     .inputs = {"char 1x1: 'x'"},
     .act = [](auto &in) { return OXISCLASS(&in[0], "char ", 5) == one; }},
    {.name = "Fortran characters",
     .act =
         [](auto &) {
             char block[8], *p = block;
             OXCOPYCHARACTERTOPTR(&p, "text ", &one, 5);
             return block[0] == 't';
         }},
};

TEST(CompatSweep, EveryAllocationFailsOnce) {
    for (const Make &make : makers) sweep_everywhere({{}}, make);
    for (const Sweep &s : sweeps) sweep(s);
}

} // namespace
