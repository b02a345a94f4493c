// What is made from the table of words besides the help.
#pragma once
#include <CLI/CLI.hpp>

#include <string>

namespace vel {

std::string manual_page(const CLI::App &app);     // roff, for man
std::string bash_completion(const CLI::App &app); // to be sourced

} // namespace vel
