// struct2cell and cell2struct: results, sharing, and every refusal.
#include <core/array.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>

using namespace ox;
using namespace ox::test;

namespace {

using StructCell = HostTest;
using Args = std::vector<const oxArray *>;

oxArray *struct2cell(Args in) {
    oxArray *out = nullptr;
    oxStruct2cell(1, &out, static_cast<int>(in.size()), in.data());
    return out;
}
oxArray *cell2struct(Args in) {
    oxArray *out = nullptr;
    oxCell2struct(1, &out, static_cast<int>(in.size()), in.data());
    return out;
}
Args args(const std::vector<const char *> &texts) {
    Args in;
    for (const char *t : texts) in.push_back(arr(t));
    return in;
}

TEST_F(StructCell, FieldsBecomeTheFirstDimensionAndValuesAreShared) {
    EXPECT_EQ(text(struct2cell({arr("struct 1x2 a,b: {1} {} {3} {4}")})),
              text(arr("cell 2x1x2: {1} {} {3} {4}")));
    EXPECT_EQ(text(struct2cell({arr("struct 2x0 a")})), "cell 1x2x0");
    EXPECT_EQ(text(struct2cell({oxCreateStructMatrix(2, 1, 0, nullptr)})), "cell 0x2x1");
    const oxArray *s = arr("struct 1x1 a: {1 2 3}"), *c = struct2cell({s});
    const oxArray *t = cell2struct({c, arr("char 1x1: 'a'")});
    EXPECT_EQ(oxGetCell(c, 0)->num.pdata, oxGetField(s, 0, "a")->num.pdata);
    EXPECT_EQ(oxGetField(t, 0, "a")->num.pdata, oxGetField(s, 0, "a")->num.pdata);
}

TEST_F(StructCell, OneDimensionBecomesTheFields) {
    const std::pair<std::vector<const char *>, const char *> table[] = {
        {{"cell 2x3: {1} {4} {2} {} {3} {6}", "char 2x1: 'a'; 'b'"},
         "struct 3x1 a,b: {1} {4} {2} {} {3} {6}"},
        {{"cell 2x3: {1} {4} {2} {5} {3} {6}", "char 3x1: 'a'; 'b'; 'c'", "2"},
         "struct 2x1 a,b,c: {1} {2} {3} {4} {5} {6}"},
        {{"cell 2x1x2: {1} {2} {3} {4}", "cell 1x2: {char 1x1: 'a'} {char 1x2: 'bc'}", "3"},
         "struct 2x1 a,bc: {1} {3} {2} {4}"},
        {{"cell 1x2: {1} {2}", "cell 1x1: {char 1x1: 'a'}", "5"}, "struct 1x2 a: {1} {2}"},
        {{"cell 2x0", "char 2x2: 'a\\u0000'; 'bc'", "1"}, "struct 0x1 a,bc"},
        {{"cell 0x2", "cell 0x0"}, "struct 2x1"}};
    for (const auto &[in, expected] : table)
        EXPECT_EQ(text(cell2struct(args(in))), text(arr(expected))) << in[0];
}

TEST_F(StructCell, Refusals) {
    const char *two = "cell 2x1: {1} {2}", *a = "char 1x1: 'a'";
    const std::tuple<std::vector<const char *>, const char *, const char *> table[] = {
        {{two}, "minrhs", nullptr},
        {{two, two, "1", "1"}, "maxrhs", nullptr},
        {{"1 2", a}, "badopt", nullptr},
        {{two, a, "int8 1x1: 1"}, "badopt", nullptr},
        {{two, "1 2"}, "badopt", nullptr},
        {{two, a, "1 2"}, "NonScalarInput", "Input arguments must be scalar."},
        {{two, a, "0"}, "Cell2Struct:DimensionNumber", "Dimension number out of range."},
        {{two, a},
         "Cell2Struct:NumberOfNamesMismatch",
         "Number of field names must match number of fields in new structure."},
        {{two, "cell 1x2: {char 1x1: 'a'} {}"},
         "Cell2Struct:NonStringFieldNames",
         "Field names must be strings."},
        {{two, "cell 1x2: {char 1x1: 'a'} {char 2x1: 'b'; 'c'}"},
         "Cell2Struct:NonStringVector",
         "Field name must be a string vector."},
        {{two, "char 2x1x1: 'a'; 'b'"},
         "Cell2Struct:Non2DCharArray",
         "Field names must be a 2 dimensional character array."},
        {{two, "char 2x2: 'ab'; 'c '"},
         "Cell2Struct:InvalidFieldName", // a blank stays
         "Invalid field name \"c \""},
        {{two, "char 2x1: 'a'; 'a'"}, "DuplicateFieldName", "Duplicate field name \"a\""}};
    for (const auto &[in, id, text] : table)
        EXPECT_RAISES((std::string("VELTRO:") + id).c_str(), text, cell2struct(args(in)));
    const oxArray *s = arr("struct 1x1 a: {1}");
    EXPECT_RAISES_ENTRY(FMAXLHS, oxCell2struct(2, nullptr, 0, nullptr));
    EXPECT_RAISES_ENTRY(FMAXLHS, oxStruct2cell(2, nullptr, 2, nullptr));
    EXPECT_RAISES_ENTRY(FMAXRHS, struct2cell({s, s}));
    EXPECT_RAISES_ENTRY(FMINRHS, struct2cell({}));
    EXPECT_THROW(struct2cell({arr("1")}), std::exception);
}

TEST_F(StructCell, NamesAreCutOneByOneAndComparedOver63Bytes) {
    const std::string base(63, 'n'), first = base + "1", second = base + "2";
    const char *names[] = {first.c_str(), second.c_str()};
    const oxArray *n = oxCreateCharMatrixFromStrings(2, names);
    const WarningRecorder recorder;
    EXPECT_RAISES("VELTRO:DuplicateFieldName", ("Duplicate field name \"" + base + "\"").c_str(),
                  cell2struct({arr("cell 2x1: {1} {2}"), n}));
    EXPECT_EQ(WarningRecorder::shown.size(), 1u); // the second name was not reached
}

TEST_F(StructCell, FailedAllocations) {
    sweep({.name = "struct2cell",
           .inputs = {"struct 1x2 a,b: {1} {2} {} {1 2}"},
           .make = [](auto &in) { return struct2cell({in[0]}); }});
    sweep({.name = "cell2struct",
           .inputs = {"cell 2x2: {1} {} {2} {1 2}", "char 2x1: 'a'; 'b'", "2"},
           .make =
               [](auto &in) {
                   return cell2struct({in[0], in[1], in[2]});
               },
           .bare = false});
}

} // namespace
