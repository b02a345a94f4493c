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
    for (const char *format : {"vel", "ser", "csv", "tsv", "mtx", "npy", "npz"}) {
        const std::string f = std::string("x.") + format;
        EXPECT_EQ(run("vel convert $DATA/iris.csv " + f + " && vel diff $DATA/iris.csv " + f).out,
                  "")
            << f;
    }
    for (const char *format : {"vel", "ser", "mtx", "npz"}) {
        const std::string f = std::string("s.") + format;
        EXPECT_EQ(
            run("vel convert $DATA/west0067.mtx " + f + " && vel diff $DATA/west0067.mtx " + f).out,
            "")
            << f;
    }
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
        EXPECT_EQ(run("vel show f.csv 2>&1 | sed 's/^f.csv: //'").out, c.out) << c.text;
        EXPECT_EQ(
            run("cat f.csv | vel show /dev/stdin 2>&1 | sed 's,/dev/stdin,f.csv,; s/^f.csv: //'")
                .out,
            c.out);
    }
}

// Whatever is damaged: a sentence and status 1, or a value that is well formed; never a crash.
TEST_F(Convert, DamageIsNamed) {
    ASSERT_EQ(run("vel convert $DATA/west0067.mtx s.npz --compress && vel save x.vel "
                  "'a=uint8([1 2;3 4])' && vel convert x.vel x.npy && vel convert x.vel x.npz && "
                  "vel convert x.vel x.ser && vel convert x.vel x.csv && vel convert x.vel x.mtx")
                  .status,
              0);
    for (const char *name : {"s.npz", "x.npy", "x.npz", "x.ser", "x.csv", "x.mtx"}) {
        const std::string whole = bytes_of(name), end = std::string(name).substr(1);
        const size_t step = whole.size() / 12 + 1;
        for (size_t k = 0; k < whole.size(); k += step) {
            std::string flipped = whole;
            flipped[k] = static_cast<char>(flipped[k] ^ 0x55);
            write("flip" + end, flipped);
            write("cut" + end, whole.substr(0, k));
            const Outcome o = run("for f in flip cut; do rm -f y.vel; vel convert $f" + end +
                                  " y.vel 2>e; s=$?; [ $s = 0 ] && vel check y.vel >e; "
                                  "echo $s $(wc -l <e); done");
            EXPECT_TRUE(o.out == "0 1\n0 1\n" || o.out == "0 1\n1 1\n" || o.out == "1 1\n0 1\n" ||
                        o.out == "1 1\n1 1\n")
                << name << " at " << k << ": " << o.out;
        }
    }
}

std::string npy(const std::string &literal, const std::string &data = "") {
    return std::string("\x93NUMPY\x01\x00", 8) + static_cast<char>(literal.size()) + '\0' +
           literal + data;
}

TEST_F(Convert, SaysWhatIsWrong) {
    const std::string good = "{'descr': '|u1', 'fortran_order': False, 'shape': (2,), }";
    write("short.npy", npy(good, "a"));
    write("type.npy", npy("{'descr': '<M8[s]', 'fortran_order': False, 'shape': ()}"));
    write("code.npy", npy("{'descr': __import__('os'), 'fortran_order': False, 'shape': ()}"));
    write("huge.npy",
          npy("{'descr': '<f8', 'fortran_order': True, 'shape': (4294967296, 4294967296)}"));
    write("no.npy", "PK");
    write("no.npz", "PK");
    ASSERT_EQ(run("vel save t.vel \"t='abc'\" a=1").status, 0);
    const bool scipy =
        run("/usr/bin/python3 -c 'import scipy.sparse as s; s.save_npz(\"wide.npz\", "
            "s.csr_matrix((1, 10**9)))' 2>/dev/null")
            .status == 0;
    const struct {
        const char *line;
        int status;
        const char *out;
    } cases[] = {
        {"vel show short.npy", 1,
         "vel: short.npy: offset 67: the shape takes 2 bytes, the file has 1\n"},
        {"vel show type.npy", 1, "vel: type.npy: elements of type '<M8[s]' are not supported\n"},
        {"vel show code.npy", 1, "vel: code.npy: offset 20: expected a word in quotes\n"},
        {"vel show huge.npy", 1,
         "vel: huge.npy: offset 84: the shape takes more than 2^64 bytes, the file has 0\n"},
        {"vel show no.npy", 1, "vel: no.npy: offset 0: this is no NPY file\n"},
        {"vel show no.npz", 1, "vel: no.npz: cannot be read: Not a zip archive\n"},
        {"vel convert t.vel x.csv", 1,
         "vel: x.csv: such a file holds one array, not 2; name the one to convert\n"},
        {"vel convert t.vel:t x.csv", 1,
         "vel: x.csv: such a file holds a matrix of real numbers only\n"},
        {"vel convert t.vel:t x.npy", 1,
         "vel: x.npy: an NPY file holds no array like this: char\n"},
        {"vel convert wide.npz x.vel", 1,
         "vel: wide.npz: 1000000000 columns take 8000000008 bytes for their starts alone; --force "
         "reads the file nevertheless\n"},
        {"vel convert t.vel:t x.vel --name 1x", 2,
         "vel: '1x' is no name for a variable: at most 63 letters, digits and underscores, a "
         "letter "
         "first\n"},
        {"vel convert . x.vel", 2, "vel: .: the end of the name says no format that can be read\n"},
        {"vel convert t.vel x.doc", 2,
         "vel: x.doc: the end of the name says no format that can be written\n"},
        {"vel convert t.vel x.json && tr -d ' \\n' < x.json", 0,
         "{\"a\":{\"class\":\"double\",\"size\":[1,1],\"values\":[[1.0]]},"
         "\"t\":{\"class\":\"char\",\"size\":[1,3],\"text\":\"abc\"}}"},
    };
    for (const auto &c : cases) {
        if (!scipy && std::string(c.line).find("wide.npz") != std::string::npos) continue;
        const Outcome o = run(std::string(c.line) + " 2>&1");
        EXPECT_EQ(o.status, c.status) << c.line;
        EXPECT_EQ(o.out, c.out) << c.line;
    }
}

} // namespace
} // namespace vel::test
