// vel call: runs an extension module.
#include "arguments.h"
#include "command.h"
#include "failure.h"
#include "host.h"
#include "json.h"
#include "numbers.h"
#include "print.h"
#include "progress.h"
#include "vel_file.h"

#include <iostream>
#include <memory>

namespace vel {
namespace {

struct CallOptions {
    std::string module, out;
    Form form;
    int nlhs = 1;
    bool stats = false, force = false, json = false, compress = false;
};

// What begins like an option and is no number was meant as one.
std::vector<std::string> checked(std::vector<std::string> words) {
    double ignored;
    for (const std::string &w : words)
        if (w.size() > 1 && w[0] == '-' && !parse_number(w, ignored))
            throw Failure(Exit::usage, "unknown option " + w);
    return words;
}

void print_stats(const Reclaimed &r, bool raised) {
    if (raised) std::cout << "freed by the raise: " << r.blocks_by_raise << " blocks\n";
    std::cout << "reclaimed: " << r.arrays << " arrays, " << r.blocks << " blocks\n";
}

void check_outputs(const CallOptions &options, const CallResult &result) {
    for (size_t k = 0; k < result.outputs.size(); ++k)
        if (!result.outputs[k] && static_cast<int>(k) < options.nlhs)
            throw Failure(Exit::data, options.module + ": assigned no output " +
                                          std::to_string(k + 1) + " of " +
                                          std::to_string(options.nlhs));
}

void print_outputs(const CallResult &result) {
    for (size_t k = 0; k < result.outputs.size(); ++k)
        if (result.outputs[k])
            print_array(std::cout, "output " + std::to_string(k + 1), result.outputs[k]);
}

void print_json(const CallOptions &options, const CallResult &result) {
    Json outputs = Json::array(), j;
    for (const oxArray *a : result.outputs)
        if (a && options.out.empty()) outputs.push_back(json_array(a));
    j["outputs"] = outputs;
    if (result.raised)
        j["raised"] = {{"identifier", result.identifier}, {"message", result.message}};
    if (options.stats)
        j["reclaimed"] = {{"arrays", result.reclaimed.arrays},
                          {"blocks", result.reclaimed.blocks},
                          {"blocks_by_raise", result.reclaimed.blocks_by_raise}};
    std::cout << json_text(j);
}

// The variables output1, output2, ... of a VEL file.
void save_outputs(const CallOptions &options, const CallResult &result) {
    VelWriter writer(options.out, options.form, options.compress);
    for (size_t k = 0; k < result.outputs.size(); ++k)
        if (result.outputs[k]) writer.put("output" + std::to_string(k + 1), result.outputs[k]);
    writer.commit();
}

// Outputs go to the file if there is one; stdout gets the rest.
void deliver(const CallOptions &options, const CallResult &result) {
    if (!result.raised) {
        check_outputs(options, result);
        if (!options.out.empty()) save_outputs(options, result);
    }
    end_progress();
    if (options.json) return print_json(options, result);
    if (!result.raised && options.out.empty()) print_outputs(result);
    if (options.stats) print_stats(result.reclaimed, result.raised);
}

int run(const CallOptions &options, const std::vector<std::string> &words) {
    Host host;
    const Context context;
    const Module module(options.module);
    std::vector<const oxArray *> inputs;
    for (const std::string &word : words)
        inputs.push_back(parse_argument(word, {.force = options.force}));
    const CallResult result = call_module(module, options.nlhs, inputs);
    if (result.raised)
        std::cerr << "error: " << result.identifier << (result.identifier.empty() ? "" : ": ")
                  << result.message << '\n';
    deliver(options, result);
    return static_cast<int>(result.raised ? Exit::data : Exit::good);
}

} // namespace

std::function<int()> declare_call(CLI::App &word) {
    auto options = std::make_shared<CallOptions>();
    word.add_option("module", options->module, "the module, a .vex file")->required();
    word.add_option("--nlhs", options->nlhs, "outputs to ask for")->check(CLI::Range(0, 50));
    word.add_option("-o,--out", options->out, "write the outputs to this VEL file");
    add_form_options(word, options->form, options->compress);
    word.add_flag("--json", options->json, "print the outputs as JSON");
    word.add_flag("--stats", options->stats, "say what leaving the contexts reclaimed");
    add_force_option(word, options->force);
    // Arguments are taken as they stand: the parser would split what is in brackets.
    word.allow_extras();
    word.footer(argument_help);
    return [options, &word] { return run(*options, checked(word.remaining())); };
}

} // namespace vel
