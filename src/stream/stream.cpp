// The stream record: creation, disposal, and what does not depend on the carrier.
#include <core/alloc.h>
#include <core/destroy.h>
#include <core/tuning.h>
#include <ox/serialize.h>
#include <stream/carrier.h>

#include <algorithm>

namespace ox {
namespace {

// Whether the offset moves with the bytes: those of a compressed element are not the carrier's.
void advance(oiStreamRec_tag *s, kwSize n) {
    if (!is_packed(s)) s->offset += n;
}

} // namespace

bool valid_order(const oiStreamRec_tag *s) {
    return (s->indicator == oiNATIVE_INDICATOR && s->version == oiNATIVE_VERSION) ||
           (s->indicator == oiSWAPPED_INDICATOR && s->version == oiSWAPPED_VERSION);
}

oiStreamRec_tag *new_stream(uint32_t kind, uint16_t version, uint16_t indicator, uint16_t options) {
    auto *s = static_cast<oiStreamRec_tag *>(oxCallocEx(1, sizeof(oiStreamRec_tag)));
    if (!s) return nullptr;
    s->version = version ? version : oiNATIVE_VERSION;
    s->indicator = indicator ? indicator : oiNATIVE_INDICATOR;
    s->flags = kind | (options & (oiOPTION16 | oiWIDE));
    if ((options & (oiCOMPRESS | oiOPTION16)) == oiCOMPRESS) s->flags |= oiCOMPRESS;
    s->allocate = oxCallocEx;
    s->free = oxFreeEx;
    s->flag_words = s->flag_inline;
    s->dim_words = s->dim_inline;
    s->name = s->name_inline;
    return s;
}

void free_stream(oiStreamRec_tag *s) {
    oiDeallocateGzipString(s->gzip);
    oxFreeEx(s->staging);
    oxDestroyArray(s->subsystem);
    oxFreeEx(s);
}

unsigned char *staging_of(oiStreamRec_tag *s) {
    if (!s->staging) s->staging = static_cast<unsigned char *>(oxMallocEx(tuning::staging_bytes));
    return s->staging;
}

kwSize carrier_read(oiStreamRec_tag *s, void *dst, kwSize n) {
    if (n == 0) return 0;
    const kwSize moved = std::min(s->read(s, dst, n), n);
    advance(s, moved);
    return moved;
}

bool carrier_write(oiStreamRec_tag *s, const void *src, kwSize n) {
    if (n == 0) return true;
    const kwSize moved = std::min(s->write(s, src, n), n);
    advance(s, moved);
    return moved == n;
}

bool carrier_move(oiStreamRec_tag *s, kwSize offset) {
    s->offset = offset;
    return carrier_settle(s);
}

bool carrier_skip(oiStreamRec_tag *s, kwSize n) {
    if (n == 0) return true;
    if (!is_file(s)) {
        s->offset = n > ~s->offset ? ~uint64_t{0} : s->offset + n;
        return true;
    }
    if ((s->flags & oiFILE) && !is_packed(s))
        return n <= INT64_MAX - std::min<uint64_t>(s->offset, INT64_MAX) &&
               carrier_move(s, s->offset + n);
    unsigned char *room = staging_of(s);
    while (room && n > 0) {
        const kwSize piece = std::min(n, tuning::staging_bytes);
        if (carrier_read(s, room, piece) != piece) return false;
        n -= piece;
    }
    return n == 0;
}

} // namespace ox

using namespace ox;

extern "C" {

void *oiGetStreamPtr(const oiStreamRec_tag *s) { return s->handle; }
void oiSetStreamPtr(oiStreamRec_tag *s, void *handle) { s->handle = handle; }
kwSize oiGetStreamOffset(const oiStreamRec_tag *s) { return s->offset; }
void oiSetStreamOffset(oiStreamRec_tag *s, kwSize offset) { s->offset = offset; }
gzipString_tag *oiGetGzipString(const oiStreamRec_tag *s) { return s ? s->gzip : nullptr; }

oxArray *oiGetSubsystemData(oiStreamRec_tag *s) {
    oxArray *a = s->subsystem;
    if (!a || !is_struct_like(a)) return a;
    const uint32_t options = s->flags & (oiCOMPRESS | oiOPTION16 | oiWIDE);
    s->subsystem = oxSerializeEx(a, static_cast<uint16_t>(options));
    oxDestroyArray(a);
    return s->subsystem;
}

void oiSetSubsystemData(oiStreamRec_tag *s, oxArray *a) { s->subsystem = a; }

} // extern "C"
