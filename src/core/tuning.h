// Every threshold and buffer size that callers cannot see, each with the value that the stress
// build uses to make rare paths common.
#pragma once
#include <ox/types.h>

namespace ox::tuning {

#if defined(OX_STRESS)
constexpr kwSize pick(kwSize, kwSize stress) { return stress; }
#else
constexpr kwSize pick(kwSize normal, kwSize) { return normal; }
#endif

// Results of at least this many bytes are written past the caches.
inline constexpr kwSize stream_min_bytes = pick(kwSize{8} << 20, 256);
// Separate runs shorter than this are copied through them all the same.
inline constexpr kwSize stream_min_run = pick(512, 16);

// Catenated parts are written together until their joint run has so many bytes.
inline constexpr kwSize join_bytes = pick(2048, 24);

// Bytes of one conversion step. Reading, and streaming past the caches, alternate step by step;
// short steps overlap better.
inline constexpr kwSize convert_block = pick(4096, 32);

// A transpose past the caches goes down this many rows before it takes the next columns; fewer
// where it needs a buffer of some lines for each.
inline constexpr kwSize transpose_rows = pick(4096, 64);
inline constexpr kwSize transpose_buffered_rows = pick(256, 64);

inline constexpr kwSize simd_min_elements = pick(64, 1); // below: the scalar twin is faster
inline constexpr kwSize compare_block = pick(512, 2);    // elements compared before the first look
inline constexpr kwSize row_map_share = pick(10, 2); // a row map may have so many rows a request
inline constexpr kwSize sparse_rebuild_columns = pick(8, 3); // columns assigned in one rebuild

// Field tables of at least this many names have a hash.
inline constexpr kwSize field_hash_min = pick(64, 4);

// Texts up to this many characters are converted once, into a buffer on the stack.
inline constexpr kwSize text_buffer = pick(1024, 4);
// ICU takes no more UTF-16 units than this in one call.
inline constexpr kwSize converter_units = pick(0x3fffffff, 3);

// Slots behind each slot in which the structure checker looks for the same element.
inline constexpr kwSize check_slot_window = 64;

// Streams: bytes gathered before they go to a carrier, and fetched at a time; what is larger than a
// piece goes straight from or to its place. Claims that the carrier cannot be asked about are
// believed for the first so many bytes, and then for twice what has arrived.
inline constexpr kwSize staging_bytes = pick(64 << 10, 512);
inline constexpr kwSize direct_bytes = pick(16 << 10, 128);
inline constexpr kwSize believed_bytes = pick(64 << 10, 64);
// A claim of at least so many bytes is compared with the length of a file that can tell it.
inline constexpr kwSize ask_length_bytes = pick(1 << 20, 256);

} // namespace ox::tuning
