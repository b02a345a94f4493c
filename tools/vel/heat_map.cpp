// Full matrices as grids of colours.
#include "heat_map.h"

#include "elements.h"
#include "numbers.h"

#include <algorithm>
#include <cmath>

namespace vel {
namespace {

constexpr Color no_value{128, 128, 128};
constexpr size_t most_enlarged = 8; // dots for each side of a block, in the terminal
constexpr size_t scale_width = 24;

size_t blocks(size_t n, size_t block) { return n / block + (n % block != 0); }

// Empty, a quarter, half, three quarters and full.
const char *shade(double x) {
    constexpr const char *shades[] = {" ", "\xE2\x96\x91", "\xE2\x96\x92", "\xE2\x96\x93",
                                      "\xE2\x96\x88"};
    return std::isnan(x) ? "?" : shades[std::min(static_cast<int>(x * 5), 4)];
}

size_t enlargement(size_t n, size_t most, size_t limit) {
    return std::clamp<size_t>(most / n, 1, limit);
}

std::string scale(const Grid &g, Depth depth) {
    std::string line = format_number(g.least) + " ";
    for (size_t k = 0; k < scale_width; ++k) {
        const double x = static_cast<double>(k) / (scale_width - 1);
        line += depth == Depth::none ? shade(x) : background(depth, heat(x)) + " ";
    }
    return line + no_color(depth) + " " + format_number(g.most);
}

} // namespace

double Grid::share(size_t k) const {
    if (std::isnan(of[k])) return of[k];
    return most > least ? (of[k] - least) / (most - least) : 0.5;
}

Grid make_grid(const oxArray *a, size_t most_rows, size_t most_columns) {
    const size_t m = oxGetM(a), n = oxGetN(a); // the columns of all pages
    Grid g;
    g.block_rows = std::max<size_t>(1, blocks(m, most_rows));
    g.block_columns = std::max<size_t>(1, blocks(n, most_columns));
    g.m = blocks(m, g.block_rows), g.n = blocks(n, g.block_columns);
    g.of.resize(g.m * g.n);
    std::vector<size_t> count(g.of.size());
    visit_elements(a, [&](auto e) {
        for (size_t j = 0; j < n; ++j)
            for (size_t i = 0; i < m; ++i) {
                auto x = static_cast<double>(e.re[j * m + i]);
                if (e.im) x = std::hypot(x, static_cast<double>(e.im[j * m + i]));
                if (!std::isfinite(x)) continue;
                const size_t k = i / g.block_rows * g.n + j / g.block_columns;
                g.of[k] += x, ++count[k];
            }
    });
    g.least = g.most = oxGetNaN();
    for (size_t k = 0; k < g.of.size(); ++k) {
        g.of[k] /= static_cast<double>(count[k]); // NaN without any
        g.least = std::fmin(g.least, g.of[k]), g.most = std::fmax(g.most, g.of[k]);
    }
    return g;
}

Picture picture_of(const Grid &g, size_t most_rows, size_t most_columns, size_t limit) {
    const size_t down = enlargement(g.m, most_rows, limit),
                 across = enlargement(g.n, most_columns, limit);
    Picture p(g.m * down, g.n * across, no_value);
    for (size_t i = 0; i < p.m; ++i)
        for (size_t j = 0; j < p.n; ++j) {
            const double x = g.share(i / down * g.n + j / across);
            if (!std::isnan(x)) p.at(i, j) = heat(x);
        }
    return p;
}

std::vector<std::string> lines_of(const Grid &g, size_t columns, Depth depth) {
    std::vector<std::string> lines;
    if (depth != Depth::none) {
        lines = half_blocks(picture_of(g, columns / 2, columns, most_enlarged), depth);
    } else {
        const size_t across = enlargement(g.n, columns, most_enlarged);
        for (size_t i = 0; i < g.m; ++i) {
            lines.emplace_back();
            for (size_t j = 0; j < g.n * across; ++j)
                lines.back() += shade(g.share(i * g.n + j / across));
        }
    }
    lines.push_back(scale(g, depth));
    return lines;
}

Json to_json(const Grid &g) {
    Json rows = Json::array();
    for (size_t i = 0; i < g.m; ++i) {
        rows.push_back(Json::array());
        for (size_t j = 0; j < g.n; ++j) rows.back().push_back(json_number(g.of[i * g.n + j]));
    }
    return {{"kind", "heat map"},
            {"block", {g.block_rows, g.block_columns}},
            {"min", json_number(g.least)},
            {"max", json_number(g.most)},
            {"means", rows}};
}

} // namespace vel
