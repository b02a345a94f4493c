// The vel tool: one word for each thing that it does.
#include "command.h"
#include "failure.h"
#include "help.h"
#include "manual.h"

#include <iostream>
#include <ut.hpp>

int main(int argc, char **argv) {
    CLI::App app{"Looks into data files and runs extension modules.", "vel"};
    vel::prepare_help(app);
    app.require_subcommand(0, 1);
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
        if (manual || completion) return 0;
        if (work) return work();
        throw CLI::RequiredError("A word");
    } catch (const CLI::ParseError &e) {
        return app.exit(e) == 0 ? 0 : static_cast<int>(vel::Exit::usage);
    } catch (const vel::Failure &e) {
        std::cerr << "vel: " << e.what() << '\n';
        return static_cast<int>(e.status());
    } catch (const ut::simple_exception &e) {
        std::cerr << "vel: " << e.message() << '\n';
        return static_cast<int>(vel::Exit::data);
    } catch (const std::bad_alloc &) {
        std::cerr << "vel: out of memory\n";
        return static_cast<int>(vel::Exit::io);
    }
}
