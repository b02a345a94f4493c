// vel plot: pictures of values.
#include "arguments.h"
#include "braille.h"
#include "command.h"
#include "elements.h"
#include "failure.h"
#include "heat_map.h"
#include "host.h"
#include "paths.h"
#include "print.h"
#include "progress.h"
#include "size_tree.h"
#include "vel_file.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vel {
namespace {

constexpr size_t least_columns = 20, most_columns = 400, picture_side = 1024;

struct PlotOptions {
    std::string file, path, out, color;
    size_t columns = 0;
    bool json = false, force = false;
};

size_t columns_of_terminal() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

// Small pictures in larger squares, so that a viewer shows more than a stamp.
void write_large(const Picture &p, const std::string &path) {
    const size_t side = std::max<size_t>({p.m, p.n, 1});
    write_png(enlarged(p, std::max<size_t>(1, picture_side / 2 / side)), path);
}

// What each kind of array does with the three ways out.
struct Plot {
    std::function<std::vector<std::string>(size_t columns, Depth)> lines;
    std::function<Picture()> picture;
    std::function<Json()> json;
};

Plot plot_of_pattern(const oxArray *a) {
    return {[a](size_t columns, Depth depth) {
                // As high as it is wide at most: characters are twice as high as wide.
                return braille(count_pattern(a, columns * 2, columns * 2), depth);
            },
            [a] { return picture_of(count_pattern(a, picture_side, picture_side)); },
            [a] { return to_json(count_pattern(a, picture_side, picture_side)); }};
}

Plot plot_of_matrix(const oxArray *a) {
    return {[a](size_t columns, Depth depth) {
                const size_t rows = depth == Depth::none ? columns / 4 : columns / 2;
                return lines_of(make_grid(a, rows, columns), columns, depth);
            },
            [a] {
                return picture_of(make_grid(a, picture_side, picture_side), picture_side / 2,
                                  picture_side / 2, picture_side);
            },
            [a] { return to_json(make_grid(a, picture_side, picture_side)); }};
}

Plot plot_of_tree(const std::string &label, const oxArray *a) {
    const auto tree = std::make_shared<SizeTree>(make_size_tree(label, a));
    return {[tree](size_t columns, Depth depth) { return lines_of(*tree, columns, depth); },
            [tree] { return picture_of(*tree, picture_side); },
            [tree] {
                Json j = to_json(*tree);
                j["kind"] = "size tree";
                return j;
            }};
}

Plot plot_of(const std::string &label, const oxArray *a) {
    if (oxIsCell(a) || oxIsStruct(a)) return plot_of_tree(label, a);
    if (!has_elements(a) || oxIsEmpty(a))
        throw Failure(Exit::data, label + ": there is nothing to draw: " + describe(a));
    return oxIsSparse(a) ? plot_of_pattern(a) : plot_of_matrix(a);
}

int run(const PlotOptions &options) {
    if (!options.out.empty() && !options.out.ends_with(".png"))
        throw Failure(Exit::usage, options.out + ": expected a name that ends with .png");
    Host host;
    const Context context;
    std::string file, place;
    const bool in_vel = split_place(options.file, file, place);
    place += options.path;
    const oxArray *a = in_vel ? read_place(file, place)
                              : follow(parse_argument(options.file, {.force = options.force}),
                                       options.path, options.file);
    if (!in_vel) file = options.file;
    const std::string label =
        (in_vel && !place.empty() ? "" : std::filesystem::path(file).filename().string()) + place;
    if (!a) throw Failure(Exit::data, label + ": the slot is empty");
    const Plot plot = plot_of(label, a);
    if (!options.out.empty()) {
        write_large(plot.picture(), options.out);
        return static_cast<int>(Exit::good);
    }
    end_progress();
    if (options.json) {
        std::cout << json_text(plot.json());
        return static_cast<int>(Exit::good);
    }
    const size_t columns = options.columns ? options.columns : columns_of_terminal();
    if (has_elements(a)) std::cout << label << ": " << describe(a) << '\n';
    for (const std::string &line :
         plot.lines(std::clamp(columns, least_columns, most_columns), color_depth(options.color)))
        std::cout << line << '\n';
    return static_cast<int>(Exit::good);
}

} // namespace

std::function<int()> declare_plot(CLI::App &word) {
    auto options = std::make_shared<PlotOptions>();
    add_place_options(word, options->file, options->path);
    word.add_option("-o,--out", options->out, "write a PNG file instead");
    word.add_option("--width", options->columns, "characters in a line, when not the terminal's")
        ->check(not_negative);
    add_color_option(word, options->color);
    add_force_option(word, options->force);
    word.add_flag("--json", options->json, "print what would be drawn as JSON");
    word.footer("Full arrays become heat maps, sparse ones pictures of their pattern, structs and "
                "cells\ntrees of sizes. Blocks of large ones are drawn as one dot: the mean of a "
                "block, the\nlogarithm of the count in it.");
    return [options] { return run(*options); };
}

} // namespace vel
