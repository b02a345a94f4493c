// Files of all kinds: one row of a table for each.
#include "formats.h"

#include "csv.h"
#include "failure.h"
#include "files.h"
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

std::vector<Named> read_vel(const std::string &path, const ReadOptions &) {
    VelReader reader(path);
    std::vector<Named> all;
    for (const Variable &v : reader.variables()) all.push_back({v.path, reader.read(v)});
    return all;
}

std::vector<Named> read_serialized(const std::string &path, const ReadOptions &) {
    const std::string bytes = read_file(path);
    const char *tag = nullptr;
    const oxArray *a = oxDeserializeWithTag(bytes.data(), bytes.size(), &tag);
    if (!a) throw Failure(Exit::data, path + ": offset 0: this is no serialised array");
    return {{tag ? tag : stem(path), a}};
}

const oxArray *only(const std::vector<Named> &arrays, const std::string &path) {
    if (arrays.size() != 1)
        throw Failure(Exit::data, path + ": such a file holds one array, not " +
                                      std::to_string(arrays.size()) + "; name the one to convert");
    return arrays[0].value;
}

std::string serialized(const std::vector<Named> &arrays, const std::string &path,
                       const WriteOptions &options) {
    const uint16_t bits = options.form.wide ? oiWIDE : 0;
    const oxArray *bytes = oxSerializeWithTagEx(only(arrays, path), arrays[0].name.c_str(), bits);
    if (!bytes) throw Failure(Exit::io, path + ": out of memory");
    return {static_cast<const char *>(oxGetData(bytes)), oxGetNumberOfElements(bytes)};
}

std::string json(const std::vector<Named> &arrays) {
    Json j = Json::object();
    for (const Named &a : arrays) j[a.name] = json_array(a.value);
    return json_text(j);
}

struct Format {
    const char *end;
    std::vector<Named> (*read)(const std::string &, const ReadOptions &); // null: written only
    // The bytes of the file; null for VEL files, which are written one variable at a time.
    std::string (*make)(const std::vector<Named> &, const std::string &, const WriteOptions &);
};

const Format formats[] = {
    {".vel", read_vel, nullptr},
    {".ser", read_serialized, serialized},
    {".csv",
     [](auto &p, auto &) {
         return std::vector<Named>{{stem(p), read_csv(p)}};
     },
     [](auto &a, auto &p, auto &) { return make_csv(only(a, p), ',', p); }},
    {".tsv",
     [](auto &p, auto &) {
         return std::vector<Named>{{stem(p), read_csv(p, '\t')}};
     },
     [](auto &a, auto &p, auto &) { return make_csv(only(a, p), '\t', p); }},
    {".mtx",
     [](auto &p, auto &o) {
         return std::vector<Named>{{stem(p), read_matrix_market(p, o.force)}};
     },
     [](auto &a, auto &p, auto &) { return make_matrix_market(only(a, p), p); }},
    {".npy",
     [](auto &p, auto &) {
         return std::vector<Named>{{stem(p), parse_npy(read_file(p), p)}};
     },
     [](auto &a, auto &p, auto &) { return make_npy(only(a, p), p); }},
    {".npz", [](auto &p, auto &) { return read_npz(p); },
     [](auto &a, auto &p, auto &o) { return make_npz(a, p, o.compress); }},
    {".json", nullptr, [](auto &a, auto &, auto &) { return json(a); }},
};

const Format *format_of(const std::string &path) {
    for (const Format &f : formats)
        if (path.ends_with(f.end)) return &f;
    return nullptr;
}

} // namespace

bool is_readable_kind(const std::string &path) {
    const Format *f = format_of(path);
    return f && f->read;
}

std::vector<Named> read_all(const std::string &path, const ReadOptions &options) {
    if (!is_readable_kind(path))
        throw Failure(Exit::usage, path + ": the end of the name says no format that can be read");
    return format_of(path)->read(path, options);
}

void write_all(const std::string &path, const std::vector<Named> &arrays,
               const WriteOptions &options) {
    const Format *f = format_of(path);
    if (!f)
        throw Failure(Exit::usage,
                      path + ": the end of the name says no format that can be written");
    if (f->make) {
        const std::string bytes = f->make(arrays, path, options);
        OutputFile out(path);
        out.write(bytes.data(), bytes.size());
        out.commit();
        return;
    }
    VelWriter writer(path, options.form, options.compress);
    for (const Named &a : arrays) writer.put(a.name, a.value);
    writer.commit();
}

} // namespace vel
