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

// What the command line names: a file, a place in one, or either under another name.
class Chosen : public Input {
public:
    explicit Chosen(const ConvertOptions &options) {
        std::string file, place;
        if (split_place(options.in, file, place) && !place.empty()) {
            value_ = read_place(file, place);
            if (!value_) throw Failure(Exit::data, options.in + ": the slot is empty");
            names_ = {place.find_first_of(".{(") == place.npos ? place : "value"};
        } else {
            file_ = open_input(options.in, {.force = options.force});
            names_ = file_->names();
        }
        if (options.name.empty()) return;
        check_name(options.name);
        if (names_.size() == 1) names_ = {options.name};
    }
    const oxArray *load(size_t k) override { return value_ ? value_ : file_->load(k); }

private:
    std::unique_ptr<Input> file_;
    const oxArray *value_ = nullptr;
};

int run(const ConvertOptions &options) {
    Host host;
    const Context context;
    Chosen in(options);
    write_all(options.out, in, options.write);
    return static_cast<int>(Exit::good);
}

} // namespace

std::function<int()> declare_convert(CLI::App &word) {
    auto options = std::make_shared<ConvertOptions>();
    word.add_option("in", options->in, "the file to read, or FILE.vel:PLACE")->required();
    word.add_option("out", options->out, "the file to write")->required();
    word.add_option("--name", options->name, "what to call the variable, where there is one");
    add_form_options(word, options->write.form, options->write.compress);
    add_force_option(word, options->force);
    word.footer(
        "The ends of the names say the formats: .vel, .ser (serialised bytes), .csv, .tsv,\n"
        ".mtx (Matrix Market), .npy, .npz, and for OUT .json.");
    return [options] { return run(*options); };
}

} // namespace vel
