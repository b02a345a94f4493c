// Tags of elements as they lie in a file.
#include "tags.h"

#include <cstring>

namespace vel {
namespace {

constexpr uint64_t most_words = 1 << 16; // a header of more dimensions is taken for nonsense

uint64_t padding(uint64_t count) { return (8 - count % 8) % 8; }

} // namespace

uint64_t padding_of(const Tag &t) {
    return t.small || t.type == oiCOMPRESSED ? 0 : padding(t.count);
}

size_t unit_of(uint32_t type) {
    constexpr unsigned char units[] = {0, 1, 1, 2, 2, 4, 4, 4, 4, 8, 8, 8, 8, 8, 0, 0, 1, 2, 4};
    return type < sizeof units ? units[type] : 0;
}

uint32_t TagReader::load(const unsigned char *bytes) const {
    uint32_t x;
    std::memcpy(&x, bytes, sizeof x);
    return form_.swapped ? __builtin_bswap32(x) : x;
}

Tag TagReader::next(const std::string &path) {
    Tag t;
    t.offset = in_.at();
    unsigned char *bytes = t.raw;
    if (tag_size() > end_ - t.offset || !in_.read(bytes, tag_size()))
        fail(t.offset, path,
             "expected a tag of " + std::to_string(tag_size()) +
                 " bytes, found the end of the data");
    const uint32_t kind = load(bytes);
    t.type = kind & 0xFFFF;
    t.small = kind >> 16 != 0;
    if (t.small) {
        t.count = kind >> 16;
        if (t.count > form_.wide * 4u + 4)
            fail(t.offset, path, "a small element of " + std::to_string(t.count) + " bytes");
        if (unit_of(t.type) == 0)
            fail(t.offset, path, "a small element of type " + std::to_string(t.type));
        std::memcpy(t.data, bytes + tag_size() / 2, word());
    } else if (form_.wide) {
        // Each half is swapped by itself; on a swapped stream too the low half comes first.
        t.count = load(bytes + 8) | uint64_t{load(bytes + 12)} << 32;
    } else {
        t.count = load(bytes + 4);
    }
    if (!t.small && t.count > end_ - in_.at())
        fail(t.offset, path,
             "expected at most " + std::to_string(end_ - in_.at()) +
                 " bytes of data, found a count of " + std::to_string(t.count));
    return t;
}

std::vector<unsigned char> TagReader::data(const Tag &t, const std::string &path) {
    if (t.small) return {t.data, t.data + t.count};
    if (t.count > most_words * 8)
        fail(t.offset, path, "a header part of " + std::to_string(t.count) + " bytes");
    std::vector<unsigned char> bytes(t.count);
    if (!in_.read(bytes.data(), bytes.size()) || !in_.skip(padding(t.count)))
        fail(in_.at(), path, "expected data, found the end of the file");
    return bytes;
}

std::vector<uint64_t> TagReader::words(const Tag &t, const std::string &path) {
    const std::vector<unsigned char> bytes = data(t, path);
    const size_t size =
        t.small ? 4 : word(); // one short word may travel in the tag of a wide stream
    std::vector<uint64_t> words;
    for (size_t at = 0; at + size <= bytes.size(); at += size) {
        uint64_t x = load(&bytes[at]);
        if (size == 8) x |= uint64_t{load(&bytes[at + 4])} << 32;
        words.push_back(x);
    }
    return words;
}

std::string TagReader::text(const Tag &t, const std::string &path) {
    const std::vector<unsigned char> bytes = data(t, path);
    return {bytes.begin(), bytes.end()};
}

void TagReader::skip(const Tag &t, const std::string &path) {
    if (t.small) return;
    if (!in_.skip(t.count + padding_of(t)))
        fail(in_.at(), path,
             "expected " + std::to_string(t.count) + " bytes of data, found the end of the file");
}

} // namespace vel
