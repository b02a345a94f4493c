// What the tool draws: golden pictures at 80 columns, PNG files decoded, colours and JSON.
#include "color.h"
#include "run.h"

#include <png.h>

#include <algorithm>
#include <vector>

namespace vel::test {
namespace {

class Pictures : public RunTest {
protected:
    std::vector<Color> decoded(const std::string &name, size_t &width) const {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        EXPECT_TRUE(png_image_begin_read_from_file(&image, (folder_ / name).c_str()));
        image.format = PNG_FORMAT_RGB;
        width = image.width;
        std::vector<Color> dots(width * image.height);
        EXPECT_TRUE(png_image_finish_read(&image, nullptr, dots.data(), 0, nullptr));
        return dots;
    }
};

TEST_F(Pictures, LookAsDrawn) { expect_transcript("picture.txt"); }

TEST_F(Pictures, PngHoldsTheSameDots) {
    ASSERT_EQ(run("vel plot '[0 1;2 3]' -o m.png && vel plot $DATA/west0067.mtx -o w.png && "
                  "vel plot '[0 1;2 3]' -o no/x.png 2>/dev/null")
                  .status,
              3);
    size_t n = 0;
    std::vector<Color> dots = decoded("m.png", n);
    ASSERT_EQ(n, 512u);
    ASSERT_EQ(dots.size(), n * n);
    for (const size_t k : {0, 1, 2, 3}) // a quarter of the picture for each element
        EXPECT_EQ(dots[k / 2 * (dots.size() / 2) + k % 2 * (n / 2)],
                  heat(static_cast<double>(k) / 3));
    dots = decoded("w.png", n);
    const auto white = std::count(dots.begin(), dots.end(), Color{255, 255, 255});
    EXPECT_EQ(n, 7 * 67u);
    EXPECT_EQ(dots.size() - static_cast<size_t>(white), 7 * 7 * 294u);
}

TEST_F(Pictures, ColoursAreForTerminals) {
    if (run("script -qec true /dev/null").status != 0) GTEST_SKIP() << "there is no script(1)";
    const auto colored = [&](const std::string &before) {
        return run("TERM=xterm-256color script -qec \"" + before +
                   " '" VEL_TOOL "' plot '[1 2]'\" /dev/null | grep -c '38;5'")
            .out;
    };
    EXPECT_EQ(colored("env -u COLORTERM -u NO_COLOR"), "4\n");
    EXPECT_EQ(colored("env -u COLORTERM NO_COLOR=1"), "0\n");
    EXPECT_EQ(run("vel plot '[1 2]' >/dev/full 2>/dev/null").status, 3);
}

TEST_F(Pictures, JsonFollowsTheSchema) {
    const Outcome o = run("/usr/bin/python3 '" OX_SOURCE_DIR "/tests/vel/schema.py' '" VEL_TOOL
                          "' '" OX_SOURCE_DIR "/docs/vel.schema.json' \"$MODULES\" \"$DATA\" 2>&1");
    if (o.status == 77) GTEST_SKIP() << o.out;
    EXPECT_EQ(o.status, 0) << o.out;
}

} // namespace
} // namespace vel::test
