// Cell arrays: creation, ownership of elements, and the constructor function.
#include <core/alloc.h>
#include <core/array_list.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>

using namespace ox;
using namespace ox::test;

namespace {

class Cells : public HostTest {};

const char size_row[] = "Size vector must be a row vector with real elements.";
const char size_integer[] = "Size vector should be a row vector with integer elements.";

TEST_F(Cells, SizesAndLimits) {
    const kwSize dims[] = {2, 1, 3}, huge[] = {1, kwSize{1} << 25, kwSize{1} << 25};
    EXPECT_EQ(text(oxCreateCellArray_730(0, nullptr)), "cell 0x0");
    EXPECT_EQ(text(oxCreateCellArray_730(1, dims)), "cell 2x1: {} {}");
    EXPECT_EQ(text(oxCreateCellArray_730(3, dims)), "cell 2x1x3: {} {} {} {} {} {}");
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateCellArray_730(3, huge));
    EXPECT_RAISES_ENTRY(FNOMEM, oxCreateCellMatrix_730(kwSize{1} << 33, kwSize{1} << 33));
    const oxArray *empty = oxCreateCellMatrix_730(0, 5);
    EXPECT_TRUE(!oxGetCells(empty) && oxGetN(empty) == 5);
    oxArray *c = oxCreateCellMatrix_730(1, 2);
    EXPECT_EQ(oxGetCell_730(c, 1), nullptr);
    EXPECT_TRUE(oxIsTemp(c));
}

TEST_F(Cells, OneArrayInTwoCellsIsSharedNotMoved) {
    oxArray *c = arr("cell 1x1: {}"), *d = arr("cell 1x1: {}"), *v = arr("1 2");
    oxSetCopyInCell(c, 0, v);
    oxSetCopyInCell(d, 0, v);
    EXPECT_TRUE(oxIsTemp(v) && oxGetReferenceCount(v) == 0);
    EXPECT_EQ(oxGetCell_730(c, 0), oxGetCell_730(d, 0)); // the second found the first one's copy
    EXPECT_EQ(oxGetReferenceCount(oxGetCell_730(c, 0)), 1u);
    oxDestroyArray(c);
    oxSetCell_730(c = arr("cell 1x1: {}"), 0, oxCreateReference(oxGetCell_730(d, 0)));
    EXPECT_EQ(text(c) + text(v), text(d) + "double 1x2: 1 2");
}

TEST(CellsAtLoad, OneArrayInTwoCellsIsCounted) {
    reset_library();
    oxArray *c = arr("cell 1x1: {}"), *d = arr("cell 1x1: {}"), *v = arr("1 2");
    oxSetCopyInCell(c, 0, v);
    oxSetCopyInCell(d, 0, v);
    EXPECT_EQ(oxGetReferenceCount(v), 2u);
    for (oxArray *p : {c, d}) oxDestroyArray(p);
    EXPECT_EQ(oxGetReferenceCount(v), 0u);
    EXPECT_EQ(oxGetScalar(v), 1);
    oxDestroyArray(v);
}

TEST_F(Cells, ABlockOfCellsLeavesTheAllocationListUnlessTheDataArePrivate) {
    oxArray *c = oxCreateCellMatrix_730(0, 1), *mine = oxCreateCellMatrix_730(0, 1);
    auto **block = static_cast<oxArray **>(oxCalloc(1, sizeof(oxArray *)));
    oxSetDataPrivateFlag(mine, true);
    oxSetCells(mine, block);
    EXPECT_TRUE(oxIsOnAllocList(block));
    oxSetCells(c, block);
    EXPECT_FALSE(oxIsOnAllocList(block));
    oxSetM_730(c, 1);
}

