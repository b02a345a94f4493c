// Pictures of the patterns of Matrix Market files.
#include "braille.h"
#include "matrix_market.h"

#include <support/host.h>

namespace vel {
namespace {

class MatrixMarket : public ox::test::HostTest {};

oxArray *parse(const std::string &text) {
    MemorySource in(text);
    return read_matrix_market(in, "f", false);
}

// A diagonal matrix of 2000 columns is binned into 80 and stays a diagonal line; a full column
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
