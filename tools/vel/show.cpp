// vel show: values of files of any kind that the tool reads.
#include "arguments.h"
#include "command.h"
#include "elements.h"
#include "failure.h"
#include "hex.h"
#include "host.h"
#include "numbers.h"
#include "paths.h"
#include "print.h"
#include "progress.h"
#include "stats.h"
#include "vel_file.h"

#include <charconv>
#include <iostream>
#include <memory>

namespace vel {
namespace {

struct ShowOptions {
    std::string file, path, rows, columns, color;
    size_t head = 0;
    bool stats = false, hex = false, json = false, force = false;
};

// Positions a to b of n, from "a:b", "a:", ":b" or "a".
oxArray *subscript(const std::string &label, const std::string &range, size_t n) {
    if (range.empty()) return oxCreateString(":");
    const size_t colon = range.find(':');
    size_t first = 1, last = n;
    const auto read = [&](std::string_view text, size_t &x) {
        if (text.empty()) return;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), x);
        if (error != std::errc() || end != text.data() + text.size())
            throw Failure(Exit::usage, "'" + range + "' is no range such as 2:10");
    };
    read(std::string_view(range).substr(0, colon), first);
    if (colon == std::string::npos)
        last = first;
    else
        read(std::string_view(range).substr(colon + 1), last);
    if (first < 1 || first > last || last > n)
        throw Failure(Exit::data, label + ": the range " + range +
                                      " does not lie within 1:" + std::to_string(n));
    oxArray *list = oxCreateDoubleMatrix(1, last - first + 1, oxREAL);
    for (size_t k = 0; k <= last - first; ++k) oxGetPr(list)[k] = static_cast<double>(first + k);
    return list;
}

// The rows and columns that are asked for.
const oxArray *cut_out(const std::string &label, const oxArray *a, const ShowOptions &options) {
    std::string rows = options.rows;
    if (options.head > 0) rows = ":" + std::to_string(std::min(options.head, size_t{oxGetM(a)}));
    if (rows.empty() && options.columns.empty()) return a;
    if (oxGetNumberOfDimensions(a) != 2)
        throw Failure(Exit::data, label +
                                      ": rows and columns can be chosen of a matrix only, found " +
                                      describe(a));
    const oxArray *subs[] = {subscript(label, rows, oxGetM(a)),
                             subscript(label, options.columns, oxGetN(a))};
    return oxSubscriptedReference(a, 2, subs);
}

void print_stats(const std::string &label, const oxArray *a) {
    std::cout << label << ": " << describe(a) << '\n';
    if (!has_elements(a)) return;
    const Stats s = stats_of(a);
    std::cout << "  min " << format_number(s.least) << ", mean " << format_number(s.mean)
              << ", max " << format_number(s.most) << '\n'
              << "  " << s.elements << " elements: " << s.nonzeros << " nonzero, " << s.zeros
              << " zero, " << s.nans << " NaN, " << s.infinities << " infinite\n";
}

void show(const std::string &label, const oxArray *a, const ShowOptions &options, Json &json) {
    const std::string where = options.file + (options.path.empty() ? "" : ": " + options.path);
    const oxArray *part = a ? cut_out(where, a, options) : nullptr;
    end_progress();
    if (options.json)
        json[label] = options.stats && part && has_elements(part) ? json_stats(stats_of(part))
                                                                  : json_array(part);
    else if (options.stats && part)
        print_stats(label, part);
    else
        print_array(std::cout, label, part);
}

int run_hex(const ShowOptions &options) {
    std::string file, place;
    if (!split_place(options.file, file, place)) file = options.file;
    print_hex(std::cout, file, place + options.path, color_depth(options.color));
    return static_cast<int>(Exit::good);
}

int run(const ShowOptions &options) {
    if (options.hex) return run_hex(options);
    Host host;
    const Context context;
    Json json = Json::object();
    std::string file, place;
    if (!split_place(options.file, file, place)) {
        const oxArray *a = parse_argument(options.file, {.force = options.force});
        show(options.file + options.path, follow(a, options.path, options.file), options, json);
    } else if (place.empty() && options.path.empty()) {
        VelReader reader(file);
        for (const Variable &v : reader.variables()) {
            const Context one;
            show(v.path, reader.read(v), options, json);
        }
    } else {
        place += options.path;
        show(place, read_place(file, place), options, json);
    }
    if (options.json) std::cout << json_text(json);
    return static_cast<int>(Exit::good);
}

} // namespace

std::function<int()> declare_show(CLI::App &word) {
    auto options = std::make_shared<ShowOptions>();
    add_place_options(word, options->file, options->path);
    word.add_option("--rows", options->rows, "rows a:b");
    word.add_option("--cols", options->columns, "columns a:b");
    word.add_option("--head", options->head, "the first rows")->check(not_negative);
    word.add_flag("--stats", options->stats,
                  "minimum, mean, maximum, and counts of special values");
    CLI::Option *hex =
        word.add_flag("--hex", options->hex, "the elements of a VEL file as they are stored");
    add_color_option(word, options->color);
    add_force_option(word, options->force);
    hex->excludes(word.add_flag("--json", options->json, "print JSON"));
    return [options] { return run(*options); };
}

} // namespace vel
