// Files larger than the memory that the tool may take: OX_TEST_MIB (32) of them.
#include "run.h"
#include "vel_header.h"

#include <ox.h>

#include <cstring>
#include <sys/resource.h>

namespace vel::test {
namespace {

constexpr size_t variables = 8;
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t allowance_mib = 512; // the sanitizer's own memory
#else
constexpr size_t allowance_mib = 64;
#endif

class Large : public RunTest {
protected:
    void SetUp() override {
        RunTest::SetUp();
        const char *mib = std::getenv("OX_TEST_MIB");
        mib_ = mib ? std::strtoull(mib, nullptr, 10) : 32;
    }

    // Doubles, all of them zero and none of them on the disk.
    void make_file() const {
        std::string bytes = make_header({});
        const size_t data = (mib_ << 20) / variables, columns = 64;
        const auto add = [&](auto... words) {
            for (const auto w : {static_cast<uint32_t>(words)...})
                bytes.append(reinterpret_cast<const char *>(&w), sizeof w);
        };
        FILE *f = fopen((folder_ / "big.vel").c_str(), "wb");
        for (size_t k = 0; k < variables; ++k) {
            add(oiMATRIX, 48 + data, oiUINT32, 8, oxDOUBLE_CLASS, 0, oiINT32, 8, data / 8 / columns,
                columns, oiINT8 | 1 << 16, 'a' + k, oiDOUBLE, data);
            ASSERT_EQ(fwrite(bytes.data(), 1, bytes.size(), f), bytes.size());
            bytes.clear();
            oiFseek64(f, static_cast<int64_t>(data), SEEK_CUR);
        }
        const auto end = oiFtell64(f);
        fclose(f);
        std::filesystem::resize_file(folder_ / "big.vel", static_cast<uint64_t>(end));
    }

    // The most memory that any run of the tool so far has taken, beyond a number of variables.
    size_t beyond(size_t held) const {
        rusage use{};
        getrusage(RUSAGE_CHILDREN, &use);
        const size_t most = static_cast<size_t>(use.ru_maxrss) / 1024,
                     data = mib_ / variables * held;
        return most > data ? most - data : 0;
    }

    size_t mib_ = 0;
};

TEST_F(Large, OneVariableIsInMemoryAtATime) {
    make_file();
    EXPECT_EQ(run("vel ls big.vel | wc -l").out, "9\n");
    EXPECT_LE(beyond(0), allowance_mib);
    for (const char *line :
         {"vel check big.vel | grep good", "vel convert --compress big.vel big.npz",
          "vel convert --compress big.npz x.vel && rm big.npz", "vel convert big.vel:b b.npy",
          "vel convert b.npy b.csv", "vel convert b.csv b.mtx && vel convert b.mtx y.vel"}) {
        EXPECT_EQ(run(line).status, 0) << line;
        EXPECT_LE(beyond(1), allowance_mib) << line;
    }
    EXPECT_EQ(run("vel diff big.vel:c x.vel:c && vel diff b.npy y.vel").status, 0);
    EXPECT_LE(beyond(2), allowance_mib);
    if (mib_ < 1024 || run("script -qec true /dev/null").status != 0) return;
    // A run that takes so long shows on a terminal how far it is.
    const std::string convert = "script -qec \"'" VEL_TOOL "' convert --compress big.vel big.npz";
    const std::string shown = run(convert + "; echo done\" /dev/null").out;
    for (const char *part : {" % of 2.0 GiB, ", " s left", "\r\x1b[Kdone"})
        EXPECT_NE(shown.find(part), shown.npos) << shown;
}

} // namespace
} // namespace vel::test
