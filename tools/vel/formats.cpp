// Files of all kinds: one row of a table for each.
#include "formats.h"

#include "csv.h"
#include "failure.h"
#include "host.h"
#include "json.h"
#include "matrix_market.h"
#include "npy.h"
#include "npz.h"
#include "vel_file.h"
#include "write_text.h"

#include <filesystem>

namespace vel {
namespace {

std::string stem(const std::string &path) {
    std::string name = std::filesystem::path(path).stem().string();
    for (char &c : name)
        if (!oxIsValidVelNamePart(&c, 1)) c = '_';
    return oxIsValidVelName(name.c_str()) ? name : "x" + name.substr(0, 62);
}

class VelInput : public Input {
public:
    explicit VelInput(const std::string &path) : reader_(path) {
        for (const Variable &v : reader_.variables())
            names_.push_back(v.path.empty() ? stem(path) : v.path);
    }
    const oxArray *load(size_t k) override { return reader_.read(reader_.variables()[k]); }

private:
    VelReader reader_;
};

using ReadOne = const oxArray *(*)(SizedSource &in, const std::string &path, const ReadOptions &);

class SingleInput : public Input {
public:
    SingleInput(const std::string &path, const ReadOptions &options, ReadOne read)
        : in_(open_source(path)), path_(path), options_(options), read_(read) {
        names_ = {stem(path)};
    }
    const oxArray *load(size_t) override {
        if (in_->at() > 0) in_->rewind();
        return read_(*in_, path_, options_);
    }

private:
    std::unique_ptr<SizedSource> in_;
    std::string path_;
    ReadOptions options_;
    ReadOne read_;
};

// --- Writing ---

const oxArray *only(Input &in, const std::string &path) {
    if (in.names().size() != 1)
        throw Failure(Exit::data, path + ": such a file holds one array, not " +
                                      std::to_string(in.names().size()) +
                                      "; name the one to convert");
    return in.load(0);
}

void write_vel(Input &in, const std::string &path, const WriteOptions &options) {
    VelWriter writer(path, options.form, options.compress);
    for (size_t k = 0; k < in.names().size(); ++k) {
        check_name(in.names()[k], Exit::data);
        const Context one;
        writer.put(in.names()[k], in.load(k));
    }
    writer.commit();
}

void write_serialized(Input &in, const std::string &path, const WriteOptions &options) {
    Form form = options.form;
    form.bare = true;
    const oxArray *a = only(in, path);
    VelWriter writer(path, form, false);
    writer.put(in.names()[0], a);
    writer.commit();
}

void write_csv_file(Input &in, const std::string &path, const WriteOptions &) {
    write_csv(only(in, path), path.ends_with(".tsv") ? '\t' : ',', path);
}

void write_matrix_market_file(Input &in, const std::string &path, const WriteOptions &) {
    write_matrix_market(only(in, path), path);
}

void write_npy(Input &in, const std::string &path, const WriteOptions &) {
    NpyPieces pieces(only(in, path), path);
    OutputFile out(path);
    for (std::string_view p; !(p = pieces.next()).empty();) out.write(p.data(), p.size());
    out.commit();
}

void write_npz_file(Input &in, const std::string &path, const WriteOptions &options) {
    write_npz(in, path, options.compress);
}

void write_json(Input &in, const std::string &path, const WriteOptions &) {
    Json j = Json::object();
    for (size_t k = 0; k < in.names().size(); ++k) {
        const Context one;
        j[in.names()[k]] = json_array(in.load(k));
    }
    OutputFile out(path);
    const std::string text = json_text(j);
    out.write(text.data(), text.size());
    out.commit();
}

// --- The table ---

struct Format {
    const char *end;
    ReadOne read_one; // null for what holds several arrays, or is written only
    std::unique_ptr<Input> (*open)(const std::string &, const ReadOptions &);
    void (*write)(Input &, const std::string &, const WriteOptions &);
};

std::unique_ptr<Input> open_vel(const std::string &path, const ReadOptions &) {
    return std::make_unique<VelInput>(path);
}

const Format formats[] = {
    {".vel", nullptr, open_vel, write_vel},
    {".ser", nullptr, open_vel, write_serialized},
    {".csv",
     [](auto &in, auto &path, auto &) -> const oxArray * { return read_csv(in, path, ','); },
     nullptr, write_csv_file},
    {".tsv",
     [](auto &in, auto &path, auto &) -> const oxArray * { return read_csv(in, path, '\t'); },
     nullptr, write_csv_file},
    {".mtx",
     [](auto &in, auto &path, auto &o) -> const oxArray * {
         return read_matrix_market(in, path, o.force);
     },
     nullptr, write_matrix_market_file},
    {".npy", [](auto &in, auto &path, auto &) -> const oxArray * { return read_npy(in, path); },
     nullptr, write_npy},
    {".npz", nullptr, [](auto &path, auto &o) { return open_npz(path, o.force); }, write_npz_file},
    {".json", nullptr, nullptr, write_json},
};

const Format *format_of(const std::string &path) {
    for (const Format &f : formats)
        if (path.ends_with(f.end)) return &f;
    return nullptr;
}

} // namespace

bool is_readable_kind(const std::string &path) {
    const Format *f = format_of(path);
    return f && (f->read_one || f->open);
}

std::unique_ptr<Input> open_input(const std::string &path, const ReadOptions &options) {
    if (!is_readable_kind(path))
        throw Failure(Exit::usage, path + ": the end of the name says no format that can be read");
    const Format *f = format_of(path);
    if (f->open) return f->open(path, options);
    return std::make_unique<SingleInput>(path, options, f->read_one);
}

void write_all(const std::string &path, Input &in, const WriteOptions &options) {
    const Format *f = format_of(path);
    if (!f)
        throw Failure(Exit::usage,
                      path + ": the end of the name says no format that can be written");
    f->write(in, path, options);
}

} // namespace vel
