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

TEST_F(Convert, EveryFormatComesBack) {
    EXPECT_EQ(
        run("there_and_back() { vel convert $1 x.$2 && vel diff $1 x.$2 || echo $2; }; "
            "for f in vel ser csv tsv mtx npy npz; do there_and_back $DATA/iris.csv $f; done; "
            "for f in vel ser mtx npz; do there_and_back $DATA/west0067.mtx $f; done 2>&1")
            .out,
        "");
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

TEST_F(Convert, ReadsTables) {
    const struct {
        const char *text, *out;
    } cases[] = {
        {"a,b\n1,2\n", "double 1x2\n  1  2\n"},
        {"\xEF\xBB\xBF+1, 2 \r\n\r\n\"3\",\r\n", "double 2x2\n  1    2\n  3  NaN\n"},
        {"\"a\nb\",\"c\"\"\"\n\n1e400,-nan", "double 1x2\n  Inf  NaN\n"},
        {"1\n2\n\n3\n4\n5\n6\n7\n8\n9",
         "double 9x1\n  1\n  2\n  3\n  4\n  5\n  6\n  7\n  8\n  9\n"},
        {"1,2\n3\n", "vel: f.csv:2:2: the row has 1 cells, the first row has 2\n"},
        {"1,2\n3,4,5\n", "vel: f.csv:2:5: the row has 3 cells, the first row has 2\n"},
        {"1,2\n3,x\n", "vel: f.csv:2:3: \"x\" is not a number\n"},
        {"1\n\"2\n3", "vel: f.csv:2:1: the quotation is never closed\n"},
        {"1\n\"2\"3", "vel: f.csv:2:4: text follows the closing quotation mark\n"},
        {"a,b\n", "vel: f.csv:1:1: the file holds no rows of numbers\n"},
        {"", "vel: f.csv:1:1: the file holds no rows of numbers\n"},
    };
    for (const auto &c : cases) {
        write("f.csv", c.text);
        const Outcome o = run("cat f.csv | for f in f.csv /dev/stdin; do vel show $f 2>&1 | "
                              "sed \"s,$f,f.csv,; s/^f.csv: //\"; done");
        EXPECT_EQ(o.out, std::string(c.out) + c.out) << c.text;
    }
    // Rows that get much shorter than the first ones, read in place and one by one.
    EXPECT_EQ(run("{ for i in $(seq 9000); do echo 0.12345678901234567,-$i.5; done; "
                  "seq 99999 | sed 's/.*/&,0.&/'; } > f.csv; sed 's/[^,]*/\"&\"/g' f.csv > q.csv; "
                  "vel diff f.csv q.csv; vel show f.csv | head -n 1")
                  .out,
              "f.csv: double 108999x2\n");
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

TEST_F(Convert, SaysWhatIsWrong) { expect_transcript("convert.txt"); }

} // namespace
} // namespace vel::test
