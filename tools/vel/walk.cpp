// Walking the elements of a VEL file by their tags.
#include "walk.h"

#include "tags.h"

#include <algorithm>

namespace vel {
namespace {

// Bits of the flags word, and the classes that a file numbers otherwise than the library.
constexpr uint64_t logical_bit = 0x200, complex_bit = 0x800, sparse_bit = 0x1000;
enum FileClass { file_object = 3, file_sparse = 5, file_function = 16, file_opaque = 17 };

struct Head {
    unsigned number; // of the class, as stored
    uint64_t elements;
};

std::string class_name(unsigned number, uint64_t flags) {
    const bool logical = flags & logical_bit;
    if (number == file_sparse) return logical && flags & sparse_bit ? "logical" : "double";
    if (number == oxUINT8_CLASS && logical) return "logical";
    if (number == file_object) return "object";
    return oxArrayClassIDName(static_cast<oxClassID>(number));
}

// Names of healthy files are ASCII; what others hold is not shown to a terminal.
std::string readable(std::string name) {
    for (char &c : name)
        if (c < ' ' || c > '~') c = '?';
    return name;
}

// One array element and what is inside of it.
class ArrayWalk {
public:
    ArrayWalk(TagReader &in, const Limits &limits, const Visit &visit)
        : in_(in), limits_(limits), visit_(visit) {}

    // Flags, dimensions, name, and the count of a sparse array. The name completes v.path.
    Head head(Variable &v) {
        Tag t = expect(oiUINT32, "array flags", v.path);
        const std::vector<uint64_t> flags = in_.words(t, v.path);
        if (flags.size() < 2) in_.fail(t.offset, v.path, "expected two words of array flags");
        Head h{static_cast<unsigned>(flags[0] & 0xFF), 1};
        if (h.number == 0 || h.number > file_opaque)
            in_.fail(t.offset, v.path,
                     "expected a class from 1 to 17, found " + std::to_string(h.number));
        v.class_name = class_name(h.number, flags[0]);
        v.complex = flags[0] & complex_bit;
        v.sparse = h.number == file_sparse || flags[0] & sparse_bit;
        if (h.number != file_opaque) dimensions(v, h);
        t = expect(oiINT8, "a name", v.path);
        const std::string name = in_.text(t, v.path);
        if (v.path.empty()) v.path = readable(name);
        return h;
    }

    void contents(const Variable &v, const Head &h, size_t depth) {
        switch (h.number) {
        case oxCELL_CLASS:
        case file_function:
            return cells(v.path, h.elements, depth);
        case file_object:
            in_.skip(expect(oiINT8, "a class name", v.path), v.path);
            [[fallthrough]];
        case oxSTRUCT_CLASS:
            return fields(v.path, h.elements, field_names(v.path), depth);
        case file_opaque:
            in_.skip(expect(oiINT8, "a class name", v.path), v.path);
            return cells(v.path, 1, depth);
        default:
            v.sparse ? sparse_data(v) : plain_data(v, h);
        }
    }

    // Row indices are counted without reading them.
    void count_stored(Variable &v) {
        const Tag t = in_.next(v.path);
        if (unit_of(t.type)) v.stored_elements = t.count / unit_of(t.type);
    }

    void element(std::string path, size_t depth) {
        Variable v;
        v.path = std::move(path);
        const Tag t = in_.next(v.path);
        if (t.type != oiMATRIX)
            in_.fail(t.offset, v.path, "expected an array, found type " + std::to_string(t.type));
        v.offset = t.offset;
        v.stored = v.bytes = in_.tag_size() + t.count;
        v.empty_slot = t.count == 0;
        if (v.empty_slot) return visit_(v);
        if (depth > limits_.depth)
            in_.fail(t.offset, v.path, "nested deeper than " + std::to_string(limits_.depth));
        const uint64_t outer = in_.end();
        in_.set_end(in_.at() + t.count);
        inside(v, depth);
        in_.set_end(outer);
    }

    // A whole array after its tag, up to the end that the reader has been given.
    void inside(Variable &v, size_t depth) {
        const Head h = head(v);
        if (v.sparse) {
            Tag t = in_.next(v.path);
            if (unit_of(t.type) < 4)
                in_.fail(t.offset, v.path,
                         "expected row indices, found type " + std::to_string(t.type));
            v.stored_elements = t.count / unit_of(t.type);
            in_.skip(t, v.path);
        }
        visit_(v);
        contents(v, h, depth);
        if (in_.at() != in_.end())
            in_.fail(in_.at(), v.path,
                     std::to_string(in_.end() - in_.at()) + " bytes follow the array's last part");
    }

private:
    Tag expect(uint32_t type, const char *what, const std::string &path) {
        const Tag t = in_.next(path);
        const bool long_words = in_.word() == 8 && type != oiINT8 && t.type == type + 7;
        if (t.type != type && !long_words)
            in_.fail(t.offset, path,
                     std::string("expected ") + what + " of type " + std::to_string(type) +
                         ", found type " + std::to_string(t.type));
        return t;
    }

    void dimensions(Variable &v, Head &h) {
        const Tag t = expect(oiINT32, "dimensions", v.path);
        v.size = in_.words(t, v.path);
        if (v.size.empty()) v.size = {0};
        if (v.size.size() == 1) v.size.push_back(v.size[0] ? 1 : 0);
        for (uint64_t d : v.size) {
            if (d >> (8 * in_.word() - 1)) in_.fail(t.offset, v.path, "a negative dimension");
            if (__builtin_mul_overflow(h.elements, d, &h.elements)) h.elements = ~uint64_t{0};
        }
        if (std::count(v.size.begin(), v.size.end(), 0u)) h.elements = 0;
    }

