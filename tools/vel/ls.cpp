// vel ls: the variables of VEL files, from their headers alone.
#include "command.h"
#include "failure.h"
#include "json.h"
#include "progress.h"
#include "walk.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>

namespace vel {
namespace {

struct ListOptions {
    std::vector<std::string> files;
    bool recursive = false, json = false;
};

std::vector<Variable> variables_of(const std::string &path, bool recursive) {
    const InputFile in(path);
    std::vector<Variable> all, top;
    try {
        Walker walker(in, read_header(in.file(), path));
        for (Variable v; walker.next(v);) top.push_back(v);
        if (!recursive) return top;
        for (const Variable &v : top)
            walker.walk(v, [&](const Variable &inside) { all.push_back(inside); });
    } catch (const Fault &fault) {
        throw Failure(Exit::data, path + ": " + fault.sentence());
    }
    return all;
}

using Row = std::vector<std::string>;

std::string ratio(const Variable &v) {
    if (!v.compressed) return "-";
    std::ostringstream out;
    out << std::fixed << std::setprecision(1)
        << static_cast<double>(v.bytes) / static_cast<double>(v.stored);
    return out.str();
}

std::string kind(const Variable &v) {
    if (v.empty_slot) return "empty";
    return std::string(v.sparse ? "sparse " : "") + (v.complex ? "complex " : "") + v.class_name;
}

Row row(const Variable &v) {
    std::string size;
    for (uint64_t d : v.size) size += (size.empty() ? "" : "x") + std::to_string(d);
    return {v.path,
            size,
            kind(v),
            v.stored_elements ? std::to_string(*v.stored_elements) : "-",
            std::to_string(v.stored),
            ratio(v),
            std::to_string(v.offset)};
}

void print_rows(const std::vector<Row> &rows) {
    constexpr bool at_left[] = {true, true, true, false, false, false, false};
    Row widths(rows[0].size());
    for (const Row &r : rows)
        for (size_t k = 0; k < r.size(); ++k)
            if (r[k].size() > widths[k].size()) widths[k].assign(r[k].size(), ' ');
    for (const Row &r : rows) {
        for (size_t k = 0; k < r.size(); ++k)
            std::cout << (k ? "  " : "") << (at_left[k] ? std::left : std::right)
                      << std::setw(static_cast<int>(widths[k].size())) << r[k];
        std::cout << '\n';
    }
}

Json to_json(const Variable &v) {
    Json j = {{"path", v.path},     {"class", v.class_name}, {"size", Json::array()},
              {"sparse", v.sparse}, {"complex", v.complex},  {"compressed", v.compressed}};
    for (uint64_t d : v.size) j["size"].push_back(json_integer(d));
    j["offset"] = json_integer(v.offset);
    j["stored"] = json_integer(v.stored);
    j["bytes"] = json_integer(v.bytes);
    if (v.stored_elements) j["nnz"] = json_integer(*v.stored_elements);
    return j;
}

int run(const ListOptions &options) {
    Json files = Json::object();
    for (const std::string &file : options.files) {
        const std::vector<Variable> variables = variables_of(file, options.recursive);
        end_progress();
        if (options.json) {
            Json &list = files[file] = Json::array();
            for (const Variable &v : variables) list.push_back(to_json(v));
            continue;
        }
        if (options.files.size() > 1) std::cout << file << ":\n";
        std::vector<Row> rows = {{"name", "size", "class", "nnz", "stored", "ratio", "offset"}};
        for (const Variable &v : variables) rows.push_back(row(v));
        print_rows(rows);
    }
    if (options.json) std::cout << json_text(files);
    return static_cast<int>(Exit::good);
}

} // namespace

std::function<int()> declare_ls(CLI::App &word) {
    auto options = std::make_shared<ListOptions>();
    word.add_option("file", options->files, "VEL files")->required();
    word.add_flag("-r,--recursive", options->recursive, "also what is in cells and structs");
    word.add_flag("--json", options->json, "print JSON");
    return [options] { return run(*options); };
}

} // namespace vel
