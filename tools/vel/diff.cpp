// vel diff: where two files, or two values, first differ.
#include "arguments.h"
#include "command.h"
#include "compare.h"
#include "failure.h"
#include "host.h"
#include "json.h"
#include "progress.h"
#include "vel_file.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace vel {
namespace {

struct DiffOptions {
    std::string a, b;
    Tolerance tolerance;
    bool json = false;
};

bool is_whole_file(const std::string &word) { return word.ends_with(".vel"); }

// The variables of both files by name, in the order of the first.
std::optional<Difference> compare_files(const DiffOptions &options) {
    VelReader a(options.a), b(options.b);
    const auto has = [](const VelReader &r, const std::string &name) {
        return std::any_of(r.variables().begin(), r.variables().end(),
                           [&](const Variable &v) { return v.path == name; });
    };
    for (const Variable &v : b.variables())
        if (!has(a, v.path)) return Difference{v.path, "only in " + options.b};
    for (const Variable &v : a.variables()) {
        const Context context;
        if (!has(b, v.path)) return Difference{v.path, "only in " + options.a};
        if (auto d = first_difference(v.path, a.read(v), b.read(b.find(v.path)), options.tolerance))
            return d;
    }
    return {};
}

int run(const DiffOptions &options) {
    Host host;
    const Context context;
    const bool files = is_whole_file(options.a) && is_whole_file(options.b);
    const auto difference = files ? compare_files(options)
                                  : first_difference("value", parse_argument(options.a),
                                                     parse_argument(options.b), options.tolerance);
    end_progress();
    if (options.json) {
        Json j = {{"equal", !difference}};
        if (difference) j["path"] = difference->path, j["difference"] = difference->what;
        std::cout << json_text(j);
    } else if (difference) {
        std::cout << difference->path << ": " << difference->what << '\n';
    }
    return static_cast<int>(difference ? Exit::data : Exit::good);
}

} // namespace

std::function<int()> declare_diff(CLI::App &word) {
    auto options = std::make_shared<DiffOptions>();
    word.add_option("a", options->a, "a VEL file, FILE.vel:PLACE, or another file")->required();
    word.add_option("b", options->b, "the same")->required();
    word.add_flag("--nan-equal", options->tolerance.nan_equal, "a NaN equals a NaN");
    word.add_option("--tol", options->tolerance.absolute, "let numbers differ by this much")
        ->check(not_negative);
    word.add_flag("--json", options->json, "print JSON");
    return [options] { return run(*options); };
}

} // namespace vel
