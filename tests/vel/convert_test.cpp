// vel convert: exchange with other programs, and the sentences for files that are not what they
// say.
#include "run.h"

#include <ox.h>
#include <support/host.h>

namespace vel::test {
namespace {

class Convert : public RunTest {};

TEST_F(Convert, ExchangesWithNumPyAndSciPy) {
    const Outcome o = run("/usr/bin/env PATH=/usr/bin:$PATH python3 '" OX_SOURCE_DIR
                          "/tests/vel/exchange.py' '" VEL_TOOL "' . 2>&1");
    if (o.status == 77) GTEST_SKIP() << o.out;
    EXPECT_EQ(o.status, 0) << o.out;
}

// A serialised array is a VEL file without its line; the library takes it as it is.
TEST_F(Convert, SerialisedBytesAreTheLibrarys) {
    ASSERT_EQ(run("vel save x.vel a=$DATA/iris.csv && vel convert x.vel x.ser --wide").status, 0);
    ox::test::install_managers();
    const ox::test::Contexts contexts;
    const std::string bytes = bytes_of("x.ser");
    const char *tag = nullptr;
    const oxArray *a = oxDeserializeWithTag(bytes.data(), bytes.size(), &tag);
    ASSERT_NE(a, nullptr);
    EXPECT_STREQ(tag, "a");
    EXPECT_EQ(oxGetM(a), 150u);
}

// Whatever is damaged: a sentence and status 1, or a value that is well formed; never a crash.
TEST_F(Convert, DamageIsNamed) {
    ASSERT_EQ(
        run("vel convert $DATA/west0067.mtx s.npz --compress && vel save x.vel "
            "'a=uint8([1 2;3 4])' && for f in npy npz ser csv mtx; do vel convert x.vel x.$f; "
            "done; for f in f.vel 'p.vel --compress'; do vel call $MODULES/word_count.vex "
            "\"'a b'\" -o $f; done")
            .status,
        0);
    for (const std::string name :
         {"s.npz", "x.npy", "x.npz", "x.ser", "x.csv", "x.mtx", "f.vel", "p.vel"}) {
        const std::string whole = bytes_of(name), end = name.substr(1);
        const bool is_vel = end == ".vel";
        const std::string read = is_vel ? "vel check $f.vel >e; s=$?;"
                                        : "rm -f y.vel; vel convert $f" + end +
                                              " y.vel 2>e; s=$?; [ $s = 0 ] && vel check y.vel >e;";
        for (size_t k = 0; k < whole.size(); k += is_vel ? 11 : whole.size() / 12 + 1) {
            std::string flipped = whole;
            flipped[k] = static_cast<char>(flipped[k] ^ 0x55);
            write("flip" + end, flipped);
            write("cut" + end, whole.substr(0, k));
            const Outcome o = run("for f in flip cut; do " + read + " echo $s $(wc -l <e); done");
            const std::string cut = is_vel ? "1 1\n" : o.out.substr(o.out.size() / 2);
            EXPECT_TRUE((cut == "0 1\n" || cut == "1 1\n") &&
                        (o.out == "0 1\n" + cut || o.out == "1 1\n" + cut))
                << name << " at " << k << ": " << o.out;
        }
    }
}

TEST_F(Convert, ReadsAndWritesEveryFormatAndSaysWhatIsWrong) { expect_transcript("convert.txt"); }

} // namespace
} // namespace vel::test
