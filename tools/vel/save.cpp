// vel save: arguments as the variables of a VEL file.
#include "arguments.h"
#include "command.h"
#include "failure.h"
#include "host.h"
#include "vel_file.h"

#include <memory>

namespace vel {
namespace {

struct SaveOptions {
    std::string out;
    std::vector<std::string> assignments;
    Form form;
    bool compress = false, force = false;
};

int run(const SaveOptions &options) {
    Host host;
    const Context context;
    VelWriter writer(options.out, options.form, options.compress);
    for (const std::string &a : options.assignments) {
        const size_t at = a.find('=');
        if (at == std::string::npos || at + 1 == a.size())
            throw Failure(Exit::usage, "'" + a + "' is not of the form NAME=ARG");
        const std::string name = a.substr(0, at);
        check_name(name);
        writer.put(name, parse_argument(a.substr(at + 1), {.force = options.force}));
    }
    writer.commit();
    return static_cast<int>(Exit::good);
}

} // namespace

void add_form_options(CLI::App &word, Form &form, bool &compress) {
    word.add_flag("--compress", compress, "compress each variable");
    word.add_flag("--wide", form.wide, "write 64-bit counts, for variables of 4 GiB and more");
    word.add_flag("--swapped", form.swapped, "write in the other byte order");
}

std::function<int()> declare_save(CLI::App &word) {
    auto options = std::make_shared<SaveOptions>();
    word.add_option("out", options->out, "the VEL file to write")->required();
    word.add_option("variables", options->assignments, "the variables, each NAME=ARG")->required();
    add_form_options(word, options->form, options->compress);
    add_force_option(word, options->force);
    word.footer(argument_help);
    return [options] { return run(*options); };
}

} // namespace vel
