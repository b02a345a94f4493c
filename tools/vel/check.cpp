// vel check: every element of VEL files against every rule, by the tool's own walk and by the
// library.
#include "command.h"
#include "failure.h"
#include "host.h"
#include "json.h"
#include "progress.h"
#include "vel_file.h"

#include <iostream>
#include <memory>

namespace vel {
namespace {

struct CheckOptions {
    std::vector<std::string> files;
    Limits limits;
    bool all = false, json = false;
};

// The sentences about one file: the first fault of it, or the first of each variable.
class Checker {
public:
    Checker(const std::string &path, const CheckOptions &options)
        : path_(path), options_(options) {}

    std::vector<std::string> faults() {
        try {
            const InputFile in(path_);
            Walker walker(in, read_header(in.file(), path_), options_.limits);
            for (Variable v; (options_.all || faults_.empty()) && walker.next(v); ++variables_)
                check(walker, v);
        } catch (const Fault &fault) {
            note(fault.sentence());
        } catch (const Failure &failure) {
            if (failure.status() == Exit::io) throw;
            faults_.push_back(failure.what());
        }
        if (faults_.empty()) read_all();
        return faults_;
    }
    size_t variables() const { return variables_; }

private:
    void check(Walker &walker, const Variable &v) {
        try {
            walker.walk(v, [](const Variable &) {});
        } catch (const Fault &fault) {
            note(fault.sentence());
        }
    }
    void read_all() {
        VelReader reader(path_);
        for (const Variable &v : reader.variables()) {
            const Context context;
            try {
                reader.read(v);
            } catch (const Failure &failure) {
                faults_.push_back(failure.what());
                if (!options_.all) return;
            }
        }
    }
    void note(const std::string &sentence) { faults_.push_back(path_ + ": " + sentence); }

    const std::string &path_;
    const CheckOptions &options_;
    std::vector<std::string> faults_;
    size_t variables_ = 0;
};

int run(const CheckOptions &options) {
    Host host;
    Json report = Json::object();
    bool good = true;
    for (const std::string &path : options.files) {
        Checker checker(path, options);
        const std::vector<std::string> faults = checker.faults();
        end_progress();
        good = good && faults.empty();
        report[path] = {{"variables", checker.variables()}, {"faults", faults}};
        if (options.json) continue;
        for (const std::string &sentence : faults) std::cout << sentence << '\n';
        if (faults.empty())
            std::cout << path << ": good, " << checker.variables()
                      << (checker.variables() == 1 ? " variable\n" : " variables\n");
    }
    if (options.json) std::cout << json_text(report);
    return static_cast<int>(good ? Exit::good : Exit::data);
}

} // namespace

std::function<int()> declare_check(CLI::App &word) {
    auto options = std::make_shared<CheckOptions>();
    word.add_option("file", options->files, "VEL files")->required();
    word.add_flag("--all", options->all, "go on with the next variable after a fault");
    word.add_option("--max-bytes", options->limits.bytes, "refuse larger variables")
        ->check(not_negative);
    word.add_option("--max-depth", options->limits.depth, "refuse deeper nesting")
        ->check(not_negative);
    word.add_flag("--json", options->json, "print JSON");
    return [options] { return run(*options); };
}

} // namespace vel
