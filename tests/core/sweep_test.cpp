// The core's entry points with every allocation failing in turn.
#include <ox.h>
#include <support/array_text.h>
#include <support/faults.h>

#include <gtest/gtest.h>

#include <utility>

using namespace ox::test;

namespace {

oxArray *lend(oxArray *a) {
    a->set_reusable(true);
    return a;
}

constexpr kwSize cube[] = {2, 3, 4}, flat[] = {0, 3, 4}, pair[] = {1, 2, 1};

// Calls that need no input.
const std::pair<const char *, oxArray *(*)()> creators[] = {
    {"double", [] { return oxCreateDoubleMatrix(3, 3, oxCOMPLEX); }},
    {"empty", [] { return oxCreateDoubleMatrix(0, 3, oxREAL); }},
    {"large", [] { return oxCreateDoubleMatrix(1 << 10, 1 << 8, oxCOMPLEX); }},
    {"array", [] { return oxCreateNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); }},
    {"logical array", [] { return oxCreateLogicalArray(3, flat); }},
    {"logical", [] { return oxCreateLogicalMatrix(3, 3); }},
    {"double scalar", [] { return oxCreateDoubleScalar(1); }},
    {"single scalar", [] { return oxCreateSingleScalar(1); }},
    {"logical scalar", [] { return oxCreateLogicalScalar(true); }},
    {"scalar", [] { return oxCreateNumericScalar(oxINT8_CLASS, oxCOMPLEX); }},
    {"uninit array", [] { return oxCreateUninitNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); }},
    {"uninit", [] { return oxCreateUninitDoubleMatrix(3, 3, oxCOMPLEX); }},
};

// Whether there is a block; without a list it is ours to free.
bool give_back(void *block) {
    if (!oxIsOnAllocList(block)) oxFree(block);
    return block != nullptr;
}

bool grow_listed(const Arrays &) {
    void *small = oxMalloc(10), *large = small ? oxRealloc(small, 1 << 20) : nullptr;
    give_back(large ? large : small);
    return large != nullptr;
}

bool list_raw(const Arrays &) {
    void *raw = oxMallocEx(8);
    if (!raw) oxErrMsg(FNOMEM);
    try {
        oxAddToAllocList(raw);
    } catch (...) {
        oxFreeEx(raw); // still the caller's
        throw;
    }
    return true;
}

const Sweep sweeps[] = {
    {.name = "reuse",
     .make =
         [](const Arrays &in) {
             return oxCreateNumericArrayWithReuse(3, pair, oxDOUBLE_CLASS, oxREAL, 1, in.data());
         },
     .changes_inputs = true, // the next call finds nothing to reuse
     .setup = [] { return Arrays{lend(arr("1 2"))}; }},
    {.name = "oxSetDimensions",
     .inputs = {"double 2x1x2: 1; 2 | 3; 4"},
     .act = [](const Arrays &in) { return oxSetDimensions(in[0], cube, 3) == 0; },
     .silent = true},
    {.name = "oxMalloc", .act = [](const Arrays &) { return give_back(oxMalloc(100)); }},
    {.name = "oxCalloc", .act = [](const Arrays &) { return give_back(oxCalloc(100, 3)); }},
    {.name = "oxRealloc", .act = grow_listed},
    {.name = "oxAddToAllocList", .act = list_raw, .bare = false},
};

TEST(CoreSweep, EveryAllocationFailsOnce) {
    for (const auto &[name, create] : creators)
        sweep({.name = name, .make = [create](const Arrays &) { return create(); }});
    for (const Sweep &s : sweeps) sweep(s);
}

} // namespace
