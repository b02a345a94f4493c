// The vector conversion kernels against their scalar twins: boundary values and random data.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <index/operands/convert_rules.h>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "each_target.h"

namespace {

using namespace ox;

// Around every bound that a rule names: x, its neighbours, the halves beside it, and both signs.
std::vector<double> boundaries() {
    std::vector<double> v = {NAN, INFINITY, 5e-324, 1e-310, 0.49999999999999994,
                             0.3, 8388609,  3.4e38, 1e300};
    for (int e = 0; e <= 65; ++e) {
        const double x = std::ldexp(1, e);
        for (double y : {x, x + 0.5, x - 0.5, x + 0.3, x - 0.3, x + 1, x - 1, x - 1.5,
                         std::nextafter(x, INFINITY), std::nextafter(x, 0)})
            v.push_back(y);
    }
    const std::size_t n = v.size();
    for (std::size_t i = 0; i < n; ++i) v.push_back(-v[i]);
    return v;
}

// Values of a type: its share of the boundaries, or any bits; in every second run only one of them.
template<class S> std::vector<S> values_of(std::mt19937_64 &rng, std::size_t n) {
    static const std::vector<double> special = boundaries();
    std::vector<S> v(n, S{1});
    const std::size_t odd = rng() % (2 * n + 1);
    for (S &x : v) {
        const uint64_t bits = rng();
        if (odd < n && &x != &v[odd]) continue;
        if constexpr (std::is_floating_point_v<S>) {
            const double ordinary =
                std::ldexp(static_cast<double>(static_cast<int64_t>(bits)), -40);
            x = static_cast<S>(bits % 3 ? special[bits / 3 % special.size()] : ordinary);
        } else {
            using Limits = std::numeric_limits<S>;
            const S inward = static_cast<S>(bits >> 4 & 3);
            const auto edge = bits & 4 ? Limits::max() - inward : Limits::min() + inward;
            x = static_cast<S>(bits % 3 ? static_cast<S>(bits >> 8) : edge);
        }
    }
    return v;
}

void expect_same(int to, int from, const void *src, std::size_t n) {
    const ConvertKernel scalar = scalar_kernel(to, from), vector = vector_kernel(to, from);
    ASSERT_EQ(scalar == nullptr, vector == nullptr);
    for (uint32_t wanted : {uint32_t{7}, kind_rounded, uint32_t{0}}) {
        if (!scalar) return;
        std::vector<unsigned char> a(n * class_info(to).element_size + 8, 0xA5), b = a;
        const uint32_t differ = scalar(a.data(), src, n, wanted) ^ vector(b.data(), src, n, wanted);
        ASSERT_EQ(differ & (wanted | kind_nan_logical), 0u) << from << " to " << to << ", " << n;
        ASSERT_TRUE(a == b) << from << " to " << to;
    }
}

TEST(ConvertRandom, VectorKernelsAgreeWithTheirScalarTwins) {
    constexpr std::size_t sizes[] = {0, 1, 7, 16, 16, 16, 33, 37, 37, 64, 257, 2000};
    std::mt19937_64 rng(7);
    for_each_target([&] {
        for (int from = 1; from < class_count; ++from)
            visit_class<bool>(from, false, [&]<class T>(std::type_identity<T>) {
                for (int round = 0; round < 160; ++round) {
                    const std::size_t n = sizes[rng() % std::size(sizes)];
                    auto v = values_of<Stored<T>>(rng, n);
                    if (from == oxLOGICAL_CLASS)
                        for (auto &x : v) x = static_cast<Stored<T>>(rng() & 1);
                    for (int to = 1; to < class_count; ++to) expect_same(to, from, v.data(), n);
                }
                return true;
            });
    });
}

} // namespace
