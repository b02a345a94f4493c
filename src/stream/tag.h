// The tag of an element: its three forms, in both byte orders.
//
//   normal, 8 bytes    type 32 bits | count n 32 bits, data and padding to a multiple of 8 follow
//   wide, 16 bytes     type 32 bits | zero 32 bits | n 64 bits
//   small, same size   type 16 bits, n 16 bits | n data bytes in place of the count; n <= 4 or 8
// A swapped stream reverses each 32-bit word by itself. Deliberate: the halves of a 64-bit count
// are not exchanged, and the inline data of a small element are reversed in units of 2 or 4 bytes
// only, so that inline doubles and 64-bit integers stay in this machine's order.
#pragma once
#include <ox/stream.h>
#include <stream/byte_order.h>

namespace ox {

// Bytes of one unit of an element type when it is reversed; 1 for those that have no byte order.
constexpr kwSize type_unit(uint32_t type) {
    constexpr unsigned char units[] = {1, 1, 1, 2, 2, 4, 4, 4, 4, 8, 8, 8, 8, 8, 1, 1, 1, 2, 4};
    return type < sizeof units ? units[type] : 1;
}
// The same for inline data.
constexpr kwSize inline_unit(uint32_t type) {
    const kwSize unit = type_unit(type);
    return unit == 8 ? 1 : unit;
}
// Whether an item of the type may be read and written.
constexpr bool is_item_type(uint32_t type) {
    return (type >= 1 && type <= oiMATRIX) || type == oiUTF8 || type == oiUTF16;
}

inline constexpr kwSize prefix_bytes = 8; // at the start of a buffer

constexpr kwSize round8(kwSize n) { return (n + 7) & ~kwSize{7}; }
constexpr kwSize padding(kwSize n) { return -n & 7; }

// Which of the forms a stream uses.
struct TagForm {
    bool wide, swapped;

    kwSize tag_size() const { return wide ? 16 : 8; }
    kwSize small_limit() const { return wide ? 8 : 4; }
    bool is_small(kwSize n) const { return n >= 1 && n <= small_limit(); }
    // The element with its tag and padding.
    kwSize element_size(kwSize n) const { return tag_size() + (is_small(n) ? 0 : round8(n)); }
    // Bytes of one word of array flags and dimensions.
    kwSize word() const { return wide ? 8 : 4; }
    bool fits(kwSize n) const { return wide || n <= UINT32_MAX; }
};

inline TagForm tag_form(const oiStreamRec_tag *s) {
    return {(s->flags & oiWIDE) != 0, s->indicator != oiNATIVE_INDICATOR};
}

struct Tag {
    uint32_t type;
    bool small;
    uint64_t count;
    unsigned char inlined[8]; // the data of a small element
};

// Reads the bytes of one tag; false for a small element with too many data.
inline bool parse_tag(TagForm form, const unsigned char *bytes, Tag *tag) {
    uint32_t type = load<uint32_t>(bytes);
    if (form.swapped) type = reverse_bytes(type);
    const unsigned char *rest = bytes + form.tag_size() - form.small_limit();
    tag->small = type >> 16 != 0;
    uint64_t data = 0; // of a small element, or the count
    std::memcpy(&data, rest, form.small_limit());
    if (tag->small) {
        tag->type = type & 0xFFFF;
        tag->count = type >> 16;
        store(tag->inlined, form.swapped ? reverse_units(data, inline_unit(tag->type)) : data);
        return tag->count <= form.small_limit();
    }
    tag->type = type;
    if (form.swapped) data = reverse_units(data, 4);
    tag->count = form.wide ? data : load<uint32_t>(&data);
    return true;
}

// Writes the tag of n bytes in the normal or wide form and answers where the data follow.
inline unsigned char *build_tag(TagForm form, unsigned char *bytes, uint32_t type, uint64_t n) {
    store(bytes, type);
    if (form.wide) {
        store(bytes + 4, uint32_t{0});
        store(bytes + 8, n);
    } else {
        store(bytes + 4, static_cast<uint32_t>(n));
    }
    if (form.swapped)
        for (kwSize k = 0; k < form.tag_size(); k += 8)
            store(bytes + k, reverse_units(load<uint64_t>(bytes + k), 4));
    return bytes + form.tag_size();
}

// Writes a small element of n data bytes, all of its bytes.
inline unsigned char *build_small(TagForm form, unsigned char *bytes, uint32_t type,
                                  const void *data, kwSize n) {
    const uint32_t word = type | static_cast<uint32_t>(n) << 16;
    uint64_t inlined = 0;
    std::memcpy(&inlined, data, n);
    if (form.swapped) inlined = reverse_units(inlined, inline_unit(type));
    store(bytes, uint64_t{0});
    store(bytes, form.swapped ? reverse_bytes(word) : word);
    std::memcpy(bytes + form.tag_size() - form.small_limit(), &inlined, form.small_limit());
    return bytes + form.tag_size();
}

} // namespace ox
