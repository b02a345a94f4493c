// Creating, reusing and destroying arrays; the entry points of the core with every allocation
// failing.
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/check_header.h>
#include <support/suite.h>

namespace {

using Create = HostTest;

constexpr kwSize huge = kwSize{1} << 60, two24 = kwSize{1} << 24;

oxArray *nd(const Dims &dims) {
    return oxCreateNumericArray(dims.size(), dims.data(), oxDOUBLE_CLASS, oxREAL);
}

TEST_F(Create, FullArrays) {
    std::vector<std::pair<oxArray *, const char *>> made = {
        {nd({1, 1, 1}), "double 1x1x1: 0"}, // nothing is trimmed
        {nd({3}), "double 3x1: 0; 0; 0"},
        {nd({}), "double 0x0"},
        {nd({huge, 0, huge}),
         "double 1152921504606846976x0x1152921504606846976"}, // never too large
        {oxCreateNumericMatrix(0, huge, oxINT8_CLASS, oxCOMPLEX), "int8 0x1152921504606846976"},
        {oxCreateNumericArray(3, nullptr, oxDOUBLE_CLASS, oxREAL), "double 0x0"},
        {oxCreateSingleScalar(0.1f), "single 1x1: 0.1"},
        {oxCreateNumericScalar(oxINT16_CLASS, oxCOMPLEX), "int16 1x1: 0+0i"},
        {oxCreateUninitNumericMatrix(1, 1, oxDOUBLE_CLASS, oxCOMPLEX), "double 1x1: 0+0i"},
        {oxCreateUninitNumericMatrix(2, 3, oxVOID_CLASS, oxREAL), "unknown 2x3"},
        // Classes that are not numeric have no imaginary part.
        {oxCreateNumericMatrix(1, 2, oxCHAR_CLASS, oxCOMPLEX), "char 1x2: '\\u0000\\u0000'"},
    };
    for (const auto &[a, expected] : made) {
        SCOPED_TRACE(expected);
        EXPECT_EQ(text(a), expected);
        EXPECT_TRUE(!check_header(a, CheckDepth::storage) && listed_as_its_scope_says(a));
        EXPECT_EQ(oxIsScalarDoubleFlagSet(a), oxIsDouble(a) && oxGetNumberOfElements(a) == 1);
        EXPECT_EQ(oxGetData(a) == nullptr, oxIsEmpty(a) || a->class_code == 0);
    }
}

// Deliberate: too many elements are out of memory to the creators, too large to the checks.
TEST_F(Create, TooLarge) {
    const auto uninit = [](const Dims &dims) {
        return oxCreateUninitNumericArray(dims.size(), dims.data(), oxINT8_CLASS, oxREAL);
    };
    for (const kwSize n : {two24, huge, ~kwSize{0}}) {
        EXPECT_RAISES_ENTRY(FNOMEM, oxCreateNumericMatrix(two24, n, oxINT8_CLASS, oxREAL));
        EXPECT_RAISES_ENTRY(FNOMEM, nd({two24, n, 1}));
        EXPECT_RAISES_ENTRY(FNOMEM, nd({2, two24, n}));
        EXPECT_RAISES_ENTRY(FPMAXSIZE, oxCreateUninitDoubleMatrix(two24, n, oxREAL));
        EXPECT_RAISES_ENTRY(FPMAXSIZE, uninit({n, two24, 1}));
        EXPECT_RAISES_ENTRY(FNOMEM, uninit({2, two24, n})); // the trailing sizes by themselves
    }
    // Within the limit of elements; the bytes decide.
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateDoubleMatrix(two24, two24 - 1, oxREAL));
    EXPECT_RAISES_ENTRY(FPMAXSIZE, oxCreateUninitDoubleMatrix(two24, two24 - 1, oxREAL));
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateNumericMatrix(1, 1, oxVOID_CLASS, oxREAL));
}

// Deliberate: the byte is stored unchanged.
TEST_F(Create, LogicalScalarKeepsItsByte) {
    using Untyped = void (*)();
    const auto untyped = reinterpret_cast<Untyped>(oxCreateLogicalScalar);
    const auto create = reinterpret_cast<oxArray *(*)(unsigned char)>(untyped); // as C may call it
    EXPECT_EQ(text(create(5)), "logical 1x1: 5");
}

// --- Reuse -----------------------------------------------------------------------------------

