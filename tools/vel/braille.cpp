// Pictures of grids in the terminal, eight dots to a character.
#include "braille.h"

#include <algorithm>
#include <cmath>

namespace vel {
namespace {

constexpr size_t picture_rows = 24 * 4, picture_columns = 40 * 2; // dots

constexpr size_t least_width = 8; // dots

// Dots of one character, four rows by two columns: their bits, and the shade each needs to be lit.
constexpr unsigned bit_of[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
constexpr double threshold[4][2] = {
    {0, 4. / 8}, {6. / 8, 2. / 8}, {1. / 8, 5. / 8}, {7. / 8, 3. / 8}};

class Shades {
public:
    explicit Shades(const Counts &counts) : counts_(counts) {
        if (!counts.of.empty()) most_ = *std::max_element(counts.of.begin(), counts.of.end());
    }

    // The bits of the character whose first dot is at (i, j), and its largest shade.
    unsigned character(size_t i, size_t j, double &largest) const {
        unsigned bits = 0, fullest_bit = 0;
        size_t fullest = 0;
        for (size_t r = 0; r < 4 && i + r < counts_.m; ++r)
            for (size_t c = 0; c < 2 && j + c < counts_.n; ++c) {
                const size_t count = counts_.of[(i + r) * counts_.n + j + c];
                if (shade(count) > threshold[r][c]) bits |= bit_of[r][c];
                if (count > fullest) fullest = count, fullest_bit = bit_of[r][c];
            }
        largest = shade(fullest);
        return bits | fullest_bit;
    }

    double shade(size_t count) const {
        return count == 0 ? 0
                          : std::log1p(static_cast<double>(count)) /
                                std::log1p(static_cast<double>(most_));
    }

private:
    const Counts &counts_;
    size_t most_ = 1;
};

std::string utf8_braille(unsigned bits) {
    return {static_cast<char>(0xE2), static_cast<char>(0xA0 | bits >> 6),
            static_cast<char>(0x80 | (bits & 0x3F))};
}

} // namespace

Counts count_pattern(const oxArray *a, size_t most_rows, size_t most_columns) {
    const size_t m = oxGetM(a), n = oxGetN(a);
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    const auto bins = [](size_t size, size_t bin) { return size / bin + (size % bin != 0); };
    const size_t rows = std::max<size_t>(1, bins(m, most_rows)),
                 columns = std::max<size_t>(1, bins(n, most_columns)),
                 square = std::max(rows, columns);
    const auto narrow = [&](size_t size) { return bins(size, square) < least_width; };
    Counts counts;
    counts.block_rows = narrow(m) ? rows : square;
    counts.block_columns = narrow(n) ? columns : square;
    counts.m = bins(m, counts.block_rows), counts.n = bins(n, counts.block_columns);
    counts.of.resize(counts.m * counts.n);
    for (size_t j = 0; j < n; ++j)
        for (size_t k = jc[j]; k < jc[j + 1]; ++k)
            ++counts.of[ir[k] / counts.block_rows * counts.n + j / counts.block_columns];
    return counts;
}

std::vector<std::string> braille(const Counts &counts, Depth depth) {
    const Shades shades(counts);
    std::vector<std::string> lines;
    for (size_t i = 0; i < counts.m; i += 4) {
        std::string line, color;
        for (size_t j = 0; j < counts.n; j += 2) {
            double shade = 0;
            const unsigned bits = shades.character(i, j, shade);
            // Not from the dark end: it would vanish on a black terminal.
            const std::string next = foreground(depth, heat(0.3 + 0.7 * shade));
            if (bits && next != color) line += color = next;
            line += utf8_braille(bits);
        }
        lines.push_back(line + no_color(depth));
    }
    return lines;
}

Picture picture_of(const Counts &counts) {
    const Shades shades(counts);
    Picture p(counts.m, counts.n, {255, 255, 255});
    for (size_t k = 0; k < counts.of.size(); ++k) {
        if (counts.of[k] == 0) continue;
        const double x = shades.shade(counts.of[k]);
        const auto mix = [x](int a, int b) { return static_cast<uint8_t>(a + x * (b - a)); };
        p.dots[k] = {mix(158, 8), mix(202, 48), mix(225, 107)};
    }
    return p;
}

Json to_json(const Counts &counts) {
    Json rows = Json::array();
    for (size_t i = 0; i < counts.m; ++i) {
        rows.push_back(Json::array());
        for (size_t j = 0; j < counts.n; ++j) rows.back().push_back(counts.of[i * counts.n + j]);
    }
    return {{"kind", "pattern"},
            {"block", {json_integer(counts.block_rows), json_integer(counts.block_columns)}},
            {"counts", rows}};
}

std::vector<std::string> picture_of_pattern(const oxArray *a) {
    return braille(count_pattern(a, picture_rows, picture_columns));
}

} // namespace vel
