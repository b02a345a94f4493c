// The core's entry points with every allocation failing in turn.
#include <ox.h>
#include <support/array_text.h>
#include <support/faults.h>

#include <gtest/gtest.h>

using namespace ox::test;

namespace {

oxArray *lend(oxArray *a) {
    a->set_reusable(true);
    return a;
}

const Sweep sweeps[] = {
    {.name = "oxCreateDoubleMatrix",
     .make = [](const Arrays &) { return oxCreateDoubleMatrix(3, 3, oxCOMPLEX); }},
    {.name = "oxCreateDoubleMatrix, empty",
     .make = [](const Arrays &) { return oxCreateDoubleMatrix(0, 3, oxREAL); }},
    {.name = "oxCreateNumericArray",
     .make =
         [](const Arrays &) {
             const kwSize dims[] = {2, 3, 4};
             return oxCreateNumericArray(3, dims, oxINT16_CLASS, oxCOMPLEX);
         }},
    {.name = "oxCreateLogicalArray",
     .make =
         [](const Arrays &) {
             const kwSize dims[] = {0, 3, 4};
             return oxCreateLogicalArray(3, dims);
         }},
    {.name = "oxCreateLogicalMatrix",
     .make = [](const Arrays &) { return oxCreateLogicalMatrix(3, 3); }},
    {.name = "oxCreateDoubleScalar",
     .make = [](const Arrays &) { return oxCreateDoubleScalar(1); }},
    {.name = "oxCreateSingleScalar",
     .make = [](const Arrays &) { return oxCreateSingleScalar(1); }},
    {.name = "oxCreateLogicalScalar",
     .make = [](const Arrays &) { return oxCreateLogicalScalar(true); }},
    {.name = "oxCreateNumericScalar",
     .make = [](const Arrays &) { return oxCreateNumericScalar(oxINT8_CLASS, oxCOMPLEX); }},
    {.name = "oxCreateUninitNumericArray",
     .make =
         [](const Arrays &) {
             const kwSize dims[] = {2, 3, 4};
             return oxCreateUninitNumericArray(3, dims, oxINT16_CLASS, oxCOMPLEX);
         }},
    {.name = "oxCreateUninitDoubleMatrix",
     .make = [](const Arrays &) { return oxCreateUninitDoubleMatrix(3, 3, oxCOMPLEX); }},
    // Large blocks take another way through the heap.
    {.name = "oxCreateDoubleMatrix, large",
     .make = [](const Arrays &) { return oxCreateDoubleMatrix(1 << 10, 1 << 8, oxCOMPLEX); }},
    {.name = "oxCreateNumericArrayWithReuse",
     .make =
         [](const Arrays &in) {
             const kwSize dims[] = {1, 2, 1};
             return oxCreateNumericArrayWithReuse(3, dims, oxDOUBLE_CLASS, oxREAL, 1, in.data());
         },
     .changes_inputs = true, // the next call finds nothing to reuse
     .setup = [] { return Arrays{lend(arr("1 2"))}; }},
    {.name = "oxSetDimensions",
     .inputs = {"double 2x1x2: 1; 2 | 3; 4"},
     .act =
         [](const Arrays &in) {
             const kwSize dims[] = {1, 2, 2};
             return oxSetDimensions(in[0], dims, 3) == 0;
         },
     .silent = true},
    {.name = "oxMalloc",
     .act =
         [](const Arrays &) {
             void *block = oxMalloc(100);
             if (!oxIsOnAllocList(block)) oxFree(block); // without a list it is ours
             return block != nullptr;
         }},
    {.name = "oxCalloc",
     .act =
         [](const Arrays &) {
             void *block = oxCalloc(100, 3);
             if (!oxIsOnAllocList(block)) oxFree(block);
             return block != nullptr;
         }},
    {.name = "oxRealloc",
     .act =
         [](const Arrays &) {
             void *small = oxMalloc(10), *large = small ? oxRealloc(small, 1 << 20) : nullptr;
             void *block = large ? large : small;
             if (!oxIsOnAllocList(block)) oxFree(block);
             return large != nullptr;
         }},
    {.name = "oxAddToAllocList",
     .act =
         [](const Arrays &) {
             void *raw = oxMallocEx(8);
             if (!raw) oxErrMsg(FNOMEM);
             try {
                 oxAddToAllocList(raw);
             } catch (...) {
                 oxFreeEx(raw); // still the caller's
                 throw;
             }
             return true;
         },
     .bare = false},
};

TEST(CoreSweep, EveryAllocationFailsOnce) {
    for (const Sweep &s : sweeps) sweep(s);
}

} // namespace
