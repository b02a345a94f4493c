// vel call on the example modules: arguments in, printed outputs out.
#include "run.h"

namespace vel::test {
namespace {

class Call : public RunTest {};

struct Case {
    const char *line;
    int status;
    const char *out;
};

TEST_F(Call, PrintsOutputs) {
    write("t.npy", std::string("\x93NUMPY\x01\x00\x38\x00", 10) +
                       "{'descr':'<f8','fortran_order':True,'shape':(0,2)}     \n");
    write("t.mtx", "%%MatrixMarket matrix coordinate pattern general\n0 0 0\n");
    const Case cases[] = {
        {"vel call $MODULES/word_count.vex \"'Add \xC3\xA9t\xC3\xA9 to add'\"", 0,
         "output 1: struct 3x1 with fields word, count\n"
         "├─ (1).word: 'add'\n├─ (1).count: 2\n├─ (2).word: '\xC3\xA9t\xC3\xA9'\n├─ (2).count: 1\n"
         "├─ (3).word: 'to'\n└─ (3).count: 1\n"},
        {"vel call $MODULES/word_count.vex \"''\"", 0,
         "output 1: struct 0x1 with fields word, count\n"},
        {"vel call $MODULES/group_by.vex --nlhs 2 '[1 7;2 8;3 7]' 2", 0,
         "output 1: cell 2x1\n├─ {1}: double 2x2\n│    1  7\n│    3  7\n"
         "└─ {2}: double 1x2\n     2  8\noutput 2: double 2x1\n  7\n  8\n"},
        {"vel call $MODULES/normalize_image.vex 'uint8([10 20 30;40 50 60;70 80 250])' 2>&1", 0,
         "Warning: Out of range value converted to intmin('uint8') or intmax('uint8').\n"
         "output 1: uint8 3x3\n   73   83   92\n  101  111  120\n  130  139  255\n"},
        {"vel call $MODULES/normalize_image.vex '[1 2]' 2>&1", 1,
         "error: VELTRO:normalize_image:input: y = normalize_image(x) takes one real uint8 "
         "image.\n"},
        {"vel call $MODULES/normalize_image.vex 'uint8([])'", 0, "output 1: uint8 0x0\n"},
        {"vel call $MODULES/game_of_life.vex '[0 1 0;0 0 1;1 1 1]' 4 '[5 5]'", 0,
         "output 1: logical 5x5\n  0  0  0  0  0\n  0  0  0  0  0\n  0  0  0  1  0\n"
         "  0  0  0  0  1\n  0  0  1  1  1\n"},
        {"vel call $MODULES/game_of_life.vex '[1 1 1]' 1 '[16 16]'", 0,
         "output 1: logical 16x16\n  ⠀⠀⠀⠀⠀⠀⠀⠀\n  ⠀⠀⠀⢠⠀⠀⠀⠀\n  ⠀⠀⠀⠈⠀⠀⠀⠀\n  ⠀⠀⠀⠀⠀⠀⠀⠀\n"},
        {"vel call $MODULES/group_by.vex t.npy 2", 0, "output 1: cell 0x1\n"},
        {"vel call $MODULES/zscore.vex t.npy", 0, "output 1: double 0x2\n"},
        {"vel call $MODULES/pagerank.vex t.mtx", 0, "output 1: double 0x1\n"},
        {"vel call $MODULES/zscore.vex 'a.csv' 2>&1", 3,
         "vel: a.csv: cannot be read: No such file or directory\n"},
        {"vel call $MODULES/zscore.vex '[1 2;3]' 2>&1", 2,
         "vel: argument [1 2;3]: row 2 has 1 elements, the first has 2\n"},
        {"vel call $MODULES/zscore.vex \"'it's'\" 2>&1", 2,
         "vel: argument 'it's': a quotation mark inside of text must be doubled\n"},
        {"vel call --help | head -2", 0,
         "  vel call zscore.vex iris.csv\n  vel call word_count.vex \"'to be or not to be'\"\n"},
        {"vel 2>&1 | head -1; vel nothing >/dev/null 2>&1", 2, "A word is required\n"},
        {"bash -c \"$(vel --bash-completion); COMP_WORDS=(vel ls --j); COMP_CWORD=2; _vel; echo "
         "\\${COMPREPLY[0]}\"",
         0, "--json\n"},
        {"vel --man | grep -c '^.SH .vel '", 0, "8\n"},
        {"vel call $MODULES/zscore.vex --fast 2>&1", 2, "vel: unknown option --fast\n"},
    };
    for (const Case &c : cases) {
        const Outcome o = run(c.line);
        EXPECT_EQ(o.status, c.status) << c.line;
        EXPECT_EQ(o.out, c.out) << c.line;
    }
}

// Ranks of a graph small enough to solve by hand: 1 -> 2 -> 3 -> 1 gives a third each.
TEST_F(Call, ReadsAMatrixMarketGraph) {
    write("ring.mtx", "%%MatrixMarket matrix coordinate pattern general\n3 3 3\n2 1\n3 2\n1 3\n");
    EXPECT_EQ(run("vel call $MODULES/pagerank.vex ring.mtx").out,
              "output 1: double 3x1\n  0.333333\n  0.333333\n  0.333333\n");
    EXPECT_EQ(run("vel call $MODULES/pagerank.vex $DATA/west0067.mtx --nlhs 2 | tail -2").out,
              "output 2: double 1x1\n  41\n");
}

} // namespace
} // namespace vel::test
