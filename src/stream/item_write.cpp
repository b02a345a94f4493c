// Writing one element.
#include <stream/items.h>

namespace ox {
namespace {

// Version, indicator, wide-tag mark and zero, in the stream's byte order.
bool write_prefix(oiStreamRec_tag *s) {
    const TagForm form = tag_form(s);
    uint16_t words[4] = {oiNATIVE_VERSION, oiNATIVE_INDICATOR, form.wide, 0};
    if (form.swapped) reverse_in_place(words, sizeof words, 2);
    if (!carrier_write(s, words, sizeof words)) return false;
    s->flags &= ~oiPREFIX_PENDING;
    return true;
}

int32_t write_data(oiStreamRec_tag *s, Output &out, const Outgoing &o) {
    const auto type = static_cast<uint32_t>(o.item->type);
    if (type != oiMATRIX) {
        out.put_element(type, o.item->data, o.bytes);
        return oiSUCCESS;
    }
    const auto *name = reinterpret_cast<const char *>(static_cast<uintptr_t>(o.item->name));
    out.put_tag(type, o.bytes);
    const auto *a = static_cast<const oxArray *>(o.item->data);
    const int32_t status = write_array(out, a, name, encode_options(s), o.measured);
    out.put_padding(o.bytes);
    return status;
}

} // namespace

int32_t prepare_item(oiStreamRec_tag *s, const oiItem_tag *item, Outgoing *out) {
    const auto type = static_cast<uint32_t>(item->type);
    if (!is_item_type(type)) return oiBAD_ELEMENT;
    out->item = item;
    out->bytes = item->count;
    if (type == oiMATRIX) {
        const auto *name = reinterpret_cast<const char *>(static_cast<uintptr_t>(item->name));
        const auto *a = static_cast<const oxArray *>(item->data);
        if (const int32_t status = measure_array(s, a, name, &out->measured)) return status;
        out->bytes = out->measured.bytes;
    } else if (!item->data && item->count > 0) {
        return oiBAD_ELEMENT;
    }
    return tag_form(s).fits(out->bytes) ? oiSUCCESS : oiSHORT_WRITE;
}

int32_t write_item(oiStreamRec_tag *s, const Outgoing &o, kwSize offset) {
    const TagForm form = tag_form(s);
    const bool pending = (s->flags & oiPREFIX_PENDING) != 0;
    // The padding is not in the request.
    const kwSize own = form.tag_size() + (form.is_small(o.bytes) ? 0 : o.bytes);
    kwSize room;
    if (__builtin_add_overflow(own, pending ? prefix_bytes : 0, &room) || own < o.bytes)
        return oiSHORT_WRITE;
    if (const int32_t status = reserve_room(s, room, offset)) return status;
    if (!carrier_settle(s) || (pending && !write_prefix(s))) return oiSHORT_WRITE;
    Output out(s);
    if (!out.begin(form.element_size(o.bytes))) return oiREFUSED;
    const int32_t status = write_data(s, out, o);
    if (!out.finish()) return is_packed(s) ? oiBAD_ELEMENT : oiSHORT_WRITE;
    return status;
}

} // namespace ox

using namespace ox;

extern "C" {

int32_t oiPutItem(oiStreamRec_tag *s, const oiItem_tag *item, kwSize *offset) {
    Outgoing o;
    if (const int32_t status = prepare_item(s, item, &o)) return status;
    const bool given = offset && *offset != oiCURRENT_OFFSET;
    const int32_t status = write_item(s, o, given ? *offset : s->offset);
    if (status == oiSUCCESS && offset) *offset = s->offset;
    return status;
}

} // extern "C"
