// The vel tool: one word for each thing that it does.
#include "call.h"
#include "failure.h"
#include "numbers.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <ut.hpp>

namespace vel {
namespace {

// What begins like an option and is no number was meant as one.
std::vector<std::string> arguments_of(std::vector<std::string> words) {
    double ignored;
    for (const std::string &w : words)
        if (w.size() > 1 && w[0] == '-' && !parse_number(w, ignored))
            throw Failure(Exit::usage, "unknown option " + w);
    return words;
}

} // namespace
} // namespace vel

int main(int argc, char **argv) {
    CLI::App app{"Looks into data files and runs extension modules."};
    app.require_subcommand(1);

    vel::CallOptions call;
    CLI::App *call_word = app.add_subcommand("call", "Run an extension module");
    call_word->add_option("module", call.module, "the module, a .vex file")->required();
    call_word->add_option("--nlhs", call.nlhs, "outputs to ask for")->check(CLI::Range(0, 50));
    call_word->add_flag("--stats", call.stats, "say what leaving the contexts reclaimed");
    // Arguments are taken as they stand: the parser would split what is in brackets.
    call_word->allow_extras();
    call_word->footer("ARG: a number, a matrix such as '[1 2;3 4]', or the name of a CSV file.");

    try {
        app.parse(argc, argv);
        call.arguments = vel::arguments_of(call_word->remaining());
        return vel::run_call(call);
    } catch (const CLI::ParseError &e) {
        const int status = app.exit(e);
        return status == 0 ? 0 : static_cast<int>(vel::Exit::usage);
    } catch (const vel::Failure &e) {
        std::cerr << "vel: " << e.what() << '\n';
        return static_cast<int>(e.status());
    } catch (const ut::simple_exception &e) {
        std::cerr << "vel: " << e.message() << '\n';
        return static_cast<int>(vel::Exit::data);
    }
}
