// The commonest element at one glance: a full real matrix of numbers in a normal native stream. Its
// head is twelve words, and either side handles them together instead of one tag after the other.
//
//   6 8 class 0 | 5 8 m n | 1+length name | type bytes     then the data and their padding
// A name of at most four bytes is a small element and takes the same room as none.
#pragma once
#include <core/array.h>
#include <stream/array_codec.h>
#include <stream/file_class.h>

namespace ox {

struct PlainMatrix {
    static constexpr kwSize head_bytes = 48;
    uint32_t words[12];

    kwSize data_bytes() const { return words[11]; }
    // Of the whole element's data.
    kwSize bytes() const { return head_bytes + round8(data_bytes()); }
    int id() const { return static_cast<int>(words[2]); }
    kwSize rows() const { return words[6]; }
    kwSize columns() const { return words[7]; }
    kwSize name_length() const { return words[8] >> 16; }
};

inline bool is_plain_form(TagForm form) { return !form.wide && !form.swapped; }

// Whether the array, nested and therefore without a name, is written so; fills the head if it is.
// Data that fit a small element are not: they have no bytes of their own.
inline bool describe_plain(const oxArray *a, EncodeOptions options, PlainMatrix *p) {
    const int id = a->class_code;
    constexpr uint32_t odd = oxFLAG_SPARSE | oxFLAG_GLOBAL_WS | oxFLAG_INDEXING_OPAQUE;
    if (id < oxDOUBLE_CLASS || id > oxUINT64_CLASS || a->ndims != 2 || a->has_flag(odd) ||
        a->num.pimag || !a->num.pdata || !is_plain_form(options.form) || options.compact)
        return false;
    const kwSize m = a->mn[0], n = a->mn[1];
    kwSize bytes;
    if (m > INT32_MAX || n > INT32_MAX ||
        __builtin_mul_overflow(m * n, class_info(id).element_size, &bytes) || bytes <= 4 ||
        bytes > INT32_MAX)
        return false;
    *p = {{oiUINT32, 8, static_cast<uint32_t>(id), 0, oiINT32, 8, static_cast<uint32_t>(m),
           static_cast<uint32_t>(n), oiINT8, 0, natural_type(id), static_cast<uint32_t>(bytes)}};
    return true;
}

// Whether the `bytes` of an element's data begin with such a head that is right in every word and
// describes just as many; everything else is left to the full reading.
inline bool recognise_plain(const unsigned char *head, kwSize bytes, PlainMatrix *p) {
    constexpr uint32_t flags[2] = {oiUINT32, 8}, dims[2] = {oiINT32, 8};
    if (load<uint64_t>(head) != load<uint64_t>(flags) ||
        load<uint64_t>(head + 16) != load<uint64_t>(dims))
        return false;
    std::memcpy(p->words, head, sizeof p->words);
    const uint32_t *w = p->words;
    if (w[2] < oxDOUBLE_CLASS || w[2] > oxUINT64_CLASS || w[3] != 0 || (w[8] & 0xFFFF) != oiINT8 ||
        w[10] != natural_type(p->id()) || w[11] == 0)
        return false;
    if (p->name_length() == 0 ? w[9] != 0 : p->name_length() > 4) return false;
    const bool signs = w[6] <= INT32_MAX && w[7] <= INT32_MAX;
    kwSize data;
    return signs && p->bytes() == bytes &&
           !__builtin_mul_overflow(p->rows() * p->columns(), class_info(p->id()).element_size,
                                   &data) &&
           data == p->data_bytes();
}

} // namespace ox
