// Permutes against a model that moves one element after the other, and what the arguments must be.
#include <containers/check_array.h>
#include <support/suite.h>

#include <algorithm>
#include <cstring>
#include <numeric>

#include "each_target.h"

namespace {

class Permute : public HostTest {
    WithLayer layer_;
};

oxArray *permute(const oxArray *a, const oxArray *order) {
    const oxArray *prhs[] = {a, order};
    oxArray *plhs[1] = {};
    oxPermuteFcn(1, plhs, 2, prhs);
    return plhs[0];
}
oxArray *permute(const char *a, const char *order) { return permute(arr(a), arr(order)); }

// Permutes random bytes and looks for each element where the model says.
void check_order(Random &random, const Dims &dims, oxClassID id, oxComplexity complexity) {
    const Contexts contexts;
    const kwSize n = dims.size();
    std::vector<kwSize> order(n), stride(n, 1);
    std::iota(order.begin(), order.end(), kwSize{0});
    for (kwSize k = n; k-- > 1;) std::swap(order[k], order[random.below(k + 1)]);
    for (kwSize k = 1; k < n; ++k) stride[k] = stride[k - 1] * dims[k - 1];
    oxArray *p = oxCreateDoubleMatrix(1, n, oxREAL);
    std::transform(order.begin(), order.end(), oxGetPr(p),
                   [](kwSize k) { return static_cast<double>(k + 1); });
    oxArray *a = oxCreateNumericArray(n, dims.data(), id, complexity);
    const kwSize w = oxGetElementSize(a), count = a->get_number_of_elements();
    for (auto *block : {data<char>(a), imag<char>(a)})
        for (kwSize i = 0; block && i < count * w; ++i)
            block[i] = static_cast<char>(random.below(100));
    const oxArray *b = permute(a, p);
    ASSERT_FALSE(check_array(b));
    for (kwSize k = 0; k < n; ++k)
        ASSERT_EQ(k < b->ndims ? b->get_dimensions()[k] : 1, dims[order[k]]);
    ASSERT_TRUE(b->ndims == 2 || b->get_dimensions()[b->ndims - 1] != 1 ||
                std::is_sorted(order.begin(), order.end()));
    for (kwSize i = 0; i < count; ++i) {
        kwSize at = 0, rest = i;
        for (kwSize k : order) at += rest % dims[k] * stride[k] * w, rest /= dims[k];
        ASSERT_EQ(std::memcmp(data<char>(b) + i * w, data<char>(a) + at, w), 0) << i;
        ASSERT_TRUE(!oxIsComplex(a) ||
                    std::memcmp(imag<char>(b) + i * w, imag<char>(a) + at, w) == 0);
    }
}

// Up to six dimensions, of which some are 0 or 1 and one may be longer than a tile; then results
// that go past the caches.
TEST_F(Permute, RandomOrdersAgreeWithTheModel) {
    Random random(11);
    SCOPED_TRACE(random.seed());
    const oxClassID classes[] = {oxDOUBLE_CLASS, oxSINGLE_CLASS, oxCHAR_CLASS, oxUINT8_CLASS};
    for_each_target([&] {
        for (int round = 0; round < 250; ++round) {
            Dims dims(2 + random.below(5));
            for (kwSize &d : dims) d = random.chance(0.25) ? random.below(2) : 2 + random.below(6);
            dims[random.below(dims.size())] = random.below(90);
            check_order(random, dims, random.pick(classes),
                        random.chance(0.3) ? oxCOMPLEX : oxREAL);
        }
        for (int round = 0; round < 3; ++round)
            check_order(random, {40, 3, 130, 90}, oxDOUBLE_CLASS, oxREAL);
    });
}

// clang-format off
const char *const rows_of_classes[][3] = {
    {"double 1x1x2: 1 | 2", "3 2 1", "double 2x1: 1; 2"}, // ones at the end go
    {"cell 1x2: {1} {}", "2 1", "cell 2x1: {1} {}"},
    {"struct 1x2 a,b: {1} {2} {} {4}", "2 1", "struct 2x1 a,b: {1} {2} {} {4}"},
    {"sparse double 2x2: (0,1)=3", "2 1 3", "sparse double 2x2: (1,0)=3"},
    {"1 2; 3 4", "sparse double 1x2: (0,0)=2 (0,1)=1", "1 3; 2 4"},
    {"1 2", "1.4 2.2", "1 2"}, // rounded: the identity
    {"int64 1x2: 1 2", "1 2", "int64 1x2: 1 2"}, // the identity comes before the class
    {"opaque 1x2: 1 2", "1 2 3", "opaque 1x2: 1 2"},
};
// clang-format on

TEST_F(Permute, EveryClass) {
    for (auto [in, order, out] : rows_of_classes) {
        oxArray *a = arr(in), *b = permute(a, arr(order));
        EXPECT_EQ(text(b), text(arr(out))) << in << " by " << order;
        EXPECT_EQ(text(a), text(arr(in)));
        EXPECT_FALSE(check_array(b));
    }
}

TEST_F(Permute, ElementsOfContainersAreSharedAndATrivialOrderSharesTheData) {
    oxArray *a = arr("cell 1x2: {1} {2}"), *b = permute(a, arr("2 1")),
            *c = permute(a, arr("1 2 3"));
    EXPECT_EQ(a->cell.slots[1], b->cell.slots[1]);
    EXPECT_EQ(oxGetReferenceCount(a->cell.slots[1]), 1u);
    EXPECT_TRUE(c != a && c->num.pdata == a->num.pdata && c->ndims == 2);
    const oxArray *prhs[] = {a, arr("2 1 3")};
    oxArray *plhs[1];
    kwSize *dims, *order, n;
    ASSERT_FALSE(oxIsPermutationTrivial(1, plhs, 2, prhs, &dims, &order, &n));
    EXPECT_EQ(Dims(order, order + n), Dims({2, 1, 3}));
    EXPECT_EQ(Dims(dims, dims + n), Dims({1, 2, 1}));
}

TEST_F(Permute, WrongArguments) {
    const auto fails = [](const char *in, const char *order, const char *id, const char *message) {
        SCOPED_TRACE(std::string(in) + " by " + order);
        EXPECT_RAISES((std::string("VELTRO:permute:") + id).c_str(), message, permute(in, order));
    };
    fails("1 2", "int8 1x2: 1 2", "badIndexType", "ORDER must contain double-precision indices");
    fails("1 2", "1", "tooFewIndices", "ORDER must have at least N elements for an N-D array");
    fails("double 1x2x2: 1 2 | 3 4", "1 2", "tooFewIndices", nullptr);
    for (const char *order :
         {"1 3", "0.4 1", "1 NaN", "-1 1e300", "1 1 9"}) // ranges before repeats
        fails("1 2", order, "badIndex", "ORDER contains an invalid permutation index");
    fails("1 2", "1 1", "repeatedIndex", "ORDER cannot contain repeated permutation indices");
    for (const char *in :
         {"int64 1x2: 1 2", "uint64 1x2: 1 2", "object Point 1x2 px: {1} {2}", "opaque 1x2: 1 2"})
        fails(in, "2 1", "unsupportedType", "Unsupported data type");
    fails("sparse double 2x2: (0,1)=3", "1 3 2", "unsupportedType", nullptr);
    const oxArray *prhs[] = {arr("1"), arr("1"), arr("1")};
    oxArray *plhs[2];
    EXPECT_RAISES_ENTRY(FMAXLHS, oxPermuteFcn(2, plhs, 3, prhs));
    EXPECT_RAISES_ENTRY(FMAXRHS, oxPermuteFcn(1, plhs, 3, prhs));
    EXPECT_RAISES_ENTRY(FMINRHS, oxPermuteFcn(0, plhs, 1, prhs));
}

TEST_F(Permute, FailingAllocations) {
    for (const char *in : {"1+1i 2; 3 4", "cell 1x2: {1} {2}", "struct 1x2 a: {1} {2}",
                           "sparse double 2x2: (0,1)=3", "char 1x2: 'ab'"})
        for (const char *order : {"2 1", "sparse double 1x2: (0,0)=1 (0,1)=2"})
            sweep_makes({{in, order}}, [](auto &arg) { return permute(arg[0], arg[1]); });
}

} // namespace
