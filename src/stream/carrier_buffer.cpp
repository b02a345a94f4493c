// The memory carrier: the default callbacks over a growing block, and the prefix.
#include <core/alloc.h>
#include <stream/carrier.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

// After a small element the next tag may begin anywhere, so the room for padding is 7 bytes.
constexpr kwSize padding_room = 7;

unsigned char *bytes_of(const oiStreamRec_tag *s) {
    return static_cast<unsigned char *>(s->handle);
}

kwSize left_at_offset(const oiStreamRec_tag *s, kwSize end) {
    return s->handle && s->offset < end ? end - s->offset : 0;
}

kwSize buffer_read(oiStreamRec_tag *s, void *dst, kwSize n) {
    n = std::min(n, left_at_offset(s, s->capacity));
    if (n > 0) std::memcpy(dst, bytes_of(s) + s->offset, n);
    return n;
}

int32_t buffer_reserve(oiStreamRec_tag *s, kwSize n, kwSize *offset, kwSize *capacity);

// The padding lies behind the capacity: other reserve callbacks leave room for it.
kwSize buffer_write(oiStreamRec_tag *s, const void *src, kwSize n) {
    const kwSize end = s->reserve == buffer_reserve ? s->physical : s->capacity + padding_room;
    n = std::min(n, left_at_offset(s, end));
    if (n > 0) std::memcpy(bytes_of(s) + s->offset, src, n);
    return n;
}

void drop_buffer(oiStreamRec_tag *s) {
    oxFreeEx(s->handle);
    s->handle = nullptr;
    s->physical = 0;
}

// What lies between the old end and `offset`, and behind the n bytes there, is new and cleared; so
// are the n bytes themselves unless they are about to be written. The first block is exact,
// growth doubles.
int32_t grow_buffer(oiStreamRec_tag *s, kwSize n, kwSize offset, kwSize *capacity, bool clear) {
    kwSize needed;
    if (__builtin_add_overflow(offset, n, &needed) || needed > ~kwSize{0} / 2) return oiREFUSED;
    const kwSize old = s->handle ? s->capacity : 0;
    if (needed + padding_room > s->physical || !s->handle) {
        const kwSize physical = std::max(round8(needed + padding_room), 2 * s->physical);
        void *block = oxReallocEx(s->handle, physical);
        if (!block) return oiREFUSED;
        s->handle = block;
        s->physical = physical;
    }
    unsigned char *bytes = bytes_of(s);
    if (clear && needed > old) std::memset(bytes + old, 0, needed - old);
    if (offset > old) std::memset(bytes + old, 0, offset - old);
    if (needed > old) std::memset(bytes + needed, 0, std::min(padding_room, s->physical - needed));
    *capacity = std::max(needed, old);
    return oiSUCCESS;
}

int32_t buffer_reserve(oiStreamRec_tag *s, kwSize n, kwSize *offset, kwSize *capacity) {
    if (n > 0) return grow_buffer(s, n, *offset, capacity, true);
    drop_buffer(s);
    *capacity = 0;
    return oiSUCCESS;
}

bool read_word(oiStreamRec_tag *s, uint16_t *word) {
    unsigned char bytes[2];
    if (carrier_read(s, bytes, 2) != 2) return false;
    *word = load<uint16_t>(bytes);
    return true;
}

// Takes over what the buffer's prefix says. A buffer without one is an empty stream.
void read_prefix(oiStreamRec_tag *s) {
    uint16_t version = 0, indicator = 0, mark = 0;
    if (!read_word(s, &version) || version == 0) {
        s->flags &= ~oiWIDE;
        s->offset = 0;
        return;
    }
    read_word(s, &indicator);
    read_word(s, &mark);
    s->version = version;
    s->indicator = indicator;
    if (mark != 0) s->flags |= oiWIDE;
    s->offset = prefix_bytes;
}

} // namespace

unsigned char *plain_buffer_for_reading(const oiStreamRec_tag *s) {
    return s->read == buffer_read ? bytes_of(s) : nullptr;
}
unsigned char *plain_buffer_for_writing(const oiStreamRec_tag *s) {
    return s->write == buffer_write && s->reserve == buffer_reserve ? bytes_of(s) : nullptr;
}

int32_t reserve_room(oiStreamRec_tag *s, kwSize n, kwSize offset) {
    kwSize at = offset, capacity = s->capacity;
    const bool plain = s->write == buffer_write && s->reserve == buffer_reserve;
    const int32_t status =
        plain ? grow_buffer(s, n, offset, &capacity, false) : s->reserve(s, n, &at, &capacity);
    if (status != oiSUCCESS) return status;
    s->capacity = capacity;
    s->offset = at;
    return oiSUCCESS;
}

} // namespace ox

using namespace ox;

extern "C" {

oiStreamRec_tag *oiCreateBufferStream(void *buffer, uint16_t version, uint16_t indicator,
                                      oiReserveFcn reserve, oiReadFcn read, oiWriteFcn write,
                                      kwSize size, uint16_t options) {
    oiStreamRec_tag *s = new_stream(oiBUFFER, version, indicator, options);
    if (!s) return nullptr;
    s->reserve = reserve ? reserve : buffer_reserve;
    s->read = read ? read : buffer_read;
    s->write = write ? write : buffer_write;
    s->size = size;
    s->handle = buffer;
    if (buffer) {
        s->capacity = s->physical = size;
        read_prefix(s);
    }
    if (s->offset == 0) s->flags |= oiPREFIX_PENDING;
    if (!valid_order(s)) {
        s->handle = nullptr; // stays the caller's
        oiDisposeBufferStream(s);
        return nullptr;
    }
    return s;
}

void oiDisposeBufferStream(oiStreamRec_tag *s) {
    if (!s) return;
    kwSize offset = 0, capacity = 0;
    if (s->handle) s->reserve(s, 0, &offset, &capacity);
    free_stream(s);
}

void oiResetBufferStream(oiStreamRec_tag *s) {
    s->offset = 0;
    s->flags |= oiPREFIX_PENDING;
}

} // extern "C"
