// Subscripts as positions, and the errors of bad ones.
#include <support/calls.h>

#include <cmath>

namespace {

using Subscripts = HostTest;

constexpr const char *bad = "VELTRO:badsubscript",
                     *outside_text = "Index exceeds matrix dimensions.",
                     *not_positive =
                         "Subscript indices must either be real positive integers or logicals.";

// What oxConvertToIndex makes of a subscript, extent and base: its result as unsigned (0: a list),
// the largest position, and the list.
oxArray *converted(const Arrays &in) {
    const oxArray *s = in[0];
    const auto extent = static_cast<kwSize>(oxGetScalar(in[1]));
    kwSize count = 99, max = 99;
    kwIndex *list = nullptr;
    const int result =
        oxConvertToIndex(&s, extent, static_cast<int>(oxGetScalar(in[2])), &count, &max, &list);
    oxArray *answer = oxCreateNumericMatrix(1, list ? count + 2 : 2, oxUINT64_CLASS, oxREAL);
    data<uint64_t>(answer)[0] = static_cast<uint64_t>(result);
    data<uint64_t>(answer)[1] = max;
    if (list) std::copy_n(list, count, data<uint64_t>(answer) + 2);
    oxFree(list);
    return answer;
}

TEST_F(Subscripts, BecomePositions) {
    const std::string big = "18446744073709551615";
    expect_rows(
        converted,
        {{{":", "0", "0"}, "uint64 1x2: " + big + " 0"},
         {{"1:1:0", "9", "0"}, "uint64 1x2: 1 0"},
         {{"7:1:9", "3", "0"}, "uint64 1x5: 0 9 6 7 8"}, // extents are not checked here
         {{"1152921504606846976:1:1152921504606846976", "3", "0"},
          "uint64 1x3: 0 281474976710655 281474976710654"},
         {{"sparse logical 2x3: (1,0)=1 (0,2)=1", "6", "0"}, "uint64 1x4: 0 5 1 4"},
         {{"3 1 2", "3", "5"}, "uint64 1x5: 0 3 7 5 6"},
         {{"single 1x2: 2 16777216", "3", "1"}, "uint64 1x4: 0 16777216 2 16777216"},
         {{"int8 1x2: -1 1", "3", "1"}, "uint64 1x4: 0 255 255 1"},
         {{"int64 1x1: -1", "3", "1"}, "uint64 1x3: 0 " + big + " " + big},
         {{"uint64 1x2: 18446744073709551615 1", "3", "1"},
          "uint64 1x4: 0 " + big + " " + big + " 1"},
         {{"char 1x2: '::'", "99", "1"}, "uint64 1x4: 0 58 58 58"}, // only one ':' is the colon
         {{"1.5:1:3.5", "9", "1"},
          "uint64 1x5: 0 3 1 2 3",
          {{"VELTRO:colon:nonIntegerIndex",
            "Integer operands are required for colon operator when used as index"}}},
         {{"1:1:inf", "9", "1"},
          "!colon:nonFiniteEndpoint Non-finite endpoints or increment for colon operator in "
          "index"}});
    for (const char *s : {"Inf", "1e15", "single 1x1: 0.5", "single 1x1: 1e30", "uint64 1x2: 1 0",
                          "char 1x1: '\\u0000'", "1+1i", "1+0i 2", "sparse double 1x3: (0,0)=1",
                          "3:-1:0", "-3:1:2", "0.5:1:2", "cell 1x1: {1}"})
        expect_rows(converted, {{{s, "3", "0"}, std::string("!badsubscript ") + not_positive}});
}

TEST_F(Subscripts, DetailedErrorsListTheSubscripts) {
    // clang-format off
    // dimensions, which are colons, positions, offset, and the text behind "Attempted to access "
    const std::tuple<Dims, const char *, std::vector<double>, int, const char *> rows[] = {
        {{}, " ", {1.5}, 0, "A(1.5); index must be a positive integer or logical."},
        {{2, 3}, "  : ", {1, NAN, 0, -INFINITY}, 0, "A(1,NaN,:,-Inf); index must be a positive integer or logical."},
        {{}, " ", {2147483648.0}, 0, "A(2.14748e+09); index must be a positive integer or logical."},
        {{2, 3}, " ", {7}, 1, "A(7); index out of bounds because numel(A)=6."},
        {{2, 3, 4}, " : ", {3, 0, 9}, 1, "A(3,:,9); index out of bounds because size(A)=[2,3,4]."},
        {{2, 2, 0}, "  ", {2, 2}, 1, "A(2,2); index out of bounds because size(A)=[2,2,0]."},
        {{2, 3}, "  ", {2, 1}, 0, "A(2,1); index out of bounds because size(A)=[2,3]."}, // one too far
    };
    // clang-format on
    for (const auto &[dims, colons, values, offset, text] : rows)
        for (const char *name : {"A", static_cast<const char *>(nullptr)}) {
            const std::string full = std::string("Attempted to access ") + text;
            const bool outside = full.find("because") != full.npos;
            const char *message = name ? full.c_str() : outside ? outside_text : not_positive;
            EXPECT_RAISES(bad, message,
                          oxHandleSubscriptError(name, static_cast<int>(dims.size()), dims.data(),
                                                 colons, values.data(), offset));
        }
    const double last[] = {2, 3};
    for (const char *colons : {"  ", "::"}) // no error
        oxHandleSubscriptError("A", 2, Dims{2, 3}.data(), colons, last, 1);
}

TEST_F(Subscripts, ShortErrors) {
    EXPECT_RAISES(bad, not_positive, oxHandleSubscriptError(1));
    for (int code : {0, 2, 9}) EXPECT_RAISES(bad, outside_text, oxHandleSubscriptError(code));
    EXPECT_RAISES("VELTRO:indexed_matrix_cannot_be_resized",
                  "Attempt to grow array x along ambiguous dimension.",
                  oxHandleAmbiguousArrayGrowth("x"));
}

TEST_F(Subscripts, SizeArguments) {
    const std::string fraction = "!NonIntegerInput Size vector should be a row vector with integer "
                                 "elements.";
    expect_rows(
        [](auto &in) {
            kwSize out[3];
            oxArgMustBeIndices(in[0], 3, out);
            oxArray *sizes = oxCreateDoubleMatrix(1, 3, oxREAL);
            std::copy_n(out, 3, oxGetPr(sizes));
            return sizes;
        },
        {{{"2 -1 Inf"}, "2 0 281474976710655"},
         {{"int8 1x3: 1 -2 3"}, "1 0 3"},
         {{"uint64 1x3: 18446744073709551615 1 0"}, "281474976710655 1 0"},
         {{"1 2"}, "!NonScalarInput Input arguments must be scalar."},
         {{"1 2 1.5+1i"},
          "!obsoleteComplexInput Size vector must be a row vector with real elements."},
         {{"1 1.5 2"}, fraction},
         {{"single 1x3: 1 NaN 2"}, fraction}});
}

} // namespace