// Deliberate: reused data keep their contents.
TEST_F(Create, ReuseTakesTheFirstThatFitsAndKeepsItsContents) {
    const std::tuple<const char *, bool, bool> table[] = {
        // offered; lends to a real 1-by-4 double
        {"1 2 3 4", true, true},
        {"double 2x2: 1 2; 3 4", true, true},
        {"int64 1x4: 1 2 3 4", true, true}, // another class of the same width
        {"1 2 3 4", false, false},
        {"1+1i 2 3 4", true, false},
        {"1 2 3 4 5", true, false},
        {"single 1x8: 1 2 3 4 5 6 7 8", true, false}, // the same bytes in other elements
        {"sparse double 1x4: (0,0)=1", true, false},
        {"double 0x4", true, false},
    };
    for (const auto &[array, offered, lends] : table) {
        SCOPED_TRACE(array);
        oxArray *lender = arr(array), *next = arr("5 6 7 8");
        lender->set_reusable(offered);
        next->set_reusable(lends); // the first that fits
        oxArray *const candidates[] = {nullptr, lender, next};
        oxArray *a = oxCreateDoubleMatrixWithReuse(1, 4, oxREAL, 3, candidates);
        EXPECT_EQ(oxGetData(a) == oxGetData(lender) && a->cross_link == lender, lends);
        EXPECT_TRUE(oxIsReusable(lender) == (offered && !lends) && oxIsReusable(next) == lends);
        EXPECT_TRUE(!oxIsReusable(a) && !check_header(a, CheckDepth::storage));
        oxDestroyArray(lender); // the data stay with the new array
        EXPECT_EQ(text(a) == "double 1x4: 0 0 0 0", !lends);
    }
}

// --- Destruction -------------------------------------------------------------------------------

TEST_F(Create, AKeptHeaderOnlyLeavesTheList) {
    oxArray *a = arr("1 2");
    a->set_flag(oxFLAG_HEADER_KEPT, true);
    oxDestroyArray(a);
    EXPECT_TRUE(!array_list_contains(a) && a->scope == oxSCOPE_DESTROYED);
    EXPECT_EQ(text(a), "double 1x2: 1 2");
    a->set_flag(oxFLAG_HEADER_KEPT, false);
    oxDestroyArray(a);
}

constexpr kwSize cube[] = {2, 3, 4}, flat[] = {0, 3, 4}, pair[] = {1, 2, 1};

// Without a list the block is ours to free.
bool grow_listed(const Arrays &) {
    void *small = oxMalloc(10), *large = small ? oxRealloc(small, 1 << 20) : nullptr;
    if (void *block = large ? large : small; !oxIsOnAllocList(block)) oxFree(block);
    return large != nullptr;
}

bool list_raw(const Arrays &) {
    auto raw = RawArray<char>::make(8); // still the caller's where listing it raises
    if (!raw) oxErrMsg(FNOMEM);
    oxAddToAllocList(raw.get());
    return raw.release();
}

Arrays reusable_array() {
    oxArray *a = arr("1 2");
    a->set_reusable(true);
    return {a};
}

TEST(CoreSweep, EveryAllocationFailsOnce) {
    oxArray *(*const creators[])(const Arrays &) = {
        [](auto &) { return oxCreateNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); },
        [](auto &) { return oxCreateLogicalArray(3, flat); },
        [](auto &) { return oxCreateDoubleScalar(1); },
        [](auto &) { return oxCreateSingleScalar(1); },
        [](auto &) { return oxCreateLogicalScalar(true); },
        [](auto &) { return oxCreateUninitNumericArray(3, cube, oxINT16_CLASS, oxCOMPLEX); },
    };
    for (const auto create : creators) sweep_everywhere({{}}, create);
    const auto reuse = [](auto &in) {
        return oxCreateNumericArrayWithReuse(3, pair, oxDOUBLE_CLASS, oxREAL, 1, in.data());
    };
    // The next call finds nothing to reuse.
    sweep({.name = "reuse", .make = reuse, .changes_inputs = true, .setup = reusable_array});
    sweep({.name = "dimensions",
           .inputs = {"double 2x1x2: 1; 2 | 3; 4"},
           .act = [](auto &in) { return oxSetDimensions(in[0], cube, 3) == 0; },
           .silent = true});
    sweep({.name = "oxRealloc", .act = grow_listed});
    sweep({.name = "oxAddToAllocList", .act = list_raw, .bare = false});
}

} // namespace
