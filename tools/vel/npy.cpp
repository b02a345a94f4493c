// NPY: the data after the header, in any order, to and from arrays.
#include "npy.h"

#include "failure.h"
#include "npy_header.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace vel {
namespace {

constexpr bool little = std::endian::native == std::endian::little;
constexpr size_t piece_bytes = size_t{64} << 10;

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

const Kind *kind_of(oxClassID id, bool complex) {
    for (const Kind &k : kinds)
        if (k.id == id && k.complex == complex) return &k;
    return nullptr;
}

size_t checked_count(const NpyHeader &h, size_t size, const SizedSource &in,
                     const std::string &name) {
    size_t bytes = size;
    bool large = false;
    for (size_t n : h.shape) large |= __builtin_mul_overflow(bytes, n, &bytes);
    if (std::count(h.shape.begin(), h.shape.end(), 0u)) bytes = 0, large = false;
    if (large || bytes > in.left())
        throw Failure(Exit::data, name + ": offset " + std::to_string(in.at()) +
                                      ": the shape takes " +
                                      (large ? "more than 2^64" : std::to_string(bytes)) +
                                      " bytes, the file has " + std::to_string(in.left()));
    return bytes / size;
}

// Where the elements of a row-ordered file go, one after the other.
class RowOrder {
public:
    explicit RowOrder(const std::vector<size_t> &shape) : shape_(shape), at_(shape.size()) {
        for (size_t d = 0, stride = 1; d < shape.size(); stride *= shape[d++])
            strides_.push_back(stride);
    }
    size_t next() {
        const size_t place = place_;
        for (size_t d = shape_.size(); d-- > 0;) {
            place_ += strides_[d];
            if (++at_[d] < shape_[d]) break;
            place_ -= strides_[d] * shape_[d];
            at_[d] = 0;
        }
        return place;
    }

private:
    const std::vector<size_t> &shape_;
    std::vector<size_t> at_, strides_;
    size_t place_ = 0;
};

// The data after the header, by way of a small buffer unless they lie in the file as in memory.
class Filler {
public:
    Filler(SizedSource &in, const NpyHeader &h, const Kind &kind, const std::string &name)
        : in_(in), shape_(h.shape), kind_(kind), name_(name),
          swapped_((h.type[0] == '>') == little) {
        in_place_ = h.by_columns || std::count_if(h.shape.begin(), h.shape.end(),
                                                  [](size_t n) { return n != 1; }) < 2;
    }

    void fill(oxArray *a, size_t count) {
        re_ = static_cast<char *>(oxGetData(a)), im_ = static_cast<char *>(oxGetImagData(a));
        switch (oxGetElementSize(a)) {
        case 1:
            return fill<uint8_t>(count);
        case 2:
            return fill<uint16_t>(count);
        case 4:
            return fill<uint32_t>(count);
        default:
            return fill<uint64_t>(count);
        }
    }

private:
    template<class Word> void fill(size_t count) {
        auto *re = reinterpret_cast<Word *>(re_), *im = reinterpret_cast<Word *>(im_);
        if (in_place_ && !im) {
            read(re, count * sizeof(Word));
            arrange(re, count);
            return;
        }
        RowOrder order(shape_);
        std::vector<Word> piece(piece_bytes / sizeof(Word));
        const size_t step = im ? 2 : 1;
        for (size_t k = 0; k < count;) {
            const size_t now = std::min(count - k, piece.size() / step);
            read(piece.data(), now * step * sizeof(Word));
            arrange(piece.data(), now * step);
            for (size_t s = 0; s < now; ++s, ++k) {
                const size_t to = in_place_ ? k : order.next();
                re[to] = piece[s * step];
                if (im) im[to] = piece[s * step + 1];
            }
        }
    }
    // Into this machine's byte order. Any byte but zero is true there; here a logical is 0 or 1.
    template<class Word> void arrange(Word *p, size_t n) const {
        if (kind_.id == oxLOGICAL_CLASS)
            for (size_t k = 0; k < n; ++k) p[k] = p[k] != 0;
        if (!swapped_ || sizeof(Word) == 1) return;
        for (size_t k = 0; k < n; ++k) p[k] = swap(p[k]);
    }
    static uint8_t swap(uint8_t x) { return x; }
    static uint16_t swap(uint16_t x) { return __builtin_bswap16(x); }
    static uint32_t swap(uint32_t x) { return __builtin_bswap32(x); }
    static uint64_t swap(uint64_t x) { return __builtin_bswap64(x); }

