// The size checks in all their forms.
#include <support/suite.h>

#include <climits>
#include <cmath>

namespace {

using SizeCheck = HostTest;

constexpr kwSize two24 = kwSize{1} << 24, two47 = kwSize{1} << 47, most = (kwSize{1} << 48) - 1;
constexpr double nan_ = NAN;

template<class Size> struct Row {
    std::vector<Size> dims;
    kwSize size;
    bool fits;
    Size count;
};
const Row<kwSize> wide_rows[] = {
    {{}, 8, true, 1},
    {{two24, two24}, 1, false, most},
    {{two24, two24 - 1}, 1, true, two24 *(two24 - 1)},
    {{most}, 1, true, most},
    {{two47 / 4}, 8, false, most},
    {{two47 / 4 - 1}, 8, true, two47 / 4 - 1},
    {{~kwSize{0}, ~kwSize{0}, 0}, 8, true, 0}, // a later 0 forgives
    {{kwSize{1} << 32, kwSize{1} << 32, kwSize{1} << 32, kwSize{1} << 32}, 1, false, most},
};

// A check that gives its count, or raises when the row does not fit.
template<class Check> void expect_count(bool fits, auto count, Check &&check) {
    if (fits)
        EXPECT_EQ(check(), count);
    else
        EXPECT_RAISES_ENTRY(FPMAXSIZE, check());
}

// Every form of check for one row of dimensions.
template<class Size> void check_row(const Row<Size> &r) {
    SCOPED_TRACE(testing::PrintToString(r.dims));
    Size count = 77;
    const Size *dims = r.dims.data(), ndim = static_cast<Size>(r.dims.size());
    EXPECT_EQ(oxCheckDim_nothrow(dims, ndim, r.size, &count), r.fits);
    EXPECT_EQ(count, r.count);
    expect_count(r.fits, r.count, [&] { return oxCheckDim(dims, ndim, r.size); });
    if (ndim != 2) return;
    EXPECT_EQ(oxCheckMN_nothrow(dims[0], dims[1], r.size, &count), r.fits);
    expect_count(r.fits, r.count, [&] { return oxCheckMN(dims[0], dims[1], r.size); });
}

const Row<int> narrow_rows[] = {{{}, 8, true, 1},
                                {{1 << 15, 1 << 16}, 1, false, INT_MAX}, // 2^31
                                {{INT_MAX}, kwSize{1} << 17, true, INT_MAX},
                                {{INT_MAX}, (kwSize{1} << 17) + 1, false, INT_MAX},
                                {{-1, 5}, 8, false, INT_MAX},
                                {{-1, 0}, 8, true, 0}};

TEST_F(SizeCheck, Integers) {
    for (const auto &r : wide_rows) check_row(r);
    for (const auto &r : narrow_rows) {
        const int ndim = static_cast<int>(r.dims.size());
        check_row(r);
        expect_count(r.fits, r.count, [&] { return oxCheckDim_700(r.dims.data(), ndim, r.size); });
    }
}

constexpr int64_t raises_ = -1;

// m, n, the element size, and the counts of the two levels, or raises_.
const std::tuple<double, double, kwSize, int64_t, int64_t> double_rows[] = {
    {3.9, 5.0, 8, 15, 15},
    {-1.0, 5.0, 8, 0, raises_}, // negative is none of them, and huge as an int
    {-1.0, 0.0, 8, 0, 0},
    {-0.5, 5.0, 8, 0, 0},
    {nan_, 1.0, 8, raises_, int64_t{INT_MAX}},
    {nan_, 1.0, 1, int64_t{most}, int64_t{INT_MAX}},
    {2147483648.0, 1.0, 1, 2147483648, int64_t{INT_MAX}},
    {65536.0, 32768.0, 1, 2147483648, raises_}};

TEST_F(SizeCheck, Doubles) {
    for (const auto &[m, n, size, wide, narrow] : double_rows) {
        SCOPED_TRACE(testing::Message() << m << " by " << n << " of " << size);
        const bool fits = wide != raises_;
        kwSize count;
        EXPECT_EQ(oxCheckMN_nothrow(m, n, size, &count), fits);
        EXPECT_EQ(count, fits ? static_cast<kwSize>(wide) : most);
        expect_count(fits, count, [&] { return oxCheckMN(m, n, size); });
        expect_count(narrow != raises_, narrow, [&] { return oxCheckMN_700(m, n, size); });
    }
}

} // namespace
