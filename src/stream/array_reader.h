// The parts of reading an array element.
#pragma once
#include <core/array.h>
#include <stream/array_codec.h>
#include <stream/file_class.h>
#include <stream/input.h>

namespace ox {

inline constexpr kwSize name_limit = 63; // bytes of a name that are delivered

// What comes before the class-specific contents.
struct ArrayHead {
    FileClass file_class;
    uint32_t word;
    uint64_t capacity; // of a sparse array
    kwSize ndims;      // at least 2
    const kwSize *dims;
    kwSize elements; // for full arrays, within the limits
    bool complex;
};

// Allocates storage for `capacity` elements of `size` bytes and lets fetch(dst, n) fill the first
// n of them. As long as the bytes are not known to exist, what is allocated follows what has
// arrived. The tail is cleared. A status; *block is the caller's to free also when it fails.
template<class Fetch> int32_t read_block(const Input &in, kwSize n, kwSize capacity, kwSize size,
                                         void **block, Fetch &&fetch) {
    *block = nullptr;
    if (capacity == 0) return oiSUCCESS;
    kwSize room = in.backed() ? capacity : std::max<kwSize>(in.believed(capacity * size) / size, 1);
    for (kwSize done = 0;;) {
        void *moved = oxReallocEx(*block, room * size);
        if (!moved) return oiREFUSED;
        *block = moved;
        auto *bytes = static_cast<unsigned char *>(moved);
        const kwSize k = std::min(room, n) - done;
        if (const int32_t status = fetch(bytes + done * size, k)) return status;
        done += k;
        if (room == capacity) {
            std::memset(bytes + done * size, 0, (capacity - done) * size);
            return oiSUCCESS;
        }
        room = done == n ? capacity : std::min(capacity, 2 * room);
    }
}

// The elements of a full array of numbers, characters or truth values; those of a sparse one with
// its index vectors. The header has its class and dimensions. Statuses.
int32_t read_full(Input &in, const ArrayHead &head, oxArray *a);
int32_t read_sparse(Input &in, const ArrayHead &head, oxArray *a);

// All data of a sub-element: where they lie if they lie together, else in the copy. A status.
int32_t read_bytes(Input &in, SubElement &e, RawBlock *copy, const char **bytes);
// A byte sub-element cut to 63 bytes and terminated. A status.
int32_t read_name(Input &in, char *name);
// The field names of a struct, as the array's table. A status.
int32_t read_field_names(Input &in, oxArray *a);

// A new array of the named class filled from its contents; for a class that is not known here, the
// stand-in that keeps them. Consumes the contents. Null when the class layer is missing or refuses.
oxArray *load_opaque(oiStreamRec_tag *s, const char *class_name, oxArray *contents);

} // namespace ox
