// Cell arrays: creation, ownership of elements, the constructor function, struct2cell and
// cell2struct with their refusals.
#include <core/array_list.h>
#include <support/suite.h>

namespace {

using Cells = HostTest;

using Args = std::vector<const oxArray *>;

Args args(const std::vector<const char *> &texts) {
    Args in;
    for (const char *t : texts) in.push_back(arr(t));
    return in;
}
oxArray *call(void (*f)(int, oxArray **, int, const oxArray **), Args in) {
    oxArray *out = nullptr;
    f(1, &out, static_cast<int>(in.size()), in.data());
    return out;
}
oxArray *construct(Args in) { return call(oxCellConstructorFcn, in); }

const char size_row[] = "Size vector must be a row vector with real elements.";
const char size_integer[] = "Size vector should be a row vector with integer elements.";

const struct {
    std::vector<const char *> args;
    const char *result; // of the constructor
    const char *id = nullptr, *message = nullptr;
} constructions[] = {
    {{"0 1 1 1 1 1 1 1 1 1 1 1"}, "cell 0x1x1x1x1x1x1x1x1x1x1x1"},
    {{"double 1x0"}, "cell 0x0"},
    {{"-3", "2"}, "cell 0x2"},
    {{"int8 1x1: 1", "sparse double 1x1: (0,0)=2"}, "cell 1x2: {} {}"},
    {{"sparse double 1x2: (0,1)=2"}, "cell 0x2"},
    {{"cell 1x1: {5}"}, "cell 1x1: {double 1x1: 5}"},
    {{"double 0x0"}, nullptr, "VELTRO:NonIntegerInput", size_row},
    {{"1.5"}, nullptr, "VELTRO:NonIntegerInput", size_integer},
    {{"1", "NaN"}, nullptr, "VELTRO:NonIntegerInput", size_integer},
    {{"1", "1e12", "1e12"}, nullptr, "VELTRO:nomem"},
    {{"1+2i"}, nullptr, "VELTRO:obsoleteComplexInput", size_row},
    {{"1 2", "3"}, nullptr, "VELTRO:NonScalarInput", "Input arguments must be scalar."},
};

TEST_F(Cells, Constructor) {
    for (const auto &row : constructions) {
        SCOPED_TRACE(row.args[0]);
        const Args in = args(row.args);
        const kwSize listed = array_list_length();
        if (row.id) {
            EXPECT_RAISES(row.id, row.message, construct(in));
            continue;
        }
        const oxArray *out = construct(in);
        EXPECT_TRUE(text(out) == row.result && out != in[0]) << text(out);
        EXPECT_EQ(array_list_length(), listed + 1); // converted arguments are gone
    }
    EXPECT_RAISES_ENTRY(FMAXLHS, oxCellConstructorFcn(2, nullptr, 0, nullptr)); // outputs first
    EXPECT_RAISES_ENTRY(FMINRHS, oxCellConstructorFcn(1, nullptr, 0, nullptr));
}

// --- struct2cell and cell2struct ---

using StructCell = HostTest;

oxArray *struct2cell(Args in) { return call(oxStruct2cell, in); }
oxArray *cell2struct(Args in) { return call(oxCell2struct, in); }

TEST_F(StructCell, FieldsBecomeTheFirstDimensionAndValuesAreShared) {
    EXPECT_EQ(text(struct2cell({arr("struct 1x2 a,b: {1} {} {3} {4}")})),
              text(arr("cell 2x1x2: {1} {} {3} {4}")));
    const oxArray *s = arr("struct 1x1 a: {1 2 3}"), *c = struct2cell({s});
    const oxArray *t = cell2struct({c, arr("char 1x1: 'a'")});
    EXPECT_EQ(oxGetCell(c, 0)->num.pdata, oxGetField(s, 0, "a")->num.pdata);
    EXPECT_EQ(oxGetField(t, 0, "a")->num.pdata, oxGetField(s, 0, "a")->num.pdata);
}

TEST_F(StructCell, OneDimensionBecomesTheFields) {
    const std::pair<std::vector<const char *>, const char *> table[] = {
        {{"cell 2x3: {1} {4} {2} {5} {3} {6}", "char 3x1: 'a'; 'b'; 'c'", "2"},
         "struct 2x1 a,b,c: {1} {2} {3} {4} {5} {6}"},
        {{"cell 2x1x2: {1} {2} {3} {4}", "cell 1x2: {char 1x1: 'a'} {char 1x2: 'bc'}", "3"},
         "struct 2x1 a,bc: {1} {3} {2} {4}"},
        {{"cell 1x2: {1} {2}", "cell 1x1: {char 1x1: 'a'}", "5"}, "struct 1x2 a: {1} {2}"},
        {{"cell 1x2x1x1: {1} {2}", "char 1x1: 'a'", "1"}, "struct 2x1x1 a: {1} {2}"},
        {{"cell 2x0", "char 2x2: 'a\\u0000'; 'bc'", "1"}, "struct 0x1 a,bc"},
        {{"cell 0x2", "cell 0x0"}, "struct 2x1"}};
    for (const auto &[in, expected] : table)
        EXPECT_EQ(text(cell2struct(args(in))), text(arr(expected))) << in[0];
}

TEST_F(StructCell, Refusals) {
    const char *two = "cell 2x1: {1} {2}", *a = "char 1x1: 'a'";
    // clang-format off
    const std::tuple<std::vector<const char *>, const char *, const char *> table[] = {
        {{two}, "minrhs", nullptr},
        {{two, two, "1", "1"}, "maxrhs", nullptr},
        {{"1 2", a}, "badopt", nullptr},
        {{two, "1 2"}, "badopt", nullptr},
        {{two, a, "1 2"}, "NonScalarInput", "Input arguments must be scalar."},
        {{two, a, "0"}, "Cell2Struct:DimensionNumber", "Dimension number out of range."},
        {{two, a}, "Cell2Struct:NumberOfNamesMismatch", "Number of field names must match number of fields in new structure."},
        {{two, "cell 1x2: {char 1x1: 'a'} {}"}, "Cell2Struct:NonStringFieldNames", "Field names must be strings."},
        {{two, "cell 1x2: {char 1x1: 'a'} {char 2x1: 'b'; 'c'}"}, "Cell2Struct:NonStringVector", "Field name must be a string vector."},
        {{two, "char 2x1x1: 'a'; 'b'"}, "Cell2Struct:Non2DCharArray", "Field names must be a 2 dimensional character array."},
        {{two, "char 2x2: 'ab'; 'c '"}, "Cell2Struct:InvalidFieldName", "Invalid field name \"c \""}, // a blank stays
        {{two, "char 2x1: 'a'; 'a'"}, "DuplicateFieldName", "Duplicate field name \"a\""}};
    // clang-format on
    for (const auto &[in, id, text] : table)
        EXPECT_RAISES((std::string("VELTRO:") + id).c_str(), text, cell2struct(args(in)));
    for (auto *f : {oxCell2struct, oxStruct2cell})
        EXPECT_RAISES_ENTRY(FMAXLHS, f(2, nullptr, 2, nullptr));
    EXPECT_RAISES_ENTRY(FMAXRHS, struct2cell({nullptr, nullptr}));
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

TEST(CellsSweep, EveryFailedAllocation) {
    const auto make = [](auto &in) { return construct({in.begin(), in.end()}); };
    sweep_everywhere({{}}, [](auto &) { return oxCreateCellMatrix_730(2, 2); });
    sweep_everywhere({{"1 2 1 1 1 1 1 1 1 1 1 2"}}, make);
    sweep({.name = "sizes",
           .inputs = {"1", "sparse double 1x1: (0,0)=2"},
           .make = make,
           .bare = false,
           .silent = true});
    sweep_everywhere({{"struct 1x2 a: {1} {}"}}, [](auto &in) { return struct2cell({in[0]}); });
    sweep_makes({{"cell 2x2: {1} {} {2} {1 2}", "char 2x1: 'a'; 'b'", "2"}}, [](auto &in) {
        return cell2struct({in.begin(), in.end()});
    });
}

} // namespace
