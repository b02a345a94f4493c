// Element conversion beside memcpy with the same traffic (half the bytes read and written).
#include <benchmark/benchmark.h>
#include <ox.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>

namespace {

struct Buffer {
    explicit Buffer(std::size_t bytes)
        : p(static_cast<char *>(::operator new (bytes + 64, std::align_val_t{64}))) {
        std::memset(p, 1, bytes + 64);
    }
    Buffer(const Buffer &) = delete;
    Buffer &operator=(const Buffer &) = delete;
    ~Buffer() { ::operator delete (p, std::align_val_t{64}); }
    char *p;
};

double uniform(uint64_t &state) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<double>(state >> 11) * 0x1p-53;
}

// Doubles between lo and hi; `mixed`: a tenth of them three times too large, a hundredth NaN.
void fill_doubles(double *p, std::size_t n, double lo, double hi, bool mixed) {
    uint64_t state = 88172645463325252u;
    for (std::size_t i = 0; i < n; ++i) {
        p[i] = lo + (hi - lo) * uniform(state);
        const std::size_t lot = (i * 2654435761u >> 7) & 127;
        if (mixed && lot < 14) p[i] = lot < 13 ? hi * 3 : std::nan("");
    }
}

void limit(benchmark::State &state, std::size_t bytes) {
    Buffer a(bytes), b(bytes);
    for (auto _ : state) {
        std::memcpy(b.p, a.p, bytes);
        benchmark::DoNotOptimize(b.p);
        benchmark::ClobberMemory();
    }
}

struct Case {
    const char *name;
    oxClassID from, to;
    std::size_t from_size, to_size;
    double lo, hi;
    bool mixed = false;
};

void fill(const Case &c, char *p, std::size_t n) {
    if (c.from == oxDOUBLE_CLASS)
        return fill_doubles(reinterpret_cast<double *>(p), n, c.lo, c.hi, c.mixed);
    for (std::size_t i = 0; i < n * c.from_size; ++i) p[i] = static_cast<char>(i * 40503u >> 3);
}

void convert(benchmark::State &state, const Case &c, std::size_t n) {
    Buffer src(n * c.from_size), dst(n * c.to_size);
    fill(c, src.p, n);
    const oxWarningHandler shown = oxSetWarningMessageHandler([](const char *) {});
    for (auto _ : state) {
        oxConvertBufferToType(dst.p, c.to, src.p, c.from, n);
        benchmark::DoNotOptimize(dst.p);
        benchmark::ClobberMemory();
    }
    oxSetWarningMessageHandler(shown);
}

// What a user writes: one branch for each condition.
void plain_int32(benchmark::State &state, const Case &c, std::size_t n) {
    Buffer src(n * 8), dst(n * 4);
    fill(c, src.p, n);
    auto *s = reinterpret_cast<const double *>(src.p);
    auto *d = reinterpret_cast<int32_t *>(dst.p);
    for (auto _ : state) {
        bool nan = false, over = false, rounded = false;
        for (std::size_t i = 0; i < n; ++i) {
            const double x = s[i];
            if (x != x)
                d[i] = 0, nan = true;
            else if (x < -0x1p31 || x > 0x1p31 - 1)
                d[i] = x < 0 ? INT32_MIN : INT32_MAX, over = true;
            else {
                d[i] = static_cast<int32_t>(x >= 0 ? x + 0.5 : x - 0.5);
                rounded |= d[i] != x;
            }
        }
        benchmark::DoNotOptimize(nan | over | rounded);
        benchmark::ClobberMemory();
    }
}

void whole_call(benchmark::State &state) {
    oxArray *a = oxCreateDoubleMatrix(100, 1, oxREAL);
    for (auto _ : state) {
        oxArray *b = oxCreateConvertedCopy(a, oxINT32_CLASS);
        benchmark::DoNotOptimize(b);
        oxDestroyArray(b);
    }
    oxDestroyArray(a);
}

constexpr Case cases[] = {
    {"f64_i32", oxDOUBLE_CLASS, oxINT32_CLASS, 8, 4, -2e9, 2e9},
    {"f64_i32_mixed", oxDOUBLE_CLASS, oxINT32_CLASS, 8, 4, -2e9, 2e9, true},
    {"f64_u8", oxDOUBLE_CLASS, oxUINT8_CLASS, 8, 1, 0, 255},
    {"f64_u8_mixed", oxDOUBLE_CLASS, oxUINT8_CLASS, 8, 1, 0, 255, true},
    {"f64_i64", oxDOUBLE_CLASS, oxINT64_CLASS, 8, 8, -1e6, 1e6},
    {"i16_i8", oxINT16_CLASS, oxINT8_CLASS, 2, 1, 0, 0},
    {"u8_f64", oxUINT8_CLASS, oxDOUBLE_CLASS, 1, 8, 0, 0},
    {"f64_f32", oxDOUBLE_CLASS, oxSINGLE_CLASS, 8, 4, -1e6, 1e6},
    {"i16_f64", oxINT16_CLASS, oxDOUBLE_CLASS, 2, 8, 0, 0},
    {"i32_f64", oxINT32_CLASS, oxDOUBLE_CLASS, 4, 8, 0, 0},
    {"f32_f64", oxSINGLE_CLASS, oxDOUBLE_CLASS, 4, 8, 0, 0},
    {"i64_f64", oxINT64_CLASS, oxDOUBLE_CLASS, 8, 8, 0, 0},
};

const int registered = [] {
    for (const Case &c : cases)
        for (std::size_t n : {std::size_t{32768}, std::size_t{8} << 20}) {
            const std::string base =
                std::string("convert_") + c.name + (n < 100000 ? "/32K/" : "/8M/");
            const std::size_t bytes = n * (c.from_size + c.to_size) / 2;
            benchmark::RegisterBenchmark((base + "limit_memcpy").c_str(), limit, bytes);
            benchmark::RegisterBenchmark((base + "ox").c_str(), convert, c, n);
            if (c.to == oxINT32_CLASS)
                benchmark::RegisterBenchmark((base + "plain_loop").c_str(), plain_int32, c, n);
        }
    benchmark::RegisterBenchmark("convert_whole/100/limit_memcpy", limit, std::size_t{600});
    benchmark::RegisterBenchmark("convert_whole/100/ox", whole_call);
    return 0;
}();

} // namespace
