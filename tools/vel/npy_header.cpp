// The header of an NPY file: a literal with three keys, read word by word and never evaluated.
#include "npy_header.h"

#include "failure.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace vel {
namespace {

constexpr std::string_view magic = "\x93NUMPY";

class Literal {
public:
    Literal(std::string_view text, uint64_t offset, const std::string &name)
        : whole_(text), rest_(text), offset_(offset), name_(name) {}

    void parse(NpyHeader &h) {
        unsigned seen = 0;
        expect('{');
        while (!accept('}')) {
            const std::string key = quoted();
            expect(':');
            if (key == "descr")
                h.type = quoted(), seen |= 1;
            else if (key == "fortran_order")
                h.by_columns = truth(), seen |= 2;
            else if (key == "shape")
                h.shape = shape(), seen |= 4;
            else
                fail("the key '" + key + "' is unknown");
            accept(',');
        }
        if (seen != 7) fail("one of descr, fortran_order and shape is missing");
    }

private:
    char peek() {
        while (!rest_.empty() && (rest_[0] == ' ' || rest_[0] == '\n')) rest_.remove_prefix(1);
        return rest_.empty() ? '\0' : rest_[0];
    }
    bool accept(char c) {
        if (peek() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void expect(char c) {
        if (!accept(c)) fail(std::string("expected '") + c + "'");
    }
    std::string quoted() {
        const char quote = peek();
        const size_t end = quote == '\'' || quote == '"' ? rest_.find(quote, 1) : rest_.npos;
        if (end == rest_.npos) fail("expected a word in quotes");
        const std::string word(rest_.substr(1, end - 1));
        rest_.remove_prefix(end + 1);
        return word;
    }
    bool truth() {
        peek();
        for (const bool value : {true, false}) {
            const std::string_view word = value ? "True" : "False";
            if (!rest_.starts_with(word)) continue;
            rest_.remove_prefix(word.size());
            return value;
        }
        fail("expected True or False");
    }
    std::vector<size_t> shape() {
        std::vector<size_t> sizes;
        expect('(');
        while (!accept(')')) {
            peek();
            size_t n = 0;
            const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), n);
            if (error != std::errc()) fail("expected a size");
            rest_.remove_prefix(static_cast<size_t>(end - rest_.data()));
            sizes.push_back(n);
            accept(',');
        }
        return sizes;
    }
    [[noreturn]] void fail(const std::string &what) const {
        throw Failure(Exit::data, name_ + ": offset " +
                                      std::to_string(offset_ + whole_.size() - rest_.size()) +
                                      ": " + what);
    }

    std::string_view whole_, rest_;
    uint64_t offset_;
    const std::string &name_;
};

} // namespace

NpyHeader read_npy_header(SizedSource &in, const std::string &name) {
    unsigned char start[12] = {};
    if (!in.read(start, 8) || std::memcmp(start, magic.data(), magic.size()) != 0)
        throw Failure(Exit::data, name + ": offset 0: this is no NPY file");
    const unsigned version = start[6];
    if (version < 1 || version > 3)
        throw Failure(Exit::data, name + ": offset 6: expected version 1 to 3, found " +
                                      std::to_string(version));
    const size_t width = version == 1 ? 2 : 4;
    const bool good = in.read(start + 8, width);
    size_t length = 0;
    for (size_t k = width; k-- > 0;) length = length << 8 | start[8 + k];
    if (!good || length > in.left())
        throw Failure(Exit::data, name + ": offset 8: a header of " + std::to_string(length) +
                                      " bytes, the file has " + std::to_string(in.size()));
    const uint64_t offset = in.at();
    std::string text(length, '\0');
    in.read(text.data(), length);
    NpyHeader h;
    Literal(text, offset, name).parse(h);
    return h;
}

std::string make_npy_header(const std::string &type, const std::vector<size_t> &shape) {
    std::string literal = "{'descr': '" + type + "', 'fortran_order': True, 'shape': (";
    for (size_t n : shape) literal += std::to_string(n) + ", ";
    literal += "), }";
    literal.append(63 - (10 + literal.size()) % 64, ' '); // the data begin at a multiple of 64
    literal += '\n';
    std::string header(magic);
    header +=
        {1, 0, static_cast<char>(literal.size() & 0xFF), static_cast<char>(literal.size() >> 8)};
    return header + literal;
}

} // namespace vel