    std::vector<std::string> field_names(const std::string &path) {
        Tag t = expect(oiINT32, "the length of field names", path);
        const std::vector<uint64_t> length = in_.words(t, path);
        t = expect(oiINT8, "field names", path);
        const std::string slots = in_.text(t, path);
        if (slots.empty()) return {};
        if (length.empty() || length[0] == 0 || slots.size() % length[0] != 0)
            in_.fail(t.offset, path,
                     "field names of " + std::to_string(slots.size()) +
                         " bytes do not divide into slots");
        std::vector<std::string> names;
        for (size_t at = 0; at < slots.size(); at += length[0]) {
            names.emplace_back(slots, at, length[0]);
            if (names.back().find('\0') == std::string::npos)
                in_.fail(t.offset, path, "a field name without its end");
            names.back() = readable(names.back().c_str());
        }
        return names;
    }

    void check_room(uint64_t count, const std::string &path) {
        const uint64_t room = (in_.end() - in_.at()) / in_.tag_size();
        if (count > room)
            in_.fail(in_.at(), path,
                     "expected " + std::to_string(count) + " values, found room for " +
                         std::to_string(room));
    }

    void cells(const std::string &path, uint64_t count, size_t depth) {
        check_room(count, path);
        for (uint64_t i = 1; i <= count; ++i)
            element(path + "{" + std::to_string(i) + "}", depth + 1);
    }

    void fields(const std::string &path, uint64_t count, const std::vector<std::string> &names,
                size_t depth) {
        if (names.empty()) return; // elements without fields take no room
        check_room(count, path);
        for (uint64_t i = 1; i <= count; ++i)
            for (const std::string &name : names)
                element(path + (count > 1 ? "(" + std::to_string(i) + ")." : ".") + name,
                        depth + 1);
    }

    // As many values as the dimensions say; doubles may be stored as smaller integers.
    void plain_data(const Variable &v, const Head &h) {
        for (int part = 0; part < (v.complex ? 2 : 1); ++part) {
            const Tag t = in_.next(v.path);
            if (unit_of(t.type) == 0)
                in_.fail(t.offset, v.path, "expected data, found type " + std::to_string(t.type));
            const uint64_t found = t.count / unit_of(t.type);
            if (t.count % unit_of(t.type) || (found != h.elements && t.type != oiUTF8))
                in_.fail(t.offset, v.path,
                         "expected " + std::to_string(h.elements) + " elements, found " +
                             std::to_string(found));
            in_.skip(t, v.path);
        }
    }

    void sparse_data(const Variable &v) {
        Tag t = in_.next(v.path);
        const uint64_t columns = v.size.size() == 2 ? v.size[1] + 1 : 0;
        if (unit_of(t.type) < 4 || t.count / unit_of(t.type) < columns)
            in_.fail(t.offset, v.path, "expected " + std::to_string(columns) + " column starts");
        in_.skip(t, v.path);
        for (int part = 0; part < (v.complex ? 2 : 1); ++part) {
            t = in_.next(v.path);
            if (unit_of(t.type) == 0)
                in_.fail(t.offset, v.path, "expected values, found type " + std::to_string(t.type));
            in_.skip(t, v.path);
        }
    }

    TagReader &in_;
    const Limits &limits_;
    const Visit &visit_;
};

} // namespace

std::string Fault::sentence() const {
    return "offset " + std::to_string(offset) + (inflated ? " of the decompressed element" : "") +
           (path.empty() ? "" : ", " + path) + ": " + what;
}

Walker::Walker(const InputFile &in, Form form, const Limits &limits)
    : in_(in), form_(form), limits_(limits), next_(form.header_size()) {}

bool Walker::next(Variable &v) {
    v = {};
    v.offset = next_;
    if (next_ >= in_.size()) return false;
    FileSource file(in_.file(), in_.size(), next_);
    TagReader outer(file, form_, in_.size());
    const Tag t = outer.next("");
    v.stored = v.bytes = outer.tag_size() + t.count;
    next_ += v.stored;
    const Visit ignore = [](const Variable &) {};
    const auto read_head = [&](TagReader &in) {
        ArrayWalk walk(in, limits_, ignore);
        walk.head(v);
        if (v.sparse) walk.count_stored(v);
    };
    v.compressed = (t.type & 0xFF) == oiCOMPRESSED;
    if (!v.compressed && t.type != oiMATRIX)
        outer.fail(t.offset, "", "expected an array, found type " + std::to_string(t.type));
    if (!v.compressed) {
        outer.set_end(next_);
        read_head(outer);
        return true;
    }
    InflatedSource inflated(in_.file(), t.count);
    TagReader inner(inflated, form_, ~uint64_t{0});
    const Tag array = inner.next("");
    if (array.type != oiMATRIX)
        inner.fail(0, "", "expected an array, found type " + std::to_string(array.type));
    v.bytes = inner.tag_size() + array.count;
    inner.set_end(v.bytes);
    read_head(inner);
    return true;
}

void Walker::walk(const Variable &v, const Visit &visit) {
    if (v.bytes > limits_.bytes)
        throw Fault{v.offset, v.path,
                    "expected at most " + std::to_string(limits_.bytes) + " bytes, found " +
                        std::to_string(v.bytes)};
    bool outermost = true;
    const Visit complete = [&](const Variable &inside) {
        visit(outermost ? v : inside);
        outermost = false;
    };
    FileSource file(in_.file(), in_.size(), v.offset);
    TagReader outer(file, form_, v.offset + v.stored);
    if (!v.compressed) return ArrayWalk(outer, limits_, complete).element("", 1);
    const Tag t = outer.next(v.path);
    InflatedSource inflated(in_.file(), t.count);
    TagReader inner(inflated, form_, v.bytes);
    ArrayWalk(inner, limits_, complete).element("", 1);
}

} // namespace vel
