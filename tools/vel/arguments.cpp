// What the words of a command line mean as arrays.
#include "arguments.h"

#include "command.h"
#include "csv.h"
#include "failure.h"
#include "formats.h"
#include "matrix_literal.h"
#include "numbers.h"
#include "text.h"
#include "vel_file.h"

#include <string_view>

namespace vel {

const char *const argument_help =
    "ARG is one of\n"
    "  3.5  -2  inf        a number\n"
    "  '[1 2;3 4]'         a matrix; rows end at ';'\n"
    "  \"'abc'\"             text, in single quotes of its own\n"
    "  'uint8([1 2 3])'    any ARG converted to a class\n"
    "  FILE.csv, FILE.tsv  a table of numbers\n"
    "  FILE.mtx            a Matrix Market file\n"
    "  FILE.npy, FILE.npz  an array, or the only one of an archive\n"
    "  FILE.vel:s.a{3}     a variable of a VEL file, or what is inside of one";

namespace {

bool is_between(const std::string &word, char first, char last) {
    return word.size() >= 2 && word.front() == first && word.back() == last;
}

// In quotes a quotation mark stands doubled.
std::string unquoted(const std::string &word) {
    std::string text;
    for (size_t i = 1; i + 1 < word.size(); ++i) {
        text += word[i];
        if (word[i] != '\'') continue;
        if (i + 2 >= word.size() || word[i + 1] != '\'')
            throw Failure(Exit::usage, "argument " + word + ": a quotation mark inside of text " +
                                           "must be doubled");
        ++i;
    }
    return text;
}

// uint8(ARG): null when the word has not that form.
const oxArray *parse_conversion(const std::string &word, const ReadOptions &options) {
    const size_t open = word.find('(');
    if (open == std::string::npos || word.back() != ')') return nullptr;
    const oxClassID to = oxClassIDFromClassName(word.substr(0, open).c_str());
    if (to < oxLOGICAL_CLASS || to > oxUINT64_CLASS) return nullptr;
    const oxArray *a = parse_argument(word.substr(open + 1, word.size() - open - 2), options);
    return oxMustBe(const_cast<oxArray *>(a), to); // gives it back, or a copy
}

} // namespace

bool split_place(const std::string &word, std::string &file, std::string &place) {
    const size_t end = word.find(".vel:");
    if (end == std::string::npos && !word.ends_with(".vel")) return false;
    file = word.substr(0, end == std::string::npos ? end : end + 4);
    place = end == std::string::npos ? "" : word.substr(end + 5);
    return true;
}

void add_place_options(CLI::App &word, std::string &file, std::string &path) {
    word.add_option("file", file, "a VEL file, FILE.vel:PLACE, or another file")->required();
    word.add_option("path", path, "a variable, or what is inside: s.a{3}, t(2).b");
}

const CLI::Validator not_negative(
    [](const std::string &text) {
        return text.starts_with('-') ? "expected 0 or more, found " + text : std::string();
    },
    "");

void add_force_option(CLI::App &word, bool &force) {
    word.add_flag("--force", force, "read sparse files of 2^26 columns and more");
}

const oxArray *parse_argument(const std::string &word, const ReadOptions &options) {
    double x;
    std::string file, place;
    if (parse_number(word, x)) return oxCreateDoubleScalar(x);
    if (is_between(word, '[', ']')) return parse_matrix(word);
    if (is_between(word, '\'', '\'')) return make_text(unquoted(word));
    if (const oxArray *a = parse_conversion(word, options)) return a;
    if (split_place(word, file, place)) {
        if (const oxArray *a = read_place(file, place)) return a;
        throw Failure(Exit::data, word + ": the slot is empty");
    }
    if (!is_readable_kind(word)) return read_csv(*open_source(word), word, ','); // taken for tables
    const std::unique_ptr<Input> in = open_input(word, options);
    if (in->names().size() != 1)
        throw Failure(Exit::data, word + ": expected one array, found " + listed(in->names()) +
                                      "; vel convert makes a VEL file of them");
    return in->load(0);
}

} // namespace vel
