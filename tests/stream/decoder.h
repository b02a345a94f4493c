// A second reading of the stream's bytes, which shares nothing with the library's: it walks the
// bytes beside the array that they should hold and says where the two differ.
#pragma once
#include <support/stream_bytes.h>

#include <zlib.h>

#include <cstring>
#include <stdexcept>

namespace ox::test {

class Decoder {
public:
    Decoder(Bytes bytes, bool swapped, bool wide)
        : bytes_(std::move(bytes)), big_(swapped), wide_(wide) {}

    std::size_t position = 0;

    // Throws std::runtime_error at the first difference. The position moves behind the element,
    // padding included unless the element is compressed.
    void expect_array(const oxArray *a, const std::string &name) {
        const Element e = next();
        if (e.type != 15) return array(e, a, name);
        Bytes inner(2 << 20);
        auto length = static_cast<uLongf>(inner.size());
        const int status =
            uncompress(inner.data(), &length, &bytes_[e.at], static_cast<uLong>(e.n));
        require(status == Z_OK, "zlib stream");
        inner.resize(length);
        Decoder(inner, big_, wide_).expect_array(a, name);
        position = e.at + e.n;
    }

private:
    struct Element {
        uint64_t type, n;
        std::size_t at;
        bool small;
    };

    static void require(bool holds, const char *what) {
        if (!holds) throw std::runtime_error(what);
    }
    uint64_t number(std::size_t at, std::size_t size, bool big) const {
        uint64_t x = 0;
        for (std::size_t k = 0; k < size; ++k)
            x |= uint64_t{bytes_.at(at + k)} << 8 * (big ? size - 1 - k : k);
        return x;
    }
    uint64_t word(std::size_t at) const { return number(at, 4, big_); }
    // 64 bits are two words, low one first, whatever the order.
    uint64_t size_word(std::size_t at) const {
        return wide_ ? word(at) | word(at + 4) << 32 : word(at);
    }
    static std::size_t unit(uint64_t type) {
        if (type <= 2 || type == 16) return 1;
        if (type <= 4 || type == 17) return 2;
        return type <= 8 ? 4 : 8;
    }
    uint64_t value(const Element &e, std::size_t k) const {
        const std::size_t size = unit(e.type);
        return number(e.at + k * size, size, big_ && !(e.small && size == 8));
    }

    Element next() {
        const std::size_t tag = wide_ ? 16 : 8, half = tag / 2;
        const uint64_t w = word(position);
        Element e{w & 0xFFFF, w >> 16, position + half, w >> 16 != 0};
        if (e.small) {
            require(e.n <= half, "small element too long");
            for (std::size_t k = e.at + e.n; !big_ && k < position + tag; ++k)
                require(bytes_.at(k) == 0, "small element not padded with zeros");
            position += tag;
        } else {
            e = {w, size_word(position + half), position + tag, false};
            if (wide_) require(word(position + 4) == 0, "reserved bytes");
            position = e.at + e.n;
            require(e.n == 0 || e.n > half, "should be a small element");
            for (; e.type != 15 && (position - e.at) % 8 != 0; ++position)
                require(bytes_.at(position) == 0, "padding");
        }
        return e;
    }

    Element next(uint64_t type, uint64_t n, const char *what) {
        const Element e = next();
        require(e.type == type && e.n == n, what);
        return e;
    }

    std::string text() {
        const Element e = next();
        require(e.type == 1, "type of a text");
        return std::string(reinterpret_cast<const char *>(bytes_.data()) + e.at, e.n);
    }

    void array(const Element &outer, const oxArray *a, const std::string &name) {
        require(outer.type == 14, "an array element");
        if (outer.n == 0) return require(!a, "a null array");
        require(a != nullptr, "an array that is not null");
        position = outer.at;
        const std::size_t w = wide_ ? 8 : 4, ndims = oxGetNumberOfDimensions(a);
        const Element flags = next(6, 2 * w, "flags");
        expect_flags(size_word(flags.at), size_word(flags.at + w), a);
        const Element dims = next(5, w * ndims, "dimensions");
        for (std::size_t k = 0; k < ndims; ++k)
            require(size_word(dims.at + k * w) == oxGetDimensions(a)[k], "a dimension");
        require(text() == name, "name");
        contents(a);
        require(position == outer.at + outer.n, "length of the element");
    }

