// Elements inside compressed ones: the way in and out of the compressor.
#include <stream/items.h>

namespace ox {
namespace {

constexpr uint64_t nowhere = ~uint64_t{0}; // no position, so that the next move seeks

// The tag that encloses what was compressed, at the place kept for it.
bool write_outer_tag(oiStreamRec_tag *s, uint64_t count) {
    unsigned char bytes[16];
    const TagForm form = tag_form(s);
    build_tag(form, bytes, oiCOMPRESSED, count);
    return carrier_write(s, bytes, form.tag_size());
}

// Writes the element through the compressor; *length gets the compressed bytes. A status.
int32_t pack_item(oiStreamRec_tag *s, const Outgoing &o, int32_t *length) {
    static constexpr unsigned char zeros[8] = {};
    // The compressor leaves 8 bytes for the tag; a wide one needs 8 more.
    if (tag_form(s).wide && !carrier_write(s, zeros, sizeof zeros)) return oiSHORT_WRITE;
    if (!turn_to(s, Operation::write)) return oiSHORT_WRITE;
    if (gzipStringWriteInit(s->gzip, file_of(s)) == 0) return oiREFUSED;
    const int32_t status = write_item(s, o, s->offset);
    *length = gzipStringWriteClose(s->gzip);
    if (status != oiSUCCESS) return status;
    return *length < 0 ? oiBAD_ELEMENT : oiSUCCESS;
}

int32_t put_packed(oiStreamRec_tag *s, const oiItem_tag *item, kwSize offset) {
    Outgoing o;
    if (const int32_t status = prepare_item(s, item, &o)) return status;
    if (!carrier_move(s, offset)) return oiSHORT_WRITE;
    const int64_t told = s->ftell_fcn(file_of(s));
    const uint64_t start = told < 0 ? s->position : static_cast<uint64_t>(told);
    int32_t length = 0;
    const int32_t status = pack_item(s, o, &length);
    s->position = nowhere; // the compressor moved the file
    if (!carrier_move(s, start)) return status != oiSUCCESS ? status : oiSHORT_WRITE;
    if (status != oiSUCCESS) return status;
    const uint64_t end = start + tag_form(s).tag_size() + static_cast<uint64_t>(length);
    const bool written = write_outer_tag(s, static_cast<uint64_t>(length));
    return carrier_move(s, end) && written ? oiSUCCESS : oiSHORT_WRITE;
}

} // namespace

int32_t begin_unpacking(oiStreamRec_tag *s, uint64_t length) {
    if (!s->gzip || is_packed(s)) return oiREFUSED;
    if (length > INT32_MAX) return oiBAD_ELEMENT;
    if (!turn_to(s, Operation::read)) return oiSHORT_READ;
    if (gzipStringReadInit(s->gzip, file_of(s), static_cast<int32_t>(length)) == 0)
        return oiREFUSED;
    return oiSUCCESS;
}

// Decompression may stop before the end of the element's bytes.
int32_t end_unpacking(oiStreamRec_tag *s) {
    const uint64_t consumed = s->gzip->consumed, left = s->gzip->byte_count - consumed;
    gzipStringReadClose(s->gzip);
    s->offset += consumed;
    s->position += consumed;
    return carrier_skip(s, left) ? oiSUCCESS : oiSHORT_READ;
}

} // namespace ox

using namespace ox;

extern "C" {

int32_t oiPutItemAtCurrentOffsetWrapper(oiStreamRec_tag *s, const oiItem_tag *item) {
    return oiPutItemAtOffsetWrapper(s, item, s->offset);
}

int32_t oiPutItemAtOffsetWrapper(oiStreamRec_tag *s, const oiItem_tag *item, kwSize offset) {
    const bool packs =
        (s->flags & oiCOMPRESS) && (s->flags & oiFILE) && item->type == oiMATRIX && !is_packed(s);
    return packs ? put_packed(s, item, offset) : oiPutItem(s, item, &offset);
}

} // extern "C"
