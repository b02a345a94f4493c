// The vector conversion kernels against their scalar twins: boundary values and random data.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <index/operands/convert_rules.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "each_target.h"

namespace {

using namespace ox;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

// Around every bound that a rule names: x, its neighbours, the halves beside it, and both signs.
std::vector<double> boundaries() {
    std::vector<double> v = {nan_value, inf, 5e-324, 1e-310, 0.49999999999999994, 1e300, 3.4e38};
    for (double x :
         {0.0,    1.0,   2.0,   8388609.0, 0x1p23,  0x1p24,     0x1p51,    0x1p52, 0x1p53,
          0x1p65, 0x1p7, 0x1p8, 0x1p15,    0x1p16,  0x1p31,     0x1p32,    0x1p62, 0x1p63,
          0x1p64, 127.0, 255.0, 32767.0,   65535.0, 0x1p31 - 1, 0x1p32 - 1})
        for (double y : {x, x + 0.5, x - 0.5, x + 0.3, x - 0.3, x + 1, x - 1,
                         std::nextafter(x, inf), std::nextafter(x, -inf)})
            v.push_back(y);
    const std::size_t n = v.size();
    for (std::size_t i = 0; i < n; ++i) v.push_back(-v[i]);
    return v;
}

// Values of a type: its share of the boundaries, or any bits.
template<class S> std::vector<S> values_of(std::mt19937_64 &rng, std::size_t n) {
    static const std::vector<double> special = boundaries();
    std::vector<S> v(n);
    for (S &x : v) {
        const uint64_t bits = rng();
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
        ASSERT_EQ(differ & (wanted | kind_nan_logical), 0u)
            << class_info(from).name << " to " << class_info(to).name << " n " << n;
        ASSERT_TRUE(a == b) << class_info(from).name << " to " << class_info(to).name;
    }
}

TEST(ConvertRandom, VectorKernelsAgreeWithTheirScalarTwins) {
    std::mt19937_64 rng(7);
    for_each_target([&] {
        for (int from = 1; from < class_count; ++from)
            visit_class<bool>(from, false, [&]<class T>(std::type_identity<T>) {
                for (std::size_t n : {0u, 1u, 7u, 16u, 33u, 64u, 257u, 2000u}) {
                    auto v = values_of<Stored<T>>(rng, n);
                    if (from == oxLOGICAL_CLASS)
                        for (auto &x : v) x = static_cast<Stored<T>>(rng() & 1);
                    for (int to = 1; to < class_count; ++to) expect_same(to, from, v.data(), n);
                }
                return true;
            });
    });
}

// One odd value in a run of plain ones, at every place of a step and of the tail behind it.
TEST(ConvertRandom, OneOddValueIsNoticedWhereverItStands) {
    for (double odd : {nan_value, 1e30, -1e30, 2.5, -0.3})
        for (std::size_t n : {16u, 37u})
            for (std::size_t at = 0; at < n; ++at) {
                std::vector<double> v(n, 3.0);
                v[at] = odd;
                for (int to = oxLOGICAL_CLASS; to <= oxUINT64_CLASS; ++to)
                    expect_same(to, oxDOUBLE_CLASS, v.data(), n);
            }
}

} // namespace
