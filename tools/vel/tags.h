// Tags of elements as they lie in a file.
#pragma once
#include "source.h"
#include "walk.h"

namespace vel {

struct Tag {
    uint32_t type = 0;
    uint64_t count = 0;  // bytes of data
    uint64_t offset = 0; // of the tag
    bool small = false;  // the data are in the tag
    unsigned char data[8] = {};
    unsigned char raw[16] = {}; // as it lies in the file
};

// What follows the data of an element up to the next one.
uint64_t padding_of(const Tag &t);

// Bytes of one element of a type; 0 for types that hold no plain data.
size_t unit_of(uint32_t type);

// Elements one after the other, bounded by the element around them.
class TagReader {
public:
    TagReader(Source &in, Form form, uint64_t end) : in_(in), form_(form), end_(end) {}

    Tag next(const std::string &path);
    // Words of a flags or dimensions element, and the text of a name, whose tag was read last.
    std::vector<uint64_t> words(const Tag &t, const std::string &path);
    std::string text(const Tag &t, const std::string &path);
    void skip(const Tag &t, const std::string &path); // data and padding

    uint64_t at() const { return in_.at(); }
    uint64_t end() const { return end_; }
    void set_end(uint64_t end) { end_ = end; }
    size_t word() const { return form_.wide ? 8 : 4; }
    size_t tag_size() const { return form_.wide ? 16 : 8; }
    bool inflated() const { return in_.inflated(); }
    [[noreturn]] void fail(uint64_t offset, const std::string &path,
                           const std::string &what) const {
        throw Fault{offset, path, what, in_.inflated()};
    }

private:
    uint32_t load(const unsigned char *bytes) const;
    std::vector<unsigned char> data(const Tag &t, const std::string &path);

    Source &in_;
    Form form_;
    uint64_t end_;
};

} // namespace vel
