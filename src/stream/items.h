// Reading and writing one element, behind the exported item functions.
#pragma once
#include <stream/array_codec.h>

namespace ox {

enum class Want { anything, array, array_header };

// The element at the stream's offset. A status.
int32_t get_item(oiStreamRec_tag *s, oiItem_tag *item, Want want);
inline int32_t get_item_at(oiStreamRec_tag *s, oiItem_tag *item, kwSize offset, Want want) {
    if (offset != oiCURRENT_OFFSET && offset != s->offset && !carrier_move(s, offset))
        return oiSHORT_READ;
    return get_item(s, item, want);
}

// One tag in the stream's form. A status.
int32_t get_tag(oiStreamRec_tag *s, Tag *tag);

// An element that is about to be written: checked and measured.
struct Outgoing {
    const oiItem_tag *item;
    kwSize bytes;
    Measured measured;
};
int32_t prepare_item(oiStreamRec_tag *s, const oiItem_tag *item, Outgoing *out);
// Writes it at the offset; the stream then stands behind it. A status.
int32_t write_item(oiStreamRec_tag *s, const Outgoing &out, kwSize offset);

// Starts reading the `length` bytes of a compressed element that begin at the stream's offset, and
// ends it: the stream then stands behind them. Statuses.
int32_t begin_unpacking(oiStreamRec_tag *s, uint64_t length);
int32_t end_unpacking(oiStreamRec_tag *s);
// Inflating makes at most so many bytes of one.
inline constexpr uint64_t inflate_ratio = 1032;

} // namespace ox
