// vel call: runs an extension module.
#include "call.h"

#include "arguments.h"
#include "failure.h"
#include "host.h"
#include "print.h"

#include <iostream>

namespace vel {
namespace {

void print_stats(const Reclaimed &r, bool raised) {
    if (raised) std::cout << "freed by the raise: " << r.blocks_by_raise << " blocks\n";
    std::cout << "reclaimed: " << r.arrays << " arrays, " << r.blocks << " blocks\n";
}

void print_outputs(const CallOptions &options, const CallResult &result) {
    for (size_t k = 0; k < result.outputs.size(); ++k) {
        const oxArray *a = result.outputs[k];
        if (a)
            print_array(std::cout, ("output " + std::to_string(k + 1)).c_str(), a);
        else if (static_cast<int>(k) < options.nlhs)
            throw Failure(Exit::data, options.module + ": assigned no output " +
                                          std::to_string(k + 1) + " of " +
                                          std::to_string(options.nlhs));
    }
}

} // namespace

int run_call(const CallOptions &options) {
    Host host;
    const int context = oxEnterNewArrayListContext();
    int status = static_cast<int>(Exit::good);
    {
        const Module module(options.module);
        std::vector<oxArray *> inputs;
        for (const std::string &word : options.arguments) inputs.push_back(parse_argument(word));
        const CallResult result = call_module(module, options.nlhs, inputs);
        if (result.raised) {
            std::cerr << "error: " << result.identifier << (result.identifier.empty() ? "" : ": ")
                      << result.message << '\n';
            status = static_cast<int>(Exit::data);
        } else {
            print_outputs(options, result);
        }
        if (options.stats) print_stats(result.reclaimed, result.raised);
    }
    oxExitArrayListContext(context, nullptr, 0, true);
    return status;
}

} // namespace vel