    static void expect_flags(uint64_t word, uint64_t capacity, const oxArray *a) {
        const bool logical = oxIsLogical(a), sparse = oxIsSparse(a);
        uint64_t number = static_cast<uint64_t>(oxIsObject(a) ? 3 : oxGetClassID(a));
        if (logical) number = 9;
        if (sparse && (logical || oxIsDouble(a))) number = 5;
        if (logical) number |= 0x200;
        if (oxIsFromGlobalWS(a)) number |= 0x400;
        if (oxIsComplex(a)) number |= 0x800;
        if (sparse) number |= 0x1000;
        require(word == number, "class number and bits");
        require(capacity == (sparse ? oxGetNzmax(a) : 0), "capacity");
    }

    void contents(const oxArray *a) {
        const kwSize n = oxGetNumberOfElements(a);
        if (oxIsSparse(a)) {
            const kwSize nnz = oxGetNumNonZeroEl(a);
            indices(oxGetIr(a), nnz);
            indices(oxGetJc(a), oxGetN(a) + 1);
            return numbers(a, nnz);
        }
        if (oxIsCell(a) || oxIsFunctionHandle(a)) {
            for (kwSize k = 0; k < n; ++k)
                array(next(), oxIsCell(a) ? oxGetCell(a, k) : nullptr, "");
            return;
        }
        if (!oxIsStruct(a)) return numbers(a, n);
        if (oxIsObject(a)) require(text() == oxGetClassName(a), "class name");
        fields(a);
        for (kwSize k = 0; k < n; ++k)
            for (int f = 0; f < oxGetNumberOfFields(a); ++f)
                array(next(), oxGetFieldByNumber(a, k, f), "");
    }

    void fields(const oxArray *a) {
        const std::size_t slot = value(next(5, 4, "slot length"), 0);
        const std::string names = text();
        require(names.size() == slot * static_cast<std::size_t>(oxGetNumberOfFields(a)), "names");
        for (int f = 0; f < oxGetNumberOfFields(a); ++f)
            require(names.c_str() + static_cast<std::size_t>(f) * slot ==
                        std::string(oxGetFieldNameByNumber(a, f)),
                    "a field name");
    }

    void indices(const kwIndex *index, kwSize n) {
        const Element e = next(wide_ ? 12 : 5, n * (wide_ ? 8 : 4), "an index vector");
        for (kwSize k = 0; k < n; ++k) require(value(e, k) == index[k], "an index");
    }

    void numbers(const oxArray *a, kwSize n) {
        static constexpr unsigned char types[] = {0, 0, 0, 2, 4, 0, 9, 7, 1, 2, 3, 4, 5, 6, 12, 13};
        part(oxGetData(a), n, oxIsChar(a) ? 0 : types[oxGetClassID(a)]);
        if (oxIsComplex(a)) part(oxGetImagData(a), n, types[oxGetClassID(a)]);
    }

    // Type 0: characters of any of the three types.
    void part(const void *data, kwSize n, uint64_t type) {
        const Element e = next();
        require(type ? e.type == type : e.type == 4 || e.type == 16 || e.type == 17, "stored type");
        require(e.n == n * unit(e.type), "number of elements");
        const std::size_t size = type ? unit(type) : 2;
        for (kwSize k = 0; k < n; ++k) {
            uint64_t x = 0;
            std::memcpy(&x, static_cast<const char *>(data) + k * size, size);
            require(value(e, k) == x, "a value");
            require(e.type != 16 || x < 128, "a character in one byte");
        }
    }

    Bytes bytes_;
    bool big_, wide_;
};

} // namespace ox::test
