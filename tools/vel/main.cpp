// The vel tool: one word for each thing that it does.
#include "command.h"
#include "failure.h"
#include "help.h"
#include "manual.h"
#include "progress.h"
#include "text.h"

#include <iostream>
#include <ut.hpp>

namespace {

int status(vel::Exit e) { return static_cast<int>(e); }

int fail(vel::Exit e, const std::string &sentence) {
    vel::end_progress();
    std::cerr << "vel: " << vel::printable(sentence) << '\n'; // it may quote a file
    return status(e);
}

int run(int argc, char **argv) {
    CLI::App app{"Looks into data files and runs extension modules.", "vel"};
    vel::prepare_help(app);
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "vel " VEL_VERSION, "Print the version and exit");
    bool manual = false, completion = false;
    app.add_flag("--man", manual, "Print the manual page: vel --man | man -l -");
    app.add_flag("--bash-completion", completion,
                 "Print the completion: eval \"$(vel --bash-completion)\"");
    std::function<int()> work;
    for (const vel::Command &c : vel::commands()) {
        CLI::App *word = app.add_subcommand(c.name, c.summary);
        word->callback([&work, run = c.declare(*word)] { work = run; });
    }
    try {
        app.parse(argc, argv);
        if (manual) std::cout << vel::manual_page(app);
        if (completion) std::cout << vel::bash_completion(app);
        if (manual || completion) return status(vel::Exit::good);
        if (work) return work();
        throw CLI::RequiredError("A word");
    } catch (const CLI::ParseError &e) {
        if (e.get_exit_code() == 0) return app.exit(e); // --help and --version
        const auto words = app.get_subcommands();
        return fail(vel::Exit::usage, std::string(e.what()) + "; see vel " +
                                          (words.empty() ? "" : words[0]->get_name() + " ") +
                                          "--help");
    } catch (const vel::Failure &e) {
        return fail(e.status(), e.what());
    } catch (const ut::simple_exception &e) {
        return fail(vel::Exit::data, e.message());
    } catch (const std::bad_alloc &) {
        return fail(vel::Exit::io, "out of memory");
    }
}

} // namespace

int main(int argc, char **argv) {
    const int result = run(argc, argv);
    if (std::cout.flush()) return result;
    return fail(vel::Exit::io, "the output cannot be written");
}
