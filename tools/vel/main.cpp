// The vel tool: one word for each thing that it does.
#include "command.h"
#include "failure.h"
#include "help.h"

#include <iostream>
#include <ut.hpp>

int main(int argc, char **argv) {
    CLI::App app{"Looks into data files and runs extension modules.", "vel"};
    vel::prepare_help(app);
    app.require_subcommand(1);
    std::function<int()> work;
    for (const vel::Command &c : vel::commands()) {
        CLI::App *word = app.add_subcommand(c.name, c.summary);
        word->callback([&work, run = c.declare(*word)] { work = run; });
    }
    try {
        app.parse(argc, argv);
        return work();
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
