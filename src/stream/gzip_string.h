// The compressor's record.
#pragma once
#include <ox/stream.h>

#include <zlib.h>

struct gzipString_tag {
    z_stream z;             // deflate or inflate state
    FILE *file;             // the carrier
    uint64_t consumed;      // reading: compressed bytes taken from the file
    uint64_t byte_count;    // compressed bytes: of the element (reading), written so far (writing)
    uint64_t data_offset;   // reading: of the first compressed byte; writing: of the byte after 8
    uint64_t delivered;     // reading: decompressed bytes handed out
    uint64_t input_taken;   // writing: bytes passed to deflate
    uint64_t staged;        // bytes waiting in the staging buffer
    unsigned char reading;  // 1 while decompressing
    unsigned char writing;  // 1 while compressing
    unsigned char finished; // 1 after close
    unsigned char staging[8192]; // waiting for deflate (writing) or for inflate (reading)
    // The carrier's primitives, which survive the clearing; stdio's for an object made by itself.
    oiFreadFcn read_fcn;
    oiFwriteFcn write_fcn;
    oiFtellFcn tell_fcn;
};

namespace ox {

inline constexpr uint32_t gzip_block = sizeof gzipString_tag::staging;

inline bool is_compressing(const gzipString_tag *g) { return g && g->writing && !g->finished; }
inline bool is_decompressing(const gzipString_tag *g) { return g && g->reading && !g->finished; }

// Where the carrier stands; 0 where it cannot tell.
inline uint64_t gzip_position(const gzipString_tag *g) {
    const int64_t at = g->tell_fcn(g->file);
    return at < 0 ? 0 : static_cast<uint64_t>(at);
}

// Back to a new object for a file; deflate or inflate that was under way is ended first.
void gzip_clear(gzipString_tag *g, FILE *f);

} // namespace ox
