// Classes, queries, the scalar flag, offsets and re-typing in place.
#include <support/suite.h>

#include <cstring>
#include <utility>

namespace {

class Classes : public HostTest {};

const struct {
    int id;
    const char *name;
    kwSize size;
} class_rows[] = {
    {0, "unknown", 0}, {1, "cell", 8},    {2, "struct", 8},  {3, "logical", 1},
    {4, "char", 2},    {6, "double", 8},  {7, "single", 4},  {8, "int8", 1},
    {9, "uint8", 1},   {10, "int16", 2},  {11, "uint16", 2}, {12, "int32", 4},
    {13, "uint32", 4}, {14, "int64", 8},  {15, "uint64", 8}, {16, "function_handle", 32},
    {17, "opaque", 8}, {18, "object", 8},
};

TEST_F(Classes, NamesAndSizes) {
    for (const auto &r : class_rows) {
        const auto id = static_cast<oxClassID>(r.id);
        EXPECT_STREQ(oxArrayClassIDName(id), r.name);
        EXPECT_EQ(oxGetElementSizeofClassID(id), r.size) << r.name;
        EXPECT_EQ(oxClassIDFromClassName(r.name), id);
    }
    EXPECT_EQ(oxClassIDFromClassName("Function_Handle"), oxFUNCTION_CLASS);
    for (const char *none : {"", "doubl", "doubles", "void", static_cast<const char *>(nullptr)})
        EXPECT_EQ(oxClassIDFromClassName(none), oxUNKNOWN_CLASS);
    // The hole at 5 and everything outside the table read as unknown.
    for (const int id : {5, 19, 25, 1 << 30, -1}) {
        const auto c = static_cast<oxClassID>(id);
        EXPECT_STREQ(oxArrayClassIDName(c), "unknown") << id;
        EXPECT_EQ(oxGetElementSizeofClassID(c), 0u) << id;
        EXPECT_EQ(oxCreateNumericMatrix(0, 3, c, oxREAL)->get_array_type(), 0) << id;
    }
}

// Which of the class questions an array of each class answers with yes.
TEST_F(Classes, Predicates) {
    using Predicate = bool (*)(const oxArray *);
    const Predicate own[19] = {
        nullptr,    oxIsCell,   oxIsStructClass,    oxIsLogical, oxIsChar,   nullptr,   oxIsDouble,
        oxIsSingle, oxIsInt8,   oxIsUint8,          oxIsInt16,   oxIsUint16, oxIsInt32, oxIsUint32,
        oxIsInt64,  oxIsUint64, oxIsFunctionHandle, oxIsOpaque,  oxIsObject};
    for (const auto &r : class_rows) {
        oxArray a{};
        set_class(&a, r.id);
        for (int id = 0; id < 19; ++id)
            EXPECT_EQ(own[id] && own[id](&a), own[id] && id == r.id) << r.name << ' ' << id;
        SCOPED_TRACE(r.name);
        EXPECT_EQ(oxIsNumeric(&a), r.id >= 6 && r.id <= 15);
        EXPECT_TRUE(oxIsFloat(&a) == (r.id == 6 || r.id == 7) &&
                    oxIsInteger(&a) == (r.id >= 8 && r.id <= 15) && oxIsIndex(&a) == (r.id == 15) &&
                    oxIsStruct(&a) == (r.id == 2 || r.id == 18));
        EXPECT_TRUE(oxGetClassID(&a) == static_cast<oxClassID>(r.id) &&
                    oxGetElementSize(&a) == r.size);
        const char *name = r.id == 18 ? "" : r.name; // an object without a class name
        EXPECT_STREQ(oxGetClassName(&a), name);
        EXPECT_TRUE(oxIsClass(&a, name) && !oxIsClass(&a, "DOUBLE"));
    }
    oxArray a{};
    set_class(&a, oxOBJECT_CLASS);
    a.set_struct_object_classname("polygon");
    EXPECT_STREQ(oxGetClassName(&a), "polygon");
    EXPECT_TRUE(oxIsClass(&a, "polygon") && !oxIsClass(&a, "object"));
    a.set_struct_object_tag(99);
    EXPECT_TRUE(static_cast<int>(oxGetClassID(&a)) == 99 && a.get_array_type() == 18);
}

// Sparsity does not matter.
TEST_F(Classes, ScalarDoubleFlagUpkeep) {
    for (const auto &[array, after] : {std::pair{"sparse double 1x1", true}, {"1 2", false}}) {
        oxArray *a = arr(array);
        after ? oxClearScalarDoubleFlag(a) : oxSetScalarDoubleFlag(a);
        oxSetScalarDoubleFlagIfAppropiate(a);
        EXPECT_EQ(oxIsScalarDoubleFlagSet(a), after) << array;
    }
}

TEST_F(Classes, OffsetsReachTheFields) {
    oxArray *a = arr("1 2"), *sharer = oxCreateSharedDataCopy(a);
    const auto *base = reinterpret_cast<const char *>(a);
    const auto holds = [&](kwSize offset, auto value) {
        return std::memcmp(base + offset, &value, sizeof value) == 0;
    };
    a->reference_count = 7;
    EXPECT_TRUE(holds(oxGetPdataOffset(), oxGetData(a)) && holds(oxGetCellsOffset(), oxGetData(a)));
    EXPECT_TRUE(holds(oxGetScopeOffset(), int32_t{oxSCOPE_TEMPORARY}));
    EXPECT_TRUE(holds(oxGetLinkOffset(), sharer));
    EXPECT_TRUE(holds(oxGetReferenceCountOffset(), uint32_t{7}));
    a->reference_count = 0;
}

TEST_F(Classes, Dimensions) {
    oxArray *a = arr("double 2x3: 0 0 0; 0 0 0");
    const kwSize nd[] = {1, 2, 3};
    EXPECT_EQ(oxSetDimensions(a, nd, 3), 0);
    EXPECT_EQ(oxSetDimensions(a, oxGetDimensions(a), 3), 0) << "its own vector";
    EXPECT_TRUE(oxGetM(a) == 1 && oxGetN(a) == 6);
    oxSetM(a, 4);
    EXPECT_TRUE(oxGetNumberOfDimensions(a) == 3 && oxGetNumberOfElements(a) == 24);
    const kwIndex subs[] = {1, 1, 2, 5};
    EXPECT_EQ(oxCalcSingleSubscript(a, 3, subs), 1u + 4 + 16);
    EXPECT_EQ(oxCalcSingleSubscript(a, 4, subs), 1u + 4 + 16 + 24 * 5);
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
    const struct {
        const char *array;
        oxClassID to;
        uint32_t flags;
    } rows[] = {{"double 2x2x2: 1 2; 3 4 | 5 6; 7 8", oxDOUBLE_CLASS,
                 oxFLAG_NUMERIC | oxFLAG_SCALAR_DOUBLE},
                {"1+2i", oxINT8_CLASS, oxFLAG_NUMERIC},
                {"sparse double 2x2: (0,0)=1", oxLOGICAL_CLASS, 0},
                {"struct 1x2 a,b: {1} {} {2} {}", oxVOID_CLASS, 0}};
    for (const auto &r : rows) {
        oxArray *a = arr(r.array), *sharer = oxCreateSharedDataCopy(a);
        const std::string contents = text(sharer);
        oxSetUserBits(a, 3);
        a->reference_count = 2;
        oxReInitArray2Type(a, r.to);
        EXPECT_EQ(a->flag_word, r.flags) << r.array;
        EXPECT_EQ(a->class_code, r.to == oxVOID_CLASS ? 0 : r.to);
        EXPECT_EQ(a->get_shape_attr(), oxATTR_SCALAR);
        for (const void *word : a->words) EXPECT_EQ(word, nullptr);
        EXPECT_TRUE(a->scope == oxSCOPE_TEMPORARY && a->reference_count == 2);
        a->reference_count = 0;
        oxReInitArray2ScalarDouble(a);
        EXPECT_EQ(a->flag_word, oxFLAG_NUMERIC | oxFLAG_SCALAR_DOUBLE) << r.array;
        EXPECT_FALSE(a->cross_link || sharer->cross_link) << r.array;
        EXPECT_EQ(text(sharer), contents);
    }
}

} // namespace
