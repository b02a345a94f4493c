// Colours in the terminal, as many as it has.
#include "color.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace vel {
namespace {

std::string_view variable(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

Depth depth_of_terminal() {
    const std::string_view colors = variable("COLORTERM"), terminal = variable("TERM");
    if (colors == "truecolor" || colors == "24bit") return Depth::truecolor;
    return terminal.find("256color") != terminal.npos ? Depth::colors256 : Depth::none;
}

// The nearest of the 6-by-6-by-6 cube, or of the 24 greys.
int index256(Color c) {
    const auto step = [](int x) { return x < 48 ? 0 : x < 115 ? 1 : (x - 35) / 40; };
    const auto level = [](int s) { return s == 0 ? 0 : 55 + 40 * s; };
    const int r = step(c.r), g = step(c.g), b = step(c.b);
    const int grey = std::clamp(((c.r + c.g + c.b) / 3 - 3) / 10, 0, 23), shade = 8 + 10 * grey;
    const auto distance = [&](int x, int y, int z) {
        return (x - c.r) * (x - c.r) + (y - c.g) * (y - c.g) + (z - c.b) * (z - c.b);
    };
    if (distance(shade, shade, shade) < distance(level(r), level(g), level(b))) return 232 + grey;
    return 16 + 36 * r + 6 * g + b;
}

std::string sequence(Depth depth, Color c, char layer) {
    if (depth == Depth::none) return "";
    const std::string start = std::string("\x1b[") + layer + "8;";
    if (depth == Depth::colors256) return start + "5;" + std::to_string(index256(c)) + "m";
    return start + "2;" + std::to_string(c.r) + ";" + std::to_string(c.g) + ";" +
           std::to_string(c.b) + "m";
}

} // namespace

void add_color_option(CLI::App &word, std::string &choice) {
    choice = "auto";
    word.add_option("--color", choice, "auto, never, always, 256 or truecolor")
        ->check(CLI::IsMember({"auto", "never", "always", "256", "truecolor"}));
}

Depth color_depth(const std::string &choice) {
    if (choice == "never") return Depth::none;
    if (choice == "256") return Depth::colors256;
    if (choice == "truecolor") return Depth::truecolor;
    if (choice == "always") return std::max(depth_of_terminal(), Depth::colors256);
    if (!isatty(STDOUT_FILENO) || !variable("NO_COLOR").empty()) return Depth::none;
    return depth_of_terminal();
}

std::string foreground(Depth depth, Color c) { return sequence(depth, c, '3'); }
std::string background(Depth depth, Color c) { return sequence(depth, c, '4'); }
std::string no_color(Depth depth) { return depth == Depth::none ? "" : "\x1b[0m"; }

Color heat(double x) {
    constexpr Color stops[] = {
        {68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}};
    constexpr int last = static_cast<int>(std::size(stops)) - 1;
    x = std::clamp(x, 0., 1.) * last;
    const int k = std::min(static_cast<int>(x), last - 1);
    const auto mix = [t = x - k](uint8_t a, uint8_t b) {
        return static_cast<uint8_t>(std::lround(a + t * (b - a)));
    };
    const Color a = stops[k], b = stops[k + 1];
    return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b)};
}

} // namespace vel
