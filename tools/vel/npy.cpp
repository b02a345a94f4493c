// NPY: the data after the header, in any order, to and from arrays.
#include "npy.h"

#include "elements.h"
#include "failure.h"
#include "npy_header.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vel {
namespace {

constexpr bool little = std::endian::native == std::endian::little;

struct Kind {
    const char *code; // kind and bytes of an element
    oxClassID id;
    bool complex;
};
constexpr Kind kinds[] = {
    {"b1", oxLOGICAL_CLASS, false}, {"i1", oxINT8_CLASS, false},   {"u1", oxUINT8_CLASS, false},
    {"i2", oxINT16_CLASS, false},   {"u2", oxUINT16_CLASS, false}, {"i4", oxINT32_CLASS, false},
    {"u4", oxUINT32_CLASS, false},  {"i8", oxINT64_CLASS, false},  {"u8", oxUINT64_CLASS, false},
    {"f4", oxSINGLE_CLASS, false},  {"f8", oxDOUBLE_CLASS, false}, {"c8", oxSINGLE_CLASS, true},
    {"c16", oxDOUBLE_CLASS, true},
};

const Kind &kind_of(const NpyHeader &h, const std::string &name) {
    for (const Kind &k : kinds)
        if (h.type.size() > 1 && h.type.substr(1) == k.code) return k;
    throw Failure(Exit::data, name + ": elements of type '" + h.type + "' are not supported");
}

size_t checked_count(const NpyHeader &h, size_t size, size_t room, const std::string &name) {
    size_t bytes = size;
    bool large = false;
    for (size_t n : h.shape) large |= __builtin_mul_overflow(bytes, n, &bytes);
    if (std::count(h.shape.begin(), h.shape.end(), 0u)) bytes = 0, large = false;
    if (large || bytes > room)
        throw Failure(Exit::data, name + ": offset " + std::to_string(h.data) +
                                      ": the shape takes " +
                                      (large ? "more than 2^64" : std::to_string(bytes)) +
                                      " bytes, the file has " + std::to_string(room));
    return bytes / size;
}

// Where the elements of a row-ordered file go, one after the other.
class RowOrder {
public:
    explicit RowOrder(const std::vector<size_t> &shape) : shape_(shape), at_(shape.size()) {}
    size_t next() {
        size_t place = 0, stride = 1;
        for (size_t d = 0; d < shape_.size(); ++d) place += at_[d] * stride, stride *= shape_[d];
        for (size_t d = shape_.size(); d-- > 0;) {
            if (++at_[d] < shape_[d]) break;
            at_[d] = 0;
        }
        return place;
    }

private:
    const std::vector<size_t> &shape_;
    std::vector<size_t> at_;
};

void load(char *to, const char *from, size_t size, bool swapped) {
    std::memcpy(to, from, size);
    if (swapped) std::reverse(to, to + size);
}

void fill(oxArray *a, const NpyHeader &h, const Kind &kind, std::string_view data, size_t count) {
    const size_t size = oxGetElementSize(a), step = size * (kind.complex ? 2 : 1);
    const bool swapped = size > 1 && (h.type[0] == '>') == little;
    auto *re = static_cast<char *>(oxGetData(a)), *im = static_cast<char *>(oxGetImagData(a));
    const bool in_place = h.by_columns || std::count_if(h.shape.begin(), h.shape.end(),
                                                        [](size_t n) { return n != 1; }) < 2;
    if (in_place && !kind.complex && !swapped) {
        if (count > 0) std::memcpy(re, data.data(), count * size);
    } else {
        RowOrder order(h.shape);
        for (size_t k = 0; k < count; ++k) {
            const size_t to = (in_place ? k : order.next()) * size;
            load(re + to, &data[k * step], size, swapped);
            if (kind.complex) load(im + to, &data[k * step + size], size, swapped);
        }
    }
    // Any byte but zero is true there; here a logical is 0 or 1.
    if (kind.id == oxLOGICAL_CLASS)
        for (size_t k = 0; k < count; ++k) re[k] = re[k] != 0;
}

} // namespace

oxArray *parse_npy(std::string_view bytes, const std::string &name) {
    const NpyHeader h = parse_npy_header(bytes, name);
    const Kind &kind = kind_of(h, name);
    const size_t size = oxGetElementSizeofClassID(kind.id) * (kind.complex ? 2 : 1);
    const std::string_view data = bytes.substr(h.data);
    const size_t count = checked_count(h, size, data.size(), name);
    std::vector<kwSize> dims(h.shape.begin(), h.shape.end());
    while (dims.size() < 2) dims.push_back(1);
    oxArray *a = kind.id == oxLOGICAL_CLASS
                     ? oxCreateLogicalArray(dims.size(), dims.data())
                     : oxCreateNumericArray(dims.size(), dims.data(), kind.id,
                                            kind.complex ? oxCOMPLEX : oxREAL);
    fill(a, h, kind, data, count);
    return a;
}

std::string make_npy(const oxArray *a, const std::string &name) {
    const auto kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind &k) {
        return k.id == oxGetClassID(a) && k.complex == oxIsComplex(a);
    });
    if (kind == std::end(kinds) || oxIsSparse(a))
        throw Failure(Exit::data, name + ": an NPY file holds no array like this: " +
                                      (oxIsSparse(a) ? "sparse" : oxGetClassName(a)));
    const char *order = oxGetElementSize(a) == 1 ? "|" : little ? "<" : ">";
    const kwSize *dims = oxGetDimensions(a);
    std::string out =
        make_npy_header(std::string(order) + kind->code, {dims, dims + oxGetNumberOfDimensions(a)});
    const size_t n = oxGetNumberOfElements(a), size = oxGetElementSize(a);
    const auto *re = static_cast<const char *>(oxGetData(a));
    if (!kind->complex) return n > 0 ? out.append(re, n * size) : out;
    const auto *im = static_cast<const char *>(oxGetImagData(a));
    for (size_t k = 0; k < n; ++k) out.append(re + k * size, size).append(im + k * size, size);
    return out;
}

std::string npy_bytes(std::string_view bytes, const std::string &name) {
    const NpyHeader h = parse_npy_header(bytes, name);
    if (h.type.size() < 2 || h.type[1] != 'S')
        throw Failure(Exit::data, name + ": expected bytes, found type '" + h.type + "'");
    return std::string(bytes.substr(h.data));
}

std::string make_npy_bytes(std::string_view text) {
    return make_npy_header("|S" + std::to_string(text.size()), {}) + std::string(text);
}

} // namespace vel
