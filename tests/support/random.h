// Seeded random values: a failure repeats with the seed that the test names.
#pragma once
#include <cstdint>
#include <cstdlib>
#include <random>

namespace ox::test {

class Random {
public:
    // OX_TEST_SEED replaces the seed, to repeat or to widen a run.
    explicit Random(uint64_t seed) : seed_(seed) {
        if (const char *s = std::getenv("OX_TEST_SEED")) seed_ = std::strtoull(s, nullptr, 10);
        engine_.seed(seed_);
    }
    uint64_t seed() const { return seed_; }
    uint64_t bits() { return engine_(); }
    // 0 to n - 1.
    uint64_t below(uint64_t n) { return engine_() % n; }
    // lo to hi, both included.
    int64_t between(int64_t lo, int64_t hi) {
        return lo + static_cast<int64_t>(below(static_cast<uint64_t>(hi - lo) + 1));
    }
    bool chance(double p) { return unit() < p; }
    // [0, 1), and any interval.
    double unit() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    double real(double lo, double hi) { return lo + (hi - lo) * unit(); }
    template<class Container> auto &pick(Container &c) { return c[below(std::size(c))]; }

private:
    uint64_t seed_;
    std::mt19937_64 engine_;
};

} // namespace ox::test
