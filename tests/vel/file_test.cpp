// VEL files as a user meets them: saved, listed, shown, checked, compared, damaged.
#include "run.h"

namespace vel::test {
namespace {

class File : public RunTest {};

const char *const save = "vel save f.vel t=\"'abc'\" 'k=uint8([1 2;3 4])' w=ring.mtx ";

struct Case {
    const char *line;
    int status;
    const char *out;
};

TEST_F(File, EveryFormComesBack) {
    for (const char *form : {"", "--compress", "--wide", "--swapped", "--wide --swapped",
                             "--compress --wide --swapped"}) {
        const Outcome o =
            run(std::string("vel save f.vel ") + form +
                " i=$DATA/iris.csv w=$DATA/west0067.mtx \"t='\xC3\xA9'\" && vel check f.vel && "
                "vel diff f.vel:i $DATA/iris.csv && vel diff f.vel:w $DATA/west0067.mtx && "
                "vel call $MODULES/word_count.vex f.vel:t -o s.vel " +
                form + " && vel show s.vel 'output1.word'");
        EXPECT_EQ(o.out, "f.vel: good, 3 variables\noutput1.word: '\xC3\xA9'\n") << form;
        EXPECT_EQ(o.status, 0) << form;
    }
}

TEST_F(File, SaysWhatIsInside) {
    write("ring.mtx", "%%MatrixMarket matrix coordinate pattern general\n3 3 2\n2 1\n3 2\n");
    ASSERT_EQ(run(save).status, 0);
    EXPECT_EQ(bytes_of("f.vel").substr(0, 11), "VEL data 1,");
    ASSERT_EQ(run("vel call $MODULES/group_by.vex '[1 7;2 8;3 7]' 2 -o g.vel").status, 0);
    const Case cases[] = {
        {"vel ls f.vel", 0,
         "name  size  class           nnz  stored  ratio  offset\n"
         "t     1x3   char              -      56      -      64\n"
         "k     2x2   uint8             -      56      -     120\n"
         "w     3x3   sparse logical    2      96      -     176\n"},
        {"vel ls -r g.vel", 0,
         "name        size  class   nnz  stored  ratio  offset\n"
         "output1     2x1   cell      -     216      -      64\n"
         "output1{1}  2x2   double    -      88      -     120\n"
         "output1{2}  1x2   double    -      72      -     208\n"},
        {"vel ls f.vel --json | tr -d ' \\n' | head -c 80", 0,
         "{\"f.vel\":[{\"bytes\":56,\"class\":\"char\",\"complex\":false,\"compressed\":false,"
         "\"offset\""},
        {"vel show g.vel 'output1{2}' --json | tr -d ' \\n'", 0,
         "{\"output1{2}\":{\"class\":\"double\",\"size\":[1,2],\"values\":[[2.0,8.0]]}}"},
        {"vel show f.vel w --json | tr -d ' \\n'", 0,
         "{\"w\":{\"class\":\"logical\",\"entries\":[[2,1,true],[3,2,true]],\"size\":[3,3]}}"},
        {"vel show f.vel k --rows 2 --cols :1", 0, "k: uint8 1x1\n  3\n"},
        {"vel show f.vel k --head 1", 0, "k: uint8 1x2\n  1  2\n"},
        {"vel show '[1 nan;inf 0]' --stats", 0,
         "[1 nan;inf 0]: double 2x2\n  min 0, mean Inf, max Inf\n"
         "  4 elements: 3 nonzero, 1 zero, 1 NaN, 1 infinite\n"},
        {"vel show f.vel k --rows 1:3 2>&1", 1, "vel: the range 1:3 does not lie within 1:2\n"},
        {"vel show f.vel w --stats", 0,
         "w: sparse logical 3x3, 2 stored\n  min 0, mean 0.222222, max 1\n"
         "  9 elements: 2 nonzero, 7 zero, 0 NaN, 0 infinite\n"},
        {"vel diff f.vel:k '[1 2;3 4]'", 1, "value: uint8 2x2 against double 2x2\n"},
        {"vel diff '[1 2;3 4]' '[1 2;3 5]'", 1, "value(2,2): 4 against 5\n"},
        {"vel diff '[1 2]' '[1 2.5]' --tol 0.5", 0, ""},
        {"vel diff '[nan]' '[nan]'", 1, "value(1,1): NaN against NaN\n"},
        {"vel diff '[nan]' '[nan]' --nan-equal", 0, ""},
        {"vel diff f.vel g.vel", 1, "output1: only in g.vel\n"},
        {"vel show g.vel 'output1{3}' 2>&1", 1,
         "vel: path '{3}', at '{3}': element 3 of 2 is asked for\n"},
        {"vel show f.vel z 2>&1", 1,
         "vel: f.vel: there is no variable 'z'; the file holds t, k, w\n"},
        {"vel ls ring.mtx 2>&1", 1,
         "vel: ring.mtx: offset 0: expected 'VEL data 1', found '%%MatrixMa': this is no VEL "
         "file\n"},
        {"vel check none.vel 2>&1", 3,
         "vel: none.vel: cannot be read: No such file or directory\n"},
        {"vel save no/where.vel x=1 2>&1", 3,
         "vel: no/where.vel: cannot be written: No such file or directory\n"},
        {"vel check --max-bytes 60 f.vel", 1,
         "f.vel: offset 176, w: expected at most 60 bytes, found 96\n"},
        {"vel check --max-depth 1 g.vel", 1,
         "g.vel: offset 120, output1{1}: nested deeper than 1\n"},
    };
    for (const Case &c : cases) {
        const Outcome o = run(c.line);
        EXPECT_EQ(o.status, c.status) << c.line;
        EXPECT_EQ(o.out, c.out) << c.line;
    }
}

// Whatever is damaged: a sentence and status 1, or a value that is well formed; never a crash.
TEST_F(File, DamageIsNamed) {
    for (const char *form : {"", "--compress"}) {
        ASSERT_EQ(
            run(std::string("vel call $MODULES/word_count.vex \"'a b'\" -o f.vel ") + form).status,
            0);
        const std::string whole = bytes_of("f.vel");
        for (size_t k = 1; k < whole.size(); k += 11) {
            std::string flipped = whole;
            flipped[k] = static_cast<char>(flipped[k] ^ 0x55);
            write("flip.vel", flipped);
            write("cut.vel", whole.substr(0, k));
            const Outcome o = run("vel check --json flip.vel > /dev/null; echo $?; "
                                  "vel check cut.vel > out; echo $?; wc -l < out");
            EXPECT_TRUE(o.out == "0\n1\n1\n" || o.out == "1\n1\n1\n")
                << form << " at " << k << ": " << o.out;
        }
    }
}

TEST_F(File, NothingIsLeftBehind) {
    EXPECT_EQ(run("vel save f.vel a=1 b=none.csv 2>/dev/null").status, 3);
    EXPECT_EQ(files(), 0u);
    // Stopped while it waits for a pipe to be filled. (A shell lets its background processes ignore
    // the interrupt of Ctrl-C; both signals take the same way.)
    EXPECT_EQ(run("mkfifo p.csv; '" VEL_TOOL "' save f.vel a=1 b=p.csv & "
                  "for k in $(seq 1000); do ls f.vel.* >/dev/null 2>&1 && break; sleep 0.01; done; "
                  "kill -TERM $!; wait $! 2>/dev/null; ls")
                  .out,
              "p.csv\n");
}

} // namespace
} // namespace vel::test
