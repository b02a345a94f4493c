// Matrix Market files: every meaningful kind, and pictures of them.
#include "braille.h"
#include "matrix_market.h"

#include <support/array_text.h>
#include <support/host.h>

namespace vel {
namespace {

class MatrixMarket : public ox::test::HostTest {};

oxArray *parse(const std::string &text) {
    MemorySource in(text);
    return read_matrix_market(in, "f", false);
}

// The kinds on 2-by-2 matrices; the lower triangle alone is in the files with symmetry. Integers
// with symmetry are in convert.txt.
TEST_F(MatrixMarket, ReadsEveryKind) {
    const struct {
        const char *kind, *body, *array;
    } cases[] = {
        {"coordinate real general", "2 2 3\n2 1 3.5\n1 2 1\n2 1 0.5\n",
         "sparse double 2x2: (1,0)=4 (0,1)=1"},
        {"coordinate real symmetric", "2 2 2\n2 1 3\n2 2 1\n",
         "sparse double 2x2: (1,0)=3 (0,1)=3 (1,1)=1"},
        {"coordinate real skew-symmetric", "2 2 1\n2 1 3\n", "sparse double 2x2: (1,0)=3 (0,1)=-3"},
        {"coordinate integer general", "2 2 2\n1 1 7\n2 1 0\n", "sparse double 2x2: (0,0)=7"},
        {"coordinate complex general", "2 2 1\n1 2 1 2\n", "sparse double 2x2: (0,1)=1+2i"},
        {"coordinate complex symmetric", "2 2 1\n2 1 1 2\n",
         "sparse double 2x2: (1,0)=1+2i (0,1)=1+2i"},
        {"coordinate complex skew-symmetric", "2 2 1\n2 1 1 2\n",
         "sparse double 2x2: (1,0)=1+2i (0,1)=-1-2i"},
        {"coordinate complex hermitian", "2 2 1\n2 1 1 2\n",
         "sparse double 2x2: (1,0)=1+2i (0,1)=1-2i"},
        {"coordinate pattern general", "2 2 2\n1 2\n1 2\n", "sparse logical 2x2: (0,1)=1"},
        {"coordinate pattern symmetric", "2 2 1\n2 1\n", "sparse logical 2x2: (1,0)=1 (0,1)=1"},
        {"array real general", "2 2\n1\n2\n3\n4\n", "double 2x2: 1 3; 2 4"},
        {"array real symmetric", "2 2\n1\n2\n3\n", "double 2x2: 1 2; 2 3"},
        {"array real skew-symmetric", "2 2\n2\n", "double 2x2: 0 -2; 2 0"},
        {"array integer general", "1 2\n1\n2\n", "double 1x2: 1 2"},
        {"array complex general", "1 2\n1 2\n3 4\n", "double 1x2: 1+2i 3+4i"},
        {"array complex symmetric", "2 2\n1 1\n2 2\n3 3\n", "double 2x2: 1+1i 2+2i; 2+2i 3+3i"},
        {"array complex skew-symmetric", "2 2\n2 1\n", "double 2x2: 0+0i -2-1i; 2+1i 0+0i"},
        {"array complex hermitian", "2 2\n1 0\n2 2\n3 0\n", "double 2x2: 1+0i 2-2i; 2+2i 3+0i"},
        // Any case, comments, blank lines, other line ends, a last line without one.
        {"COORDINATE Real GENERAL", "% c\n\n%c\r\n  2 2 1 \r\n\n2\t1 -1e0",
         "sparse double 2x2: (1,0)=-1"},
    };
    for (const auto &c : cases) {
        const std::string file = std::string("%%MatrixMarket matrix ") + c.kind + "\n" + c.body;
        const oxArray *a = parse(file);
        EXPECT_EQ(ox::test::text(a), ox::test::text(ox::test::arr(c.array))) << file;
    }
}

// A tridiagonal matrix of 2000 columns is binned into 80 and stays a diagonal line; a full column
// in the same picture must not make it vanish.
TEST_F(MatrixMarket, PicturesDoNotTurnSolid) {
    std::string file = "%%MatrixMarket matrix coordinate pattern general\n2000 2000 3998\n";
    for (int i = 1; i <= 2000; ++i) {
        file += std::to_string(i) + " " + std::to_string(i) + "\n";
        if (i > 2) file += std::to_string(i) + " 1\n";
    }
    const Counts counts = count_pattern(parse(file), 96, 80);
    EXPECT_EQ(counts.m, 80u);
    EXPECT_EQ(counts.of[0], 25u + 23u);
    const std::vector<std::string> lines = braille(counts);
    ASSERT_EQ(lines.size(), 20u);
    EXPECT_NE(lines[19].substr(39 * 3), "\xE2\xA0\x80"); // the diagonal is there
    EXPECT_EQ(lines[0].substr(39 * 3), "\xE2\xA0\x80");  // the corner is empty
}

} // namespace
} // namespace vel
