// vel convert: from one kind of file to another.
#include "command.h"
#include "failure.h"
#include "formats.h"
#include "host.h"
#include "vel_file.h"

#include <memory>

namespace vel {
namespace {

struct ConvertOptions {
    std::string in, out, name;
    WriteOptions write;
    bool force = false;
};

std::vector<Named> read_input(const ConvertOptions &options) {
    std::string file, place;
    if (split_place(options.in, file, place) && !place.empty()) {
        const oxArray *a = read_place(file, place);
        if (!a) throw Failure(Exit::data, options.in + ": the slot is empty");
        const bool inside = place.find_first_of(".{(") != place.npos;
        return {{inside ? "value" : place, a}};
    }
    return read_all(options.in, {.force = options.force});
}

int run(const ConvertOptions &options) {
    Host host;
    const Context context;
    std::vector<Named> arrays = read_input(options);
    if (!options.name.empty() && arrays.size() == 1) arrays[0].name = options.name;
    if (options.out.ends_with(".vel"))
        for (const Named &a : arrays) check_name(a.name);
    write_all(options.out, arrays, options.write);
    return static_cast<int>(Exit::good);
}

} // namespace

std::function<int()> declare_convert(CLI::App &word) {
    auto options = std::make_shared<ConvertOptions>();
    word.add_option("in", options->in, "the file to read, or FILE.vel:PLACE")->required();
    word.add_option("out", options->out, "the file to write")->required();
    word.add_option("--name", options->name, "what to call the variable, where there is one");
    add_form_options(word, options->write.form, options->write.compress);
    word.add_flag("--force", options->force, "read sparse files of 2^26 columns and more");
    word.footer(
        "The ends of the names say the formats: .vel, .ser (serialised bytes), .csv, .tsv,\n"
        ".mtx (Matrix Market), .npy, .npz, and for OUT .json.");
    return [options] { return run(*options); };
}

} // namespace vel
