// The bytes of elements, tag by tag.
#include "hex.h"

#include "failure.h"
#include "tags.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <vector>

namespace vel {
namespace {

constexpr size_t row = 16, most_rows = 8;
constexpr Color tag_color{230, 159, 0}, count_color{86, 180, 233}, data_color{0, 190, 140},
    padding_color{150, 150, 150};

using Bytes = std::vector<unsigned char>;

const char *name_of(uint32_t type) {
    constexpr const char *names[] = {"type 0",  "int8",    "uint8",  "int16",  "uint16",
                                     "int32",   "uint32",  "single", "type 8", "double",
                                     "type 10", "type 11", "int64",  "uint64", "array",
                                     "packed",  "utf8",    "utf16",  "utf32"};
    return type < std::size(names) ? names[type] : "type ?";
}

class Dump {
public:
    Dump(std::ostream &out, Form form, Depth depth) : out_(out), form_(form), depth_(depth) {}

    void element(Source &in, TagReader &tags, size_t level) {
        const Tag t = tags.next("");
        tag(t, tags.tag_size(), level);
        if (t.small) return;
        if (t.type == oiMATRIX) {
            if (level > Limits().depth) tags.fail(t.offset, "", "nested too deep to be shown");
            const uint64_t outer = tags.end(), end = tags.at() + t.count;
            tags.set_end(end);
            while (tags.at() < end) element(in, tags, level + 1);
            tags.set_end(outer);
        } else {
            data(in, tags, t);
        }
    }

    // What a compressed element holds, and then its own bytes as they are stored.
    void compressed(FILE *f, const Tag &t, uint64_t size, uint64_t from, uint64_t bytes) {
        tag(t, form_.wide ? 16 : 8, 0);
        out_ << "decompressed, with offsets of its own:\n";
        InflatedSource in(f, t.count);
        TagReader tags(in, form_, size);
        if (!in.skip(from)) tags.fail(from, "", "expected an element, found the end of the data");
        tags.set_end(from + bytes);
        element(in, tags, 0);
    }

private:
    void tag(const Tag &t, size_t size, size_t level) {
        Line line(*this, t.offset);
        const size_t half = size / 2;
        if (t.small) { // count and type in one word, then the data
            const bool front = form_.swapped != (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__);
            line.add(t.raw, 2, front ? count_color : tag_color);
            line.add(t.raw + 2, 2, front ? tag_color : count_color);
            if (half > 4) line.add(t.raw + 4, half - 4, padding_color);
            line.add(t.raw + half, t.count, data_color);
            line.add(t.raw + half + t.count, half - t.count, padding_color);
        } else {
            line.add(t.raw, half, tag_color);
            line.add(t.raw + half, half, count_color);
        }
        std::string note(2 * std::min<size_t>(level, 5), ' ');
        line.end(note + name_of(t.type & 0xFF) + ", " + std::to_string(t.count));
    }

    void data(Source &in, TagReader &tags, const Tag &t) {
        const uint64_t rows = (t.count + row - 1) / row;
        const bool cut = rows > most_rows;
        for (uint64_t k = 0; k < rows; ++k) {
            if (cut && k == most_rows / 2) {
                const uint64_t left_out = (rows - most_rows) * row;
                if (!in.skip(left_out)) tags.fail(in.at(), "", "expected data, found the end");
                out_ << "            ... " << left_out << " bytes\n";
                k = rows - most_rows / 2;
            }
            const bool last = k + 1 == rows;
            data_row(in, tags, std::min<uint64_t>(row, t.count - k * row),
                     last ? padding_of(t) : 0);
        }
    }
    void data_row(Source &in, TagReader &tags, size_t n, size_t padding) {
        unsigned char bytes[row + 8];
        const uint64_t at = in.at();
        if (!in.read(bytes, n + padding)) tags.fail(at, "", "expected data, found the end");
        Line line(*this, at);
        line.add(bytes, n, data_color);
        line.add(bytes + n, padding, padding_color);
        std::string text;
        for (size_t k = 0; k < n; ++k)
            text += bytes[k] < ' ' || bytes[k] > '~' ? '.' : static_cast<char>(bytes[k]);
        line.end(text);
    }

    // An offset and up to sixteen bytes, each group in a colour and behind a bar.
    class Line {
    public:
        Line(Dump &dump, uint64_t offset) : dump_(dump) {
            char text[24];
            std::snprintf(text, sizeof text, "%10llu ", static_cast<unsigned long long>(offset));
            dump.out_ << text;
        }
        void add(const unsigned char *bytes, size_t n, Color color) {
            if (n == 0) return;
            dump_.out_ << (width_ ? "|" : " ") << foreground(dump_.depth_, color);
            for (size_t k = 0; k < n; ++k) {
                char text[4];
                std::snprintf(text, sizeof text, k ? " %02x" : "%02x", bytes[k]);
                dump_.out_ << text;
            }
            dump_.out_ << no_color(dump_.depth_);
            width_ += 3 * n;
        }
        void end(const std::string &note) {
            dump_.out_ << std::string(width_ < 3 * row ? 3 * row - width_ : 0, ' ') << "  " << note
                       << '\n';
        }

    private:
        Dump &dump_;
        size_t width_ = 0;
    };

    std::ostream &out_;
    Form form_;
    Depth depth_;
};

class Finder {
public:
    Finder(std::ostream &out, const std::string &path, Depth depth)
        : in_(path), form_(read_header(in_.file(), path)), dump_(out, form_, depth), out_(out) {}

    bool print(const std::string &place) {
        Walker walker(in_, form_);
        bool found = place.empty();
        for (Variable v; walker.next(v);) {
            const bool inside = place.starts_with(v.path);
            if (!place.empty() && !inside) continue;
            if (place.empty() || place == v.path) {
                print(v, {});
                found = true;
                continue;
            }
            std::optional<Variable> value;
            walker.walk(v, [&](const Variable &i) {
                if (i.path == place) value = i;
            });
            if (value) print(v, value), found = true;
        }
        return found;
    }

private:
    void print(const Variable &v, const std::optional<Variable> &inside) {
        out_ << (inside ? inside->path : v.path) << ":\n";
        const Variable &it = inside ? *inside : v;
        FileSource file(in_.file(), in_.size(), v.compressed ? v.offset : it.offset);
        TagReader tags(file, form_, v.offset + v.stored);
        if (v.compressed)
            dump_.compressed(in_.file(), tags.next(v.path), v.bytes, inside ? it.offset : 0,
                             it.bytes);
        else
            dump_.element(file, tags, 0);
    }

    InputFile in_;
    Form form_;
    Dump dump_;
    std::ostream &out_;
};

} // namespace

void print_hex(std::ostream &out, const std::string &path, const std::string &place, Depth depth) {
    try {
        if (!Finder(out, path, depth).print(place))
            throw Failure(Exit::data, path + ": there is no '" + place + "'");
    } catch (const Fault &fault) {
        throw Failure(Exit::data, path + ": " + fault.sentence());
    }
}

} // namespace vel
