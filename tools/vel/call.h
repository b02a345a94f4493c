// vel call: runs an extension module.
#pragma once
#include <string>
#include <vector>

namespace vel {

struct CallOptions {
    std::string module;
    std::vector<std::string> arguments;
    int nlhs = 1;
    bool stats = false;
};

// Runs the module on the arguments and prints its outputs. Returns the exit status.
int run_call(const CallOptions &options);

} // namespace vel
