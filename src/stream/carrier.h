// Moving bytes between a stream and its carrier, whatever that is.
#pragma once
#include <ox/stream.h>
#include <stream/gzip_string.h>
#include <stream/tag.h>

namespace ox {

inline bool is_file(const oiStreamRec_tag *s) { return (s->flags & (oiFILE | oiSEQUENTIAL)) != 0; }
// Whether the compressor stands between the stream and its file: for an element of the stream's own
// or because the caller started it.
inline bool is_packed(const oiStreamRec_tag *s) {
    return is_compressing(s->gzip) || is_decompressing(s->gzip);
}
inline FILE *file_of(const oiStreamRec_tag *s) { return static_cast<FILE *>(s->handle); }

// A zero-filled record of the kind with defaults in place and options and byte order checked and
// stored. Null without memory or for a bad pair.
oiStreamRec_tag *new_stream(uint32_t kind, uint16_t version, uint16_t indicator, uint16_t options);
// Whether the byte order that the record names is native or swapped.
bool valid_order(const oiStreamRec_tag *s);
// Frees the record and everything but its carrier.
void free_stream(oiStreamRec_tag *s);

// A file stream of either kind; the primitives are all given.
oiStreamRec_tag *new_file_stream(FILE *f, uint32_t kind, uint16_t version, uint16_t indicator,
                                 oiReserveFcn reserve, kwSize size, oiFreadFcn fread_fcn,
                                 oiFwriteFcn fwrite_fcn, oiFseekFcn fseek_fcn, oiFtellFcn ftell_fcn,
                                 uint16_t options);

// Moves up to n bytes at the current offset and past them; answers how many. Inside a compressed
// element the offset stays.
kwSize carrier_read(oiStreamRec_tag *s, void *dst, kwSize n);
// Moves n bytes; false when the carrier took fewer.
bool carrier_write(oiStreamRec_tag *s, const void *src, kwSize n);
// Brings a file that can seek to the stream's offset; the others are there.
bool carrier_settle(oiStreamRec_tag *s);
// The same for another offset: what is not a file only changes the offset.
bool carrier_move(oiStreamRec_tag *s, kwSize offset);
// Lets n bytes pass unread; false when there are fewer (files that seek do not notice).
bool carrier_skip(oiStreamRec_tag *s, kwSize n);
// What stdio demands between reading and writing; false when the seek fails.
enum class Operation : uint32_t { none = 0, read = 1, write = 2 };
bool turn_to(oiStreamRec_tag *s, Operation operation);

// Whether n more bytes are there for certain, as far as can be asked: a buffer knows, a file that
// seeks is asked for its length when the claim is large. None for "nobody knows".
enum class Backing { none, enough, too_few };
Backing carrier_backing(oiStreamRec_tag *s, kwSize n);

// The buffer whose bytes can be reached without the callbacks, or null.
unsigned char *plain_buffer_for_reading(const oiStreamRec_tag *s);
unsigned char *plain_buffer_for_writing(const oiStreamRec_tag *s);
// Asks the reserve callback for room at *offset; records the offset and the capacity. The caller
// promises to write the n bytes, so the default does not clear them.
int32_t reserve_room(oiStreamRec_tag *s, kwSize n, kwSize offset);

// The stream's block of tuning::staging_bytes; null without memory.
unsigned char *staging_of(oiStreamRec_tag *s);

} // namespace ox
