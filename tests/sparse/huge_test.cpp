// Arrays of far more elements than any memory holds: nothing as long as m times n is ever formed.
#include <core/check_header.h>
#include <support/calls.h>

#include <algorithm>
#include <fstream>
#include <numeric>

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

// From here on the process gets no more than so many further bytes of address space, until the
// answer goes. The sanitizers' own needs are not to be told from the library's: not under them.
std::shared_ptr<void> memory_limit([[maybe_unused]] kwSize bytes) {
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
    kwSize pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit old;
    getrlimit(RLIMIT_AS, &old);
    rlimit limit = old;
    limit.rlim_cur = pages * static_cast<kwSize>(sysconf(_SC_PAGESIZE)) + bytes;
    EXPECT_TRUE(pages > 0 && setrlimit(RLIMIT_AS, &limit) == 0);
    return {nullptr, [old](void *) { setrlimit(RLIMIT_AS, &old); }};
#else
    return nullptr;
#endif
}

constexpr kwSize m = 1000000000000, n = 1000000, nnz = 1000; // m * n is beyond 2^48

// Elements 1, 2, ... at random places, at most one in a column.
oxArray *scattered(kwSize tall, kwSize wide) {
    Random random{31};
    oxArray *a = oxCreateSparse(tall, wide, nnz, oxREAL);
    for (kwSize k = 0; k < nnz; ++k) {
        oxGetIr(a)[k] = random.below(tall);
        oxGetPr(a)[k] = static_cast<double>(k + 1);
        ++oxGetJc(a)[k * (wide / nnz) + random.below(wide / nnz) + 1];
    }
    std::partial_sum(oxGetJc(a), oxGetJc(a) + wide + 1, oxGetJc(a));
    return a;
}
double element(const oxArray *a, kwIndex i, kwIndex j) {
    const oxArray *b = oxSparseReference(a, &i, 1, &j, 1);
    return oxGetNumNonZeroEl(b) ? oxGetPr(b)[0] : 0;
}

TEST_F(HostTest, HugeSparseArraysWorkInMemoryForTheirColumnsAndElements) {
    // Beside the column starts of two arrays and the elements of a full row.
    const auto limit = memory_limit(2 * n * 8 + n * 16 + (kwSize{64} << 20));
    oxArray *a = scattered(m, n);

    // References: the columns of some elements, their rows in two orders, their crossings.
    std::vector<kwIndex> i(10), j(10);
    for (kwSize k = 0; k < 10; ++k) {
        i[k] = oxGetIr(a)[k * 97];
        const kwIndex *jc = oxGetJc(a);
        j[k] = static_cast<kwIndex>(std::upper_bound(jc, jc + n + 1, k * 97) - jc) - 1;
    }
    oxArray *columns = oxSparseReference(a, nullptr, 0, j.data(), 10);
    oxArray *crossings = oxSparseReference(a, i.data(), 10, j.data(), 10);
    std::reverse(i.begin(), i.end());
    oxArray *all_columns = oxSparseReference(a, i.data(), 10, nullptr, 0);
    EXPECT_TRUE(rows(columns) == m && cols(all_columns) == n);
    for (kwIndex k = 0; k < 10; ++k) {
        EXPECT_EQ(element(crossings, k, k), static_cast<double>(k * 97 + 1));
        EXPECT_EQ(element(all_columns, 9 - k, j[k]), static_cast<double>(k * 97 + 1));
    }
    EXPECT_RAISES_ENTRY(FPMAXSIZE, oxSparseColonReference(a));
    for (oxArray *x : {columns, crossings, all_columns}) oxDestroyArray(x);

    // The same array half as tall and twice as wide, and back.
    oxArray *reshaped = oxCreateSparse(0, 0, 1, oxREAL), *back = oxCreateSparse(0, 0, 1, oxREAL);
    const kwSize half[] = {m / 2, 2 * n}, whole[] = {m, n};
    oxSetDimensions(reshaped, half, 2);
    oxSetArrayScope(a, 0); // no temporary, which would be taken apart
    ox_inResizeSparseArray(reshaped, a);
    EXPECT_EQ(check_header(reshaped, CheckDepth::storage), 0);
    EXPECT_FALSE(oxAreMatricesEqual(a, reshaped));
    oxSetDimensions(back, whole, 2);
    ox_inResizeSparseArray(back, reshaped);
    EXPECT_TRUE(oxAreMatricesEqual(a, back));

    // Assignment of an element, a block, a row and columns; deletion of rows and columns.
    const auto set = [&](auto assign, const char *text, auto... subs) {
        return assign(back, arr(text), arr(subs)...);
    };
    const char *far = "double 1x2: 3 999999999999", *wide = "double 1x2: 2 1000000";
    EXPECT_EQ(set(spAss3, "double 2x2: 1 0; 0 2", far, wide), spOK);
    EXPECT_EQ(set(spAss5, "7", "5"), spOK);
    EXPECT_EQ(set(spAss4, "0", wide), spOK);
    EXPECT_EQ(set(spAss6, "9", "281474976710655"), spOK);
    EXPECT_EQ(element(back, 4, 0) + element(back, 4, 1) + element(back, 4, n - 2), 14);
    EXPECT_EQ(element(back, 281474976710654 % m, 281474976710654 / m), 9);
    EXPECT_EQ(spAss5(back, nullptr, arr("5")), spOK);
    EXPECT_EQ(spAss4(back, nullptr, arr(wide)), spOK);
    EXPECT_EQ(spAss6(back, nullptr, arr("1")), spTooLarge);
    EXPECT_EQ(check_header(back, CheckDepth::storage), 0);
    EXPECT_TRUE(rows(back) == m - 1 && cols(back) == n - 2);
    EXPECT_RAISES_ENTRY(FNOMEM, oxMustBeFull(back));
    oxSetArrayScope(a, 4);
}

TEST_F(HostTest, WideSparseArraysAreTransposedAndJoined) {
    const kwSize tall = 1000000, wide = 10 * tall;
    const auto limit = memory_limit(3 * wide * 8 + (kwSize{64} << 20)); // array, widest result
    oxArray *a = scattered(tall, wide), *t = oxTranspose(a), *tt = oxTranspose(t);
    EXPECT_EQ(check_header(t, CheckDepth::storage), 0);
    EXPECT_TRUE(rows(t) == wide && oxAreMatricesEqual(a, tt));
    oxDestroyArray(t);
    oxDestroyArray(tt);

    for (const int form : {oxCAT_VERTICAL, oxCAT_HORIZONTAL}) {
        oxArray *c = cat(form, {a, a});
        EXPECT_EQ(check_header(c, CheckDepth::storage), 0);
        EXPECT_EQ(cols(c), form == oxCAT_VERTICAL ? wide : 2 * wide);
        EXPECT_EQ(oxGetNumNonZeroEl(c), 2 * nnz);
        oxDestroyArray(c);
    }
}

} // namespace
