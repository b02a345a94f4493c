// The help texts.
#pragma once
#include <CLI/CLI.hpp>

namespace vel {

// Lets the help of each word begin with its examples.
void prepare_help(CLI::App &app);

} // namespace vel