    void read(void *to, size_t n) {
        if (!in_.read(to, n))
            throw Failure(Exit::io, name_ + ": offset " + std::to_string(in_.at()) +
                                        ": the data cannot be read");
    }

    SizedSource &in_;
    const std::vector<size_t> &shape_;
    const Kind &kind_;
    const std::string &name_;
    bool swapped_, in_place_;
    char *re_ = nullptr, *im_ = nullptr;
};

} // namespace

oxArray *read_npy(SizedSource &in, const std::string &name) {
    const NpyHeader h = read_npy_header(in, name);
    const Kind &kind = kind_of(h, name);
    const size_t size = oxGetElementSizeofClassID(kind.id) * (kind.complex ? 2 : 1);
    const size_t count = checked_count(h, size, in, name);
    std::vector<kwSize> dims(h.shape.begin(), h.shape.end());
    while (dims.size() < 2) dims.push_back(1);
    oxArray *a = kind.id == oxLOGICAL_CLASS
                     ? oxCreateLogicalArray(dims.size(), dims.data())
                     : oxCreateNumericArray(dims.size(), dims.data(), kind.id,
                                            kind.complex ? oxCOMPLEX : oxREAL);
    if (count > 0) Filler(in, h, kind, name).fill(a, count);
    return a;
}

std::string read_npy_bytes(SizedSource &in, const std::string &name) {
    const NpyHeader h = read_npy_header(in, name);
    if (h.type.size() < 2 || h.type[1] != 'S')
        throw Failure(Exit::data, name + ": expected bytes, found type '" + h.type + "'");
    std::string text(std::min<uint64_t>(in.left(), 64), '\0'); // the words that it may be are short
    in.read(text.data(), text.size());
    return text;
}

NpyPieces::NpyPieces(const oxArray *a, const std::string &name) {
    if (!a || oxIsSparse(a) || !kind_of(oxGetClassID(a), oxIsComplex(a)))
        throw Failure(Exit::data, name + ": an NPY file holds no array like this: " +
                                      (!a              ? "an empty slot"
                                       : oxIsSparse(a) ? "sparse"
                                                       : oxGetClassName(a)));
    const kwSize *dims = oxGetDimensions(a);
    begin(oxGetClassID(a), oxGetData(a), oxIsComplex(a) ? oxGetImagData(a) : nullptr,
          {dims, dims + oxGetNumberOfDimensions(a)});
}

NpyPieces::NpyPieces(oxClassID id, const void *re, const void *im, size_t n) {
    begin(id, re, im, {n});
}

NpyPieces::NpyPieces(std::string_view text)
    : piece_(make_npy_header("|S" + std::to_string(text.size()), {}) + std::string(text)) {}

void NpyPieces::begin(oxClassID id, const void *re, const void *im,
                      const std::vector<size_t> &shape) {
    re_ = static_cast<const char *>(re), im_ = static_cast<const char *>(im);
    size_ = oxGetElementSizeofClassID(id);
    count_ = 1;
    for (size_t n : shape) count_ *= n;
    const char *order = size_ == 1 ? "|" : little ? "<" : ">";
    piece_ = make_npy_header(std::string(order) + kind_of(id, im != nullptr)->code, shape);
}

std::string_view NpyPieces::next() {
    if (!std::exchange(header_given_, true)) return piece_;
    const size_t left = count_ - done_, first = done_ * size_;
    if (!im_) {
        done_ = count_;
        return {re_ + first, left * size_};
    }
    const size_t now = std::min(left, piece_bytes / (2 * size_));
    piece_.resize(now * 2 * size_);
    for (size_t k = 0; k < now; ++k) {
        std::memcpy(&piece_[2 * k * size_], re_ + first + k * size_, size_);
        std::memcpy(&piece_[(2 * k + 1) * size_], im_ + first + k * size_, size_);
    }
    done_ += now;
    return piece_;
}

} // namespace vel
