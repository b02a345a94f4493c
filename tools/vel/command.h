// The words of the tool: one table that the parser, the help, the manual page and the completion
// all come from.
#pragma once
#include <CLI/CLI.hpp>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace vel {

struct Command {
    const char *name;
    const char *summary;                  // one line, no period
    std::array<const char *, 3> examples; // whole command lines
    // Adds the word's options to its parser. What comes back does the word's work after parsing and
    // answers the exit status.
    std::function<int()> (*declare)(CLI::App &word);
};

const std::vector<Command> &commands();

// One per word, each defined in the file of that name.
std::function<int()> declare_call(CLI::App &word);
std::function<int()> declare_check(CLI::App &word);
std::function<int()> declare_convert(CLI::App &word);
std::function<int()> declare_diff(CLI::App &word);
std::function<int()> declare_ls(CLI::App &word);
std::function<int()> declare_plot(CLI::App &word);
std::function<int()> declare_save(CLI::App &word);
std::function<int()> declare_show(CLI::App &word);

// Options that several words share.
struct Form;
void add_form_options(CLI::App &word, Form &form, bool &compress);
void add_place_options(CLI::App &word, std::string &file, std::string &path);
void add_force_option(CLI::App &word, bool &force);
extern const CLI::Validator not_negative; // unsigned options would take -1 for the largest number

} // namespace vel
