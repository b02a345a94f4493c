// Pictures of dots, for the terminal and for PNG files.
#pragma once
#include "color.h"

#include <string>
#include <vector>

namespace vel {

struct Picture {
    Picture(size_t rows, size_t columns, Color fill)
        : m(rows), n(columns), dots(rows * columns, fill) {}
    Color &at(size_t i, size_t j) { return dots[i * n + j]; }
    const Color &at(size_t i, size_t j) const { return dots[i * n + j]; }
    void fill(size_t top, size_t left, size_t rows, size_t columns, Color c);

    size_t m, n;
    std::vector<Color> dots; // by rows
};

// Each dot as a square of k by k.
Picture enlarged(const Picture &p, size_t k);

// A line of half blocks for every two rows; the terminal has colours.
std::vector<std::string> half_blocks(const Picture &p, Depth depth);

void write_png(const Picture &p, const std::string &path); // throws Failure

} // namespace vel
