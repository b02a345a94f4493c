// Arrays made from a class and attributes.
#include <support/suite.h>

namespace {

using TypeAttr = HostTest;

constexpr oxArray_attributes full = oxATTR_FULL, sparse = oxATTR_SPARSE, real = oxATTR_REAL,
                             complex = oxATTR_COMPLEX, scalar = oxATTR_SCALAR;

TEST_F(TypeAttr, GivesTheSmallestArrayOrNull) {
    const struct {
        int id;
        oxArray_attributes attributes;
        const char *expected;
    } table[] = {
        {oxDOUBLE_CLASS, full | real | scalar, "double 1x1: 0"},
        {oxDOUBLE_CLASS, full | complex | oxATTR_ROW, "double 1x2: 0+0i 0+0i"},
        {oxINT8_CLASS, full | complex | oxATTR_COLUMN, "int8 2x1: 0+0i; 0+0i"},
        {oxUINT64_CLASS, full | real | oxATTR_3D, "uint64 2x2x2: 0 0; 0 0 | 0 0; 0 0"},
        {oxLOGICAL_CLASS, full | real | oxATTR_MATRIX, "logical 2x2: 0 0; 0 0"},
        {oxCHAR_CLASS, full | real | oxATTR_COLUMN, "char 2x1: '\\u0000'; '\\u0000'"},
        {oxCELL_CLASS, full | real | oxATTR_ROW, "cell 1x2: {} {}"},
        {oxLOGICAL_CLASS, sparse | real | scalar, "sparse logical 1x1"},
        // No such array.
        {oxLOGICAL_CLASS, sparse | real | oxATTR_3D, "null"},
        {oxCELL_CLASS, sparse | real | scalar, "null"},
        {oxSTRUCT_CLASS, sparse | real | oxATTR_MATRIX, "null"},
        {oxCHAR_CLASS, sparse | real | scalar, "null"},
        {oxLOGICAL_CLASS, full | complex | scalar, "null"},
        {oxCELL_CLASS, full | complex | scalar, "null"},
        // Not a class that can be made.
        {oxUNKNOWN_CLASS, full | real | scalar, "null"},
        {oxVOID_CLASS, full | real | scalar, "null"},
        {oxVOID_CLASS, sparse | real | scalar, "null"},
        {oxFUNCTION_CLASS, full | real | scalar, "null"},
        // Not one of each group, or a bit that means nothing.
        {oxDOUBLE_CLASS, full | scalar, "null"},
        {oxDOUBLE_CLASS, full | real | complex | scalar, "null"},
        {oxDOUBLE_CLASS, full | real, "null"},
        {oxDOUBLE_CLASS, full | real | scalar | oxATTR_ROW, "null"},
        {oxDOUBLE_CLASS, real | scalar, "null"},
        {oxDOUBLE_CLASS, full | sparse | real | scalar, "null"},
        {oxDOUBLE_CLASS, full | real | scalar | 1, "null"},
    };
    for (const auto &r : table) {
        const oxArray *a = oxCreateArrayFromTypeAttr(static_cast<oxClassID>(r.id), r.attributes);
        EXPECT_EQ(text(a), r.expected) << r.id << ' ' << std::hex << r.attributes;
    }
    const oxArray *a = oxCreateArrayFromTypeAttr(oxSINGLE_CLASS, sparse | complex | oxATTR_MATRIX);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(oxGetNzmax(a), 1u);
    EXPECT_TRUE(oxIsSingle(a) && oxIsComplex(a));
}

TEST_F(TypeAttr, EveryClassInEveryShapeHasWhatWasAskedFor) {
    for (oxArray_attributes shape = oxATTR_SCALAR; shape <= oxATTR_ND; shape <<= 1)
        for (int id = oxCELL_CLASS; id <= oxUINT64_CLASS; ++id) {
            const auto *a =
                oxCreateArrayFromTypeAttr(static_cast<oxClassID>(id), full | real | shape);
            ASSERT_EQ(a == nullptr, id == oxVOID_CLASS);
            if (!a) continue;
            EXPECT_EQ(a->get_attributes(), full | real | shape);
            EXPECT_EQ(oxGetClassID(a), id);
        }
}

TEST(TypeAttrSweep, EveryAllocationFailsOnce) {
    const Sweep table[] = {
        {"full",
         {},
         [](auto &) { return oxCreateArrayFromTypeAttr(oxCELL_CLASS, full | real | oxATTR_ND); }},
        {.name = "sparse",
         .make =
             [](auto &) {
                 return oxCreateArrayFromTypeAttr(oxDOUBLE_CLASS, sparse | complex | scalar);
             },
         .silent = true},
    };
    for (const Sweep &s : table) sweep(s);
}

} // namespace
