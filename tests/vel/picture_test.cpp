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

TEST_F(Pictures, LookAsDrawn) {
    ASSERT_EQ(run("vel call $MODULES/group_by.vex $DATA/iris.csv 5 -o g.vel && vel save --compress "
                  "--wide --swapped h.vel \"t='abc'\" i=$DATA/iris.csv")
                  .status,
              0);
    const struct {
        const char *file, *line;
    } cases[] = {
        {"heat_plain.txt", "vel plot $DATA/iris.csv"},
        {"heat_256.txt", "vel plot '[1 2 nan;4 5 6]' --color=256"},
        {"heat_truecolor.txt", "vel plot 'uint8([0 255])' --color=truecolor"},
        {"pattern_plain.txt", "vel plot $DATA/west0067.mtx --width 30"},
        {"pattern_256.txt", "vel plot $DATA/west0067.mtx --width 20 --color=256"},
        {"tree_plain.txt", "vel plot g.vel"},
        {"hex_plain.txt", "vel show g.vel 'output1{3}' --hex"},
        {"hex_packed_256.txt", "vel show h.vel t --hex --color=256"},
    };
    for (const auto &c : cases) {
        const Outcome o = run(c.line);
        EXPECT_EQ(o.status, 0) << c.line;
        std::ifstream golden(OX_SOURCE_DIR "/tests/vel/golden/" + std::string(c.file));
        const std::string expected{std::istreambuf_iterator<char>(golden), {}};
        EXPECT_EQ(o.out, expected) << c.line;
    }
}

// Nothing is expanded, whatever the size; what cannot be drawn is said.
TEST_F(Pictures, UnusualArrays) {
    const std::string head = "%%MatrixMarket matrix coordinate real general\n";
    write("huge.mtx", head + "1000000000000 1000000 2\n1 1 1\n1000000000000 1000000 1\n");
    write("none.mtx", head + "9 9 0\n");
    ASSERT_EQ(run("vel save t.vel \"t='abc'\"").status, 0);
    write("cut.vel", bytes_of("t.vel").substr(0, 90));
    const std::string dot = "\xE2\xA0\x81", corner = "\xE2\xA2\x80", none = "\xE2\xA0\x80";
    const struct {
        const char *line;
        int status;
        std::string out;
    } cases[] = {
        {"vel plot huge.mtx --width 20 | sed -n '2p;$p' | cut -c 1-3,58-60", 0,
         dot + none + "\n" + none + corner + "\n"},
        {"vel plot huge.mtx -o huge.png && vel plot none.mtx -o none.png", 0, ""},
        {"vel plot none.mtx | tail -1", 0, none + none + none + none + none + "\n"},
        {"vel plot '[nan inf]' | sed -n 2p", 0, "????????????????\n"},
        {"vel plot \"''\" 2>&1", 1, "vel: '': there is nothing to draw: char 0x0\n"},
        {"vel plot t.vel:t -o t.png --color=pink 2>/dev/null", 2, ""},
        {"vel show cut.vel --hex 2>&1", 1,
         "vel: cut.vel: offset 64: expected at most 18 bytes of data, found a count of 48\n"},
        {"vel show t.vel z --hex 2>&1", 1, "vel: t.vel: there is no 'z'\n"},
    };
    for (const auto &c : cases) {
        const Outcome o = run(std::string("export LC_ALL=C; ") + c.line);
        EXPECT_EQ(o.status, c.status) << c.line;
        EXPECT_EQ(o.out, c.out) << c.line;
    }
}

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
