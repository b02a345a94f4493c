// vel convert: exchange with other programs, and the sentences for files that are not what they
// say.
#include "run.h"

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
        {"vel convert t.vel x.doc", 2,
         "vel: x.doc: the end of the name says no format that can be written\n"},
        {"vel convert t.vel x.json && tr -d ' \\n' < x.json", 0,
         "{\"a\":{\"class\":\"double\",\"size\":[1,1],\"values\":[[1.0]]},"
         "\"t\":{\"class\":\"char\",\"size\":[1,3],\"text\":\"abc\"}}"},
    };
    for (const auto &c : cases) {
        const Outcome o = run(std::string(c.line) + " 2>&1");
        EXPECT_EQ(o.status, c.status) << c.line;
        EXPECT_EQ(o.out, c.out) << c.line;
    }
}

} // namespace
} // namespace vel::test
