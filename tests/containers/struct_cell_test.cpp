// struct2cell and cell2struct: results, sharing, and every refusal.
#include <core/array.h>
#include <ox/sharing.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>

using namespace ox;
using namespace ox::test;

namespace {

using StructCell = HostTest;

oxArray *struct2cell(const oxArray *s) {
    oxArray *out = nullptr;
    oxStruct2cell(1, &out, 1, &s);
    return out;
}

oxArray *cell2struct(const std::vector<const oxArray *> &in) {
    oxArray *out = nullptr;
    std::vector<const oxArray *> args = in;
    oxCell2struct(1, &out, static_cast<int>(in.size()), args.data());
    return out;
}

TEST_F(StructCell, FieldsBecomeTheFirstDimension) {
    EXPECT_EQ(text(struct2cell(arr("struct 1x2 a,b: {1} {} {3} {4}"))),
              text(arr("cell 2x1x2: {1} {} {3} {4}")));
    EXPECT_EQ(text(struct2cell(arr("struct 2x0 a"))), "cell 1x2x0");
    EXPECT_EQ(text(struct2cell(oxCreateStructMatrix(2, 1, 0, nullptr))), "cell 0x2x1");
}

TEST_F(StructCell, ValuesAreSharedNotCopied) {
    const oxArray *s = arr("struct 1x1 a: {1 2 3}");
    oxArray *c = struct2cell(s);
    EXPECT_EQ(oxGetCell(c, 0)->num.pdata, oxGetField(s, 0, "a")->num.pdata);
    EXPECT_TRUE(oxIsSharedArray(oxGetCell(c, 0)));
    const oxArray *t = cell2struct({c, arr("char 1x1: 'a'")});
    EXPECT_EQ(oxGetField(t, 0, "a")->num.pdata, oxGetCell(c, 0)->num.pdata);
}

TEST_F(StructCell, OneDimensionBecomesTheFields) {
    struct Row {
        const char *cell, *names, *d, *expected;
    };
    const Row table[] = {
        {"cell 2x1: {1} {2}", "char 2x1: 'a'; 'b'", nullptr, "struct 1x1 a,b: {1} {2}"},
        {"cell 2x3: {1} {4} {2} {} {3} {6}", "char 2x1: 'a'; 'b'", "1",
         "struct 3x1 a,b: {1} {4} {2} {} {3} {6}"},
        {"cell 2x3: {1} {4} {2} {5} {3} {6}", "char 3x1: 'a'; 'b'; 'c'", "2",
         "struct 2x1 a,b,c: {1} {2} {3} {4} {5} {6}"},
        {"cell 2x1x2: {1} {2} {3} {4}", "cell 1x2: {char 1x1: 'a'} {char 1x2: 'bc'}", "3",
         "struct 2x1 a,bc: {1} {3} {2} {4}"},
        {"cell 1x2: {1} {2}", "cell 1x1: {char 1x1: 'a'}", "5", "struct 1x2 a: {1} {2}"},
        {"cell 2x1x1: {1} {2}", "char 2x1: 'a'; 'b'", "1", "struct 1x1 a,b: {1} {2}"},
        {"cell 2x0", "char 2x2: 'a\\u0000'; 'bc'", "1", "struct 0x1 a,bc"},
        {"cell 0x2", "cell 0x0", nullptr, "struct 2x1"},
    };
    for (const Row &r : table) {
        std::vector<const oxArray *> in = {arr(r.cell), arr(r.names)};
        if (r.d) in.push_back(arr(r.d));
        EXPECT_EQ(text(cell2struct(in)), text(arr(r.expected))) << r.cell << " along " << in.size();
    }
}

TEST_F(StructCell, Refusals) {
    const std::string number = "VELTRO:Cell2Struct:";
    struct Row {
        std::vector<const char *> in;
        std::string id;
        const char *text;
    };
    const char *pair = "cell 2x1: {1} {2}";
    const Row table[] = {
        {{pair}, "VELTRO:minrhs", "Not enough input arguments."},
        {{pair, pair, "1", "1"}, "VELTRO:maxrhs", "Too many input arguments."},
        {{"1 2", "char 1x1: 'a'"}, "VELTRO:badopt", "Unknown command option."},
        {{pair, "char 1x1: 'a'", "int8 1x1: 1"}, "VELTRO:badopt", "Unknown command option."},
        {{pair, "1 2"}, "VELTRO:badopt", "Unknown command option."},
        {{pair, "char 1x1: 'a'", "1 2"},
         "VELTRO:NonScalarInput",
         "Input arguments must be scalar."},
        {{pair, "char 1x1: 'a'", "0"},
         number + "DimensionNumber",
         "Dimension number out of range."},
        {{pair, "char 1x2: 'ab'"},
         number + "NumberOfNamesMismatch",
         "Number of field names must match number of fields in new structure."},
        {{pair, "cell 1x2: {char 1x1: 'a'} {2}"},
         number + "NonStringFieldNames",
         "Field names must be strings."},
        {{pair, "cell 1x2: {char 1x1: 'a'} {}"}, number + "NonStringFieldNames", nullptr},
        {{pair, "cell 1x2: {char 1x1: 'a'} {char 2x1: 'b'; 'c'}"},
         number + "NonStringVector",
         "Field name must be a string vector."},
        {{pair, "char 2x1x1: 'a'; 'b'"},
         number + "Non2DCharArray",
         "Field names must be a 2 dimensional character array."},
        {{pair, "char 2x2: 'ab'; 'c '"}, // a blank stays in the name
         number + "InvalidFieldName",
         "Invalid field name \"c \""},
        {{pair, "char 2x1: 'a'; 'a'"}, "VELTRO:DuplicateFieldName", "Duplicate field name \"a\""},
    };
    for (const Row &r : table) {
        std::vector<const oxArray *> in;
        for (const char *s : r.in) in.push_back(arr(s));
        SCOPED_TRACE(r.id);
        EXPECT_RAISES(r.id.c_str(), r.text, cell2struct(in));
    }
    oxArray *out[2];
    const oxArray *in[2] = {arr("struct 1x1 a: {1}"), arr("1")};
    EXPECT_RAISES_ENTRY(FMAXLHS, oxCell2struct(2, out, 0, in));
    EXPECT_RAISES_ENTRY(FMAXLHS, oxStruct2cell(2, out, 2, in));
    EXPECT_RAISES_ENTRY(FMAXRHS, oxStruct2cell(1, out, 2, in));
    EXPECT_RAISES_ENTRY(FMINRHS, oxStruct2cell(1, out, 0, in));
    EXPECT_THROW(struct2cell(in[1]), std::exception);
}

TEST_F(StructCell, NamesAreCutBeforeTheyAreComparedOver63Bytes) {
    const std::string base(63, 'n');
    const char *names[] = {(base + "1").c_str(), nullptr};
    const std::string first = base + "1", second = base + "2";
    names[0] = first.c_str();
    names[1] = second.c_str();
    const oxArray *cell = arr("cell 2x1: {1} {2}");
    const oxArray *n = oxCreateCharMatrixFromStrings(2, names);
    const WarningRecorder recorder;
    EXPECT_RAISES("VELTRO:DuplicateFieldName", ("Duplicate field name \"" + base + "\"").c_str(),
                  cell2struct({cell, n}));
    EXPECT_EQ(WarningRecorder::shown.size(), 1u); // the second name was not reached
}

TEST_F(StructCell, FailedAllocations) {
    const Sweep table[] = {
        {.name = "struct2cell",
         .inputs = {"struct 1x2 a,b: {1} {2} {} {1 2}"},
         .make = [](auto &in) { return struct2cell(in[0]); }},
        {.name = "cell2struct",
         .inputs = {"cell 2x2: {1} {} {2} {1 2}", "cell 1x2: {char 1x1: 'a'} {char 1x1: 'b'}", "2"},
         .make =
             [](auto &in) {
                 return cell2struct({in[0], in[1], in[2]});
             },
         .bare = false}};
    for (const Sweep &s : table) sweep(s);
}

} // namespace
