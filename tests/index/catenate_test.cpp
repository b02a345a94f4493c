// Catenation: classes, empties, fields, extents, and random joins against a per-element model.
#include <support/calls.h>
#include <support/naive_index.h>

namespace {

constexpr int dimension = oxCAT_DIMENSION, beside = oxCAT_HORIZONTAL, below = oxCAT_VERTICAL;

using Catenate = HostTest;

TEST_F(Catenate, ResultsAndRefusals) {
    const auto rows = [](int form, const std::vector<Row> &all) {
        expect_rows([form](auto &in) { return cat(form, {in.begin(), in.end()}); }, all);
    };
    const std::string invalid = "!catenate:invalidDimension Dimension must be a finite integer.",
                      fields = "!catenate:structFieldBad CAT arguments are not consistent in "
                               "structure field ",
                      mismatch = "!catenate:dimensionMismatch CAT argument";
    const auto incorrect = [](const std::string &what) {
        return Warning{"VELTRO:catenate:DimensionMismatch",
                       "Concatenation involves an empty array with an incorrect number of " + what +
                           ".\nThis may not be allowed in a future release."};
    };
    rows(
        beside,
        {{{"int8 1x1: 65", "char 1x1: 'a'"}, "char 1x2: 'Aa'"}, // although int8 is chosen
         {{"1 2", "int8 1x1: 3"}, "int8 1x3: 1 2 3"},
         {{"double 0x0", "1; 2; 3"}, "1; 2; 3"},
         {{}, "double 0x0"},
         {{"struct 0x0 a", "struct 1x1 b: {1}"}, "struct 1x1 b: {1}"},
         {{"double 3x0", "double 4x0", "1; 2"}, "1; 2", {incorrect("rows")}}, // once
         {{"cell 1x1: {1}", "cell 1x2: {} {char 1x1: 'x'}"}, "cell 1x3: {1} {} {char 1x1: 'x'}"},
         {{"sparse double 2x2: (0,0)=1 (1,1)=2", "3; 0"},
          "sparse double 2x3: (0,0)=1 (1,1)=2 (0,2)=3"},
         {{"sparse double 2x1", "sparse double 3x1"}, mismatch + " dimensions are not consistent."},
         {{"struct 1x1 a: {}", "struct 1x1 a,b: {} {}"}, fields + "number."},
         {{"struct 1x0 a", "struct 1x1 b: {}"}, fields + "names."}});
    rows(below, {{{"struct 1x1 a,b: {1} {2}", "struct 1x1 b,a: {3} {4}"},
                  "struct 2x1 a,b: {1} {2} {4} {3}"},
                 {{"sparse double 1x2: (0,0)=1", "sparse double 1x2: (0,0)=2+1i (0,1)=3"},
                  "sparse double 2x2: (0,0)=1+0i (1,0)=2+1i (1,1)=3+0i"},
                 {{"1 2", "double 0x3"}, "1 2", {incorrect("columns")}, true}, // shared
                 {{"sparse double 281474976710655x1", "sparse double 1x1"},
                  "!pmaxsize Maximum variable size allowed by the program is exceeded."}});
    rows(dimension,
         {{{"0", "1 2"}, "1 2"},
          {{"3", "1+1i", "3"}, "double 1x1x2: 1+1i | 3"},
          {{"7"}, "double 0x0"},
          {{"3", "1 2", "double 0x3"}, "1 2"},
          {{"0", "1", "2"}, mismatch + "s dimensions are not consistent."},
          {{"3", "sparse double 2x1"},
           "!catenate:sparseDimensionBad Dimension for sparse matrix concatenation must be <= 2."},
          {{}, "!minrhs Not enough input arguments."},
          {{"1e15", "1", "2"}, "!nomem"}}); // no vector holds so many: refused before one is sized
    for (const char *d : {"1.5", "-1", "NaN", "1+2i", "Inf", "1 2", "int8 1x1: 1", "double 0x0"})
        rows(dimension, {{{d, "1"}, invalid}});
}

TEST_F(Catenate, ObjectsOfAnotherClassThatAreNotEmptyAreRefused) {
    const WithLayer layer;
    const Contexts contexts;
    oxArray *a = arr("opaque 1x1: 1"), *b = arr("opaque 1x2: 2 3"), *none = arr("opaque 1x0");
    none->opaque.tag = 7; // but it is empty
    EXPECT_EQ(text(cat(beside, {a, none, b})), "opaque 1x3: 1 2 3");
    b->opaque.tag = 7;
    EXPECT_RAISES("VELTRO:catenate:incompatibleType",
                  "Arrays being catenated have incompatible classes.", cat(beside, {a, b}));
}

// What is taken out of a join, operand by operand, is the operands.
TEST_F(Catenate, RandomJoinsFallApartIntoTheirOperands) {
    Random random(7);
    double next = 1;
    for (int round = 0; round < 200; ++round) {
        const kwSize d = random.below(4), n = 1 + random.below(40);
        kwSize dims[4] = {1 + random.below(4), 1 + random.below(4), 1 + random.below(4), 1};
        std::vector<const oxArray *> args{oxCreateDoubleScalar(static_cast<double>(d + 1))};
        for (kwSize k = 0; k < n; ++k) {
            dims[d] = random.below(4);
            oxArray *a = oxCreateNumericArray(4, dims, oxDOUBLE_CLASS, oxREAL);
            for (kwSize i = 0; i < oxGetNumberOfElements(a); ++i) oxGetPr(a)[i] = next++;
            args.push_back(a);
        }
        const oxArray *c = cat(dimension, args), *all = arr("char 1x1: ':'");
        double at = 1;
        for (kwSize k = 1; k <= n; ++k) {
            const double extent = static_cast<double>(args[k]->get_dimensions()[d]);
            Subs piece = {all, all, all, all};
            piece[d] = oxCreateColonObj(at, 1, at + extent - 1);
            ASSERT_EQ(Naive::read(ref(c, piece)).elements, Naive::read(args[k]).elements);
            at += extent;
        }
    }
}

} // namespace