const struct {
    std::vector<const char *> args;
    const char *result; // of the constructor
    const char *id = nullptr, *message = nullptr;
} constructions[] = {
    {{"2"}, "cell 2x2: {} {} {} {}"},
    {{"2", "0"}, "cell 2x0"},
    {{"1 2 3"}, "cell 1x2x3: {} {} {} {} {} {}"},
    {{"0 1 1 1 1 1 1 1 1 1 1 1"}, "cell 0x1x1x1x1x1x1x1x1x1x1x1"},
    {{"0", "1", "1", "1", "1", "1", "1", "1", "1", "1", "2"}, "cell 0x1x1x1x1x1x1x1x1x1x2"},
    {{"double 1x0"}, "cell 0x0"},
    {{"-3", "2"}, "cell 0x2"},
    {{"int8 1x1: 1", "sparse double 1x1: (0,0)=2"}, "cell 1x2: {} {}"},
    {{"sparse double 1x2: (0,1)=2"}, "cell 0x2"},
    {{"cell 1x1: {5}"}, "cell 1x1: {double 1x1: 5}"},
    {{"double 0x0"}, nullptr, "VELTRO:NonIntegerInput", size_row},
    {{"1; 2"}, nullptr, "VELTRO:NonIntegerInput", size_row},
    {{"double 1x1x2: 1 | 2"}, nullptr, "VELTRO:NonIntegerInput", size_row},
    {{"1.5"}, nullptr, "VELTRO:NonIntegerInput", size_integer},
    {{"1", "NaN"}, nullptr, "VELTRO:NonIntegerInput", size_integer},
    {{"1+2i"}, nullptr, "VELTRO:obsoleteComplexInput", size_row},
    {{"1 2", "3"}, nullptr, "VELTRO:NonScalarInput", "Input arguments must be scalar."},
    {{"1", "1e12", "1e12"}, nullptr, "VELTRO:nomem"},
};

TEST_F(Cells, Constructor) {
    for (const auto &row : constructions) {
        SCOPED_TRACE(row.args[0]);
        std::vector<const oxArray *> args;
        for (const char *a : row.args) args.push_back(arr(a));
        const kwSize listed = array_list_length();
        oxArray *out[1];
        const auto call = [&] {
            oxCellConstructorFcn(1, out, static_cast<int>(args.size()), args.data());
        };
        if (row.id) {
            EXPECT_RAISES(row.id, row.message, call());
            continue;
        }
        call();
        EXPECT_EQ(text(out[0]), row.result);
        EXPECT_NE(out[0], args[0]);
        EXPECT_EQ(array_list_length(), listed + 1); // converted arguments are gone
        EXPECT_EQ(GetAllocListLength(), 0u);
    }
}

TEST_F(Cells, ConstructorCountsItsOutputsBeforeItsInputs) {
    oxArray *out[2];
    EXPECT_RAISES_ENTRY(FMAXLHS, oxCellConstructorFcn(2, out, 0, nullptr));
    EXPECT_RAISES_ENTRY(FMINRHS, oxCellConstructorFcn(1, out, 0, nullptr));
    kwSize dims[2], ndim;
    oxGetDims(0, nullptr, dims, &ndim);
    EXPECT_TRUE(ndim == 2 && dims[0] == 1 && dims[1] == 1);
}

TEST(CellsSweep, EveryFailedAllocation) {
    const auto construct = [](auto &in) {
        oxArray *out[1] = {};
        std::vector<const oxArray *> args(in.begin(), in.end());
        oxCellConstructorFcn(1, out, static_cast<int>(args.size()), args.data());
        return out[0];
    };
    const kwSize dims[] = {2, 1, 2};
    sweep({"matrix", {}, [](auto &) { return oxCreateCellMatrix_730(2, 2); }});
    sweep({"array", {}, [&](auto &) { return oxCreateCellArray_730(3, dims); }});
    sweep({"constructor", {"1 2 1 1 1 1 1 1 1 1 1 2"}, construct});
    sweep({.name = "converted sizes",
           .inputs = {"1", "sparse double 1x1: (0,0)=2"},
           .make = construct,
           .bare = false,
           .silent = true});
}

} // namespace
