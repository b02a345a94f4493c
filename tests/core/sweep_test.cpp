// The core's entry points with every allocation failing in turn.
#include <support/suite.h>

#include <utility>

namespace {

constexpr kwSize cube[] = {2, 3, 4}, flat[] = {0, 3, 4}, pair[] = {1, 2, 1};

// Calls that need no input.
oxArray *(*const creators[])() = {
    [] { return oxCreateDoubleMatrix(3, 3, oxCOMPLEX); },
    [] { return oxCreateDoubleMatrix(0, 3, oxREAL); },
    [] { return oxCreateDoubleMatrix(1 << 10, 1 << 8, oxCOMPLEX); },
    [] { return oxCreateNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); },
    [] { return oxCreateLogicalArray(3, flat); },
    [] { return oxCreateLogicalMatrix(3, 3); },
    [] { return oxCreateDoubleScalar(1); },
    [] { return oxCreateSingleScalar(1); },
    [] { return oxCreateLogicalScalar(true); },
    [] { return oxCreateNumericScalar(oxINT8_CLASS, oxCOMPLEX); },
    [] { return oxCreateUninitNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); },
    [] { return oxCreateUninitDoubleMatrix(3, 3, oxCOMPLEX); },
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
     .setup =
         [] {
             oxArray *a = arr("1 2");
             a->set_reusable(true);
             return Arrays{a};
         }},
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
    for (const auto create : creators)
        sweep_everywhere({{}}, [create](auto &) { return create(); });
    for (const Sweep &s : sweeps) sweep(s);
}

} // namespace
