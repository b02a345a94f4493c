// Catenation: classes, empties, fields, extents, and random joins against a per-element model.
#include <support/suite.h>

namespace {

// The interpreter's part: the first operand that is not an empty double decides.
oxClassID first_class(oxCatContext *, int n, const oxArray *args[]) {
    for (int k = 0; k < n; ++k)
        if (!oxIsDouble(args[k])) return static_cast<oxClassID>(args[k]->class_code);
    return oxDOUBLE_CLASS;
}
const oxArray *convert(oxCatContext *, oxClassID id, const oxArray *a) {
    if (a->class_code == id) return a;
    return oxCreateConvertedCopy(a, id);
}

oxArray *cat_arrays(int form, const std::vector<const oxArray *> &args) {
    oxCatContext context{first_class, nullptr};
    std::vector<const oxArray *> list = args;
    return oxCatenateDispatch(form, static_cast<int>(list.size()), list.data(), convert, &context);
}
oxArray *cat(int form, const std::vector<const char *> &texts) {
    std::vector<const oxArray *> args;
    for (const char *t : texts) args.push_back(arr(t));
    return cat_arrays(form, args);
}

constexpr int dimension = oxCAT_DIMENSION, beside = oxCAT_HORIZONTAL, below = oxCAT_VERTICAL;

class Catenate : public HostTest {};

TEST_F(Catenate, Results) {
    // clang-format off
    const std::tuple<int, std::vector<const char *>, const char *> rows[] = {
        {beside, {"double 1x1: 65", "char 1x1: 'a'"}, "char 1x2: 'Aa'"},
        {beside, {"double 0x0", "double 3x1: 1; 2; 3"}, "double 3x1: 1; 2; 3"},
        {beside, {}, "double 0x0"},
        {dimension, {"0", "1 2"}, "1 2"},
        {dimension, {"7"}, "double 0x0"},
        {beside, {"cell 1x1: {1}", "cell 1x2: {} {char 1x1: 'x'}"}, "cell 1x3: {1} {} {char 1x1: 'x'}"},
        {below, {"struct 1x1 a,b: {1} {2}", "struct 1x1 b,a: {3} {4}"}, "struct 2x1 a,b: {1} {2} {4} {3}"},
        {beside, {"sparse double 2x2: (0,0)=1 (1,1)=2", "3; 0"}, "sparse double 2x3: (0,0)=1 (1,1)=2 (0,2)=3"},
        {below, {"sparse double 1x2: (0,0)=1", "sparse double 1x2: (0,0)=2+1i (0,1)=3"}, "sparse double 2x2: (0,0)=1+0i (1,0)=2+1i (1,1)=3+0i"},
    };
    // clang-format on
    for (const auto &[form, operands, result] : rows)
        EXPECT_EQ(text(cat(form, operands)), text(arr(result)));
}

TEST_F(Catenate, Refusals) {
    const char *const mismatch = "catenate:dimensionMismatch", *field = "catenate:structFieldBad",
                      *full = "CAT arguments dimensions are not consistent.";
    // clang-format off
    const std::tuple<int, std::vector<const char *>, const char *, const char *> rows[] = {
        {dimension, {"0", "1", "2"}, mismatch, full},
        {beside, {"sparse double 2x1", "sparse double 3x1"}, mismatch, "CAT argument dimensions are not consistent."},
        {dimension, {"3", "sparse double 2x1"}, "catenate:sparseDimensionBad", "Dimension for sparse matrix concatenation must be <= 2."},
        {dimension, {}, "minrhs", "Not enough input arguments."},
        {below, {"sparse double 281474976710655x1", "sparse double 1x1"}, "pmaxsize", "Maximum variable size allowed by the program is exceeded."},
        {beside, {"struct 1x1 a: {}", "struct 1x1 a,b: {} {}"}, field, "CAT arguments are not consistent in structure field number."},
        {beside, {"struct 1x0 a", "struct 1x1 b: {}"}, field, "CAT arguments are not consistent in structure field names."},
    };
    // clang-format on
    for (const auto &[form, operands, id, text] : rows)
        EXPECT_RAISES((std::string("VELTRO:") + id).c_str(), text, cat(form, operands));
    for (const char *d : {"1.5", "-1", "NaN", "1+2i", "Inf", "1 2", "int8 1x1: 1", "double 0x0"})
        EXPECT_RAISES("VELTRO:catenate:invalidDimension", "Dimension must be a finite integer.",
                      cat(dimension, {d, "1"}));
    const WithLayer layer;
    const Contexts contexts;
    oxArray *a = arr("opaque 1x1: 1"), *b = arr("opaque 1x2: 2 3"), *none = arr("opaque 1x0");
    none->opaque.tag = 7; // but it is empty
    EXPECT_EQ(text(cat_arrays(beside, {a, none, b})), "opaque 1x3: 1 2 3");
    b->opaque.tag = 7;
    EXPECT_RAISES("VELTRO:catenate:incompatibleType",
                  "Arrays being catenated have incompatible classes.", cat_arrays(beside, {a, b}));
    // A dimension that no vector can hold is refused before one is sized.
    EXPECT_RAISES_ENTRY(FNOMEM, cat(dimension, {"1e15", "1", "2"}));
}

TEST_F(Catenate, EmptyOperandsThatDisagreeWarnOnce) {
    const char *const id = "VELTRO:catenate:DimensionMismatch";
    const auto message = [](const std::string &what) {
        return "Concatenation involves an empty array with an incorrect number of " + what +
               ".\nThis may not be allowed in a future release.";
    };
    oxArray *c = nullptr;
    EXPECT_WARNS(id, message("rows"), c = cat(beside, {"double 3x0", "double 4x0", "1; 2"}));
    EXPECT_EQ(text(c), text(arr("double 2x1: 1; 2")));
    EXPECT_WARNS(id, message("columns"), cat(below, {"1 2", "double 0x3"}));
    EXPECT_NO_WARNING(cat(dimension, {"double 1x1: 3", "double 1x2: 1 2", "double 0x3"}));
    EXPECT_NO_WARNING(cat(beside, {"struct 0x0 a", "struct 1x1 b: {}"}));
}

TEST_F(Catenate, ElementsOfContainersAreShared) {
    oxArray *a = arr("cell 1x1: {double 1x2: 1 2}"), *b = arr("cell 1x1: {}");
    oxArray *element = a->cell.slots[0];
    oxArray *c = cat_arrays(beside, {a, b, a});
    EXPECT_TRUE(c->cell.slots[0] == element && c->cell.slots[2] == element);
    EXPECT_EQ(oxGetReferenceCount(element), 2u);
    // One operand that counts is shared, not copied.
    oxArray *x = arr("double 1x2: 1 2");
    EXPECT_EQ(oxGetData(cat_arrays(beside, {x, arr("double 0x0")})), oxGetData(x));
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
        const oxArray *c = cat_arrays(dimension, args), *all = arr("char 1x1: ':'");
        double at = 1;
        for (kwSize k = 1; k <= n; ++k) {
            const double extent = static_cast<double>(args[k]->get_dimensions()[d]);
            const oxArray *subs[] = {all, all, all, all};
            subs[d] = oxCreateColonObj(at, 1, at + extent - 1);
            const oxArray *piece = oxSubscriptedReference(c, 4, subs);
            ASSERT_EQ(oxGetNumberOfElements(piece), oxGetNumberOfElements(args[k]));
            for (kwSize i = 0; i < oxGetNumberOfElements(piece); ++i)
                ASSERT_EQ(oxGetPr(piece)[i], oxGetPr(args[k])[i]) << "round " << round;
            at += extent;
        }
    }
}

TEST_F(Catenate, FailingAllocations) {
    const std::pair<int, std::vector<std::string>> calls[] = {
        {beside, {"1 2", "int8 1x1: 3"}},
        {dimension, {"3", "1+1i", "3"}},
        {beside, {"struct 1x1 a,b: {} {}", "struct 1x1 b,a: {} {}"}},
        {below, {"sparse double 1x1: (0,0)=1", "2"}},
    };
    for (const auto &[form, inputs] : calls)
        sweep_makes({inputs}, [&, f = form](auto &in) {
            return cat_arrays(f, {in.begin(), in.end()});
        });
}

} // namespace
