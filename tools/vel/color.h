// Colours in the terminal, as many as it has.
#pragma once
#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace vel {

struct Color {
    uint8_t r, g, b;
    bool operator==(const Color &) const = default;
};

enum class Depth { none, colors256, truecolor };

// Adds --color; what it says is in the string after parsing.
void add_color_option(CLI::App &word, std::string &choice);
// What a choice means for stdout: "auto" looks at the terminal, NO_COLOR, TERM and COLORTERM.
Depth color_depth(const std::string &choice);

// The escape sequences; "" without colours.
std::string foreground(Depth depth, Color c);
std::string background(Depth depth, Color c);
std::string no_color(Depth depth);

// From dark blue over green to yellow; x from 0 to 1. Lightness rises with x, so that the order
// survives where colours do not.
Color heat(double x);

} // namespace vel
