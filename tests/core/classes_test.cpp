// Classes, queries, the scalar flag, offsets and re-typing in place.
#include <support/suite.h>

namespace {

using Classes = HostTest;

// By id, with the hole at 5.
const char *const names[] = {
    "unknown", "cell",   "struct",          "logical", "char",   "unknown", "double",
    "single",  "int8",   "uint8",           "int16",   "uint16", "int32",   "uint32",
    "int64",   "uint64", "function_handle", "opaque",  "object"};
constexpr kwSize sizes[] = {0, 8, 8, 1, 2, 0, 8, 4, 1, 1, 2, 2, 4, 4, 8, 8, 32, 8, 8};
bool (*const predicates[])(const oxArray *) = {
    nullptr,    oxIsCell,   oxIsStructClass,    oxIsLogical, oxIsChar,   nullptr,   oxIsDouble,
    oxIsSingle, oxIsInt8,   oxIsUint8,          oxIsInt16,   oxIsUint16, oxIsInt32, oxIsUint32,
    oxIsInt64,  oxIsUint64, oxIsFunctionHandle, oxIsOpaque,  oxIsObject};

TEST_F(Classes, NamesSizesAndPredicates) {
    for (int id = -1; id < 20; ++id) {
        SCOPED_TRACE(id);
        const int known = id > 0 && id < 19 && id != 5 ? id : 0;
        const auto c = static_cast<oxClassID>(id);
        EXPECT_STREQ(oxArrayClassIDName(c), names[known]);
        EXPECT_EQ(oxGetElementSizeofClassID(c), sizes[known]);
        EXPECT_EQ(oxClassIDFromClassName(names[known]), known);
        oxArray a{};
        set_class(&a, id);
        EXPECT_EQ(oxGetClassID(&a), known);
        for (int k = 0; k < 19; ++k)
            EXPECT_EQ(predicates[k] && predicates[k](&a), predicates[k] && k == known) << k;
        EXPECT_EQ(oxIsNumeric(&a), id >= 6 && id <= 15);
        EXPECT_EQ(oxIsFloat(&a), id == 6 || id == 7);
        EXPECT_EQ(oxIsInteger(&a), id >= 8 && id <= 15);
        EXPECT_EQ(oxIsStruct(&a), id == 2 || id == 18);
        const char *name = id == 18 ? "" : names[known]; // an object without a class name
        EXPECT_STREQ(oxGetClassName(&a), name);
        EXPECT_TRUE(oxIsClass(&a, name) && !oxIsClass(&a, "DOUBLE"));
    }
    EXPECT_EQ(oxClassIDFromClassName("Function_Handle"), oxFUNCTION_CLASS);
    for (const char *none : {"", "doubl", "doubles", "void", static_cast<const char *>(nullptr)})
        EXPECT_EQ(oxClassIDFromClassName(none), oxUNKNOWN_CLASS);
    oxArray a{};
    set_class(&a, oxOBJECT_CLASS);
    a.set_struct_object_classname("polygon");
    EXPECT_TRUE(oxIsClass(&a, "polygon") && !oxIsClass(&a, "object"));
    a.set_struct_object_tag(99);
    EXPECT_TRUE(static_cast<int>(oxGetClassID(&a)) == 99 && a.get_array_type() == 18);
}

TEST_F(Classes, OffsetsOfTheFields) {
    EXPECT_TRUE(oxGetPdataOffset() == 56 && oxGetCellsOffset() == 56 && oxGetLinkOffset() == 16);
    EXPECT_TRUE(oxGetScopeOffset() == 12 && oxGetReferenceCountOffset() == 32);
}

// Sparsity does not matter.
TEST_F(Classes, DimensionsDecideTheScalarFlag) {
    oxArray *sparse = arr("sparse double 1x1");
    oxClearScalarDoubleFlag(sparse);
    oxSetScalarDoubleFlagIfAppropiate(sparse);
    EXPECT_TRUE(oxIsScalarDoubleFlagSet(sparse));
    oxArray *a = arr("double 2x3: 0 0 0; 0 0 0");
    const kwSize nd[] = {1, 2, 3};
    EXPECT_EQ(oxSetDimensions(a, nd, 3) + oxSetDimensions(a, oxGetDimensions(a), 3), 0);
    EXPECT_TRUE(oxGetM(a) == 1 && oxGetN(a) == 6) << "also from its own vector";
    oxSetM(a, 4);
    EXPECT_TRUE(oxGetNumberOfDimensions(a) == 3 && oxGetNumberOfElements(a) == 24);
    EXPECT_EQ(oxCalcSingleSubscript(a, 4, Dims{1, 1, 2, 5}.data()), 1u + 4 + 16 + 24 * 5);
    oxSetN(a, 5);
    EXPECT_TRUE(oxGetNumberOfDimensions(a) == 2 && oxGetN(a) == 5);
    EXPECT_TRUE(oxSetDimensions(a, nullptr, 0) == 0 && oxIsEmpty(a));
    EXPECT_TRUE(oxSetDimensions(a, nd, 1) == 0 && oxIsScalarDoubleFlagSet(a)) << "1-by-1";
    oxSetM(a, 0);
    EXPECT_FALSE(oxIsScalarDoubleFlagSet(a));
}

TEST_F(Classes, FirstElement) {
    for (const auto &[array, first] : {std::pair{"7 8", 7.0},
                                       {"uint64 1x1: 18446744073709551615", 0x1p64},
                                       {"char 1x1: 'A'", 65},
                                       {"sparse double 2x2: (1,0)=5", 0}})
        EXPECT_EQ(oxGetScalar(arr(array)), first) << array;
    for (const char *t : {"double 0x3", "cell 1x1: {1}", "sparse double 0x0"})
        EXPECT_TRUE(oxIsNaN(oxGetScalar(arr(t)))) << t;
}

// Everything goes but scope, count and place.
TEST_F(Classes, ReTypingInPlace) {
    const std::tuple<const char *, oxClassID, uint32_t> rows[] = {
        {"double 2x2x2: 1 2; 3 4 | 5 6; 7 8", oxDOUBLE_CLASS,
         oxFLAG_NUMERIC | oxFLAG_SCALAR_DOUBLE},
        {"1+2i", oxINT8_CLASS, oxFLAG_NUMERIC},
        {"sparse double 2x2: (0,0)=1", oxLOGICAL_CLASS, 0},
        {"struct 1x2 a,b: {1} {} {2} {}", oxVOID_CLASS, 0}};
    for (const auto &[array, to, flags] : rows) {
        oxArray *a = arr(array), *sharer = oxCreateSharedDataCopy(a);
        const std::string contents = text(sharer);
        oxSetUserBits(a, 3);
        a->reference_count = 2;
        oxReInitArray2Type(a, to);
        EXPECT_TRUE(a->scope == oxSCOPE_TEMPORARY && a->reference_count == 2);
        EXPECT_TRUE(a->flag_word == flags && a->get_shape_attr() == oxATTR_SCALAR) << array;
        EXPECT_EQ(a->class_code, to == oxVOID_CLASS ? 0 : to);
        for (const void *word : a->words) EXPECT_EQ(word, nullptr);
        EXPECT_FALSE(a->cross_link || sharer->cross_link) << array;
        EXPECT_EQ(text(sharer), contents);
        a->reference_count = 0;
    }
}

} // namespace
