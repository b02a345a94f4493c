// The one header copy under every kind of array copy.
#pragma once
#include <core/array.h>

namespace ox {

// Which dimensions the copy gets: those of the source, or 0-by-0.
enum class CopyDims { same, zero };

// A new header with every field of src, but: cross-link and 32-bit dimension cache null, reference
// count and scope 0, flags `clear` off, own dimension vector, and for struct and object one more
// reference to the field table. Data words are those of src; the copy is in no ring and on no
// list, so the caller must link or replace them before anything is destroyed. Null without memory.
oxArray *copy_header(const oxArray *src, uint32_t clear, CopyDims dims = CopyDims::same);

// Frees a header that was never given data of its own: dimension vector, table reference, record.
void discard_header(oxArray *a);

// The flags that no copy takes over.
inline constexpr uint32_t copy_clears = oxFLAG_EMPTY_BRACKET | oxFLAG_LIST_MARK |
                                        oxFLAG_HEADER_KEPT | oxFLAG_PRIVATE_DATA | oxFLAG_REUSABLE;
inline constexpr uint32_t empty_copy_clears = oxFLAG_SCALAR_DOUBLE | oxFLAG_EMPTY_BRACKET |
                                              oxFLAG_LIST_MARK | oxFLAG_PRIVATE_DATA |
                                              oxFLAG_REUSABLE;

// A header that shares the data of src: copied, and linked right after src when there are data (an
// indexing-opaque source shares through its class). On no list. Null without memory.
oxArray *share_header(oxArray *src);

// Moves src's class, dimensions, flags, data and ring place onto dst, which keeps its address,
// scope, reference count, list mark and kept-header flag. dst's old contents are released. An
// uncounted src is consumed; a counted one loses a reference and dst joins its ring (false without
// memory, dst then as before). A null src leaves dst unknown and 0-by-0.
bool move_onto_header(oxArray *dst, oxArray *src);

} // namespace ox
