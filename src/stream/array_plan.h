// What an array element will consist of, decided once for measuring and writing alike.
#pragma once
#include <core/name_index.h>
#include <stream/array_codec.h>

namespace ox {

// Numbers that become one sub-element.
struct NumberPart {
    // Null: the bytes as they are. Otherwise stores n source elements, from the first on, as
    // elements of the type; dst need not be aligned.
    void (*store)(unsigned char *dst, const void *src, kwSize first, kwSize n);
    const void *data;
    uint32_t type, size; // size of one stored element
    kwSize count;

    kwSize bytes() const { return count * size; }
};

struct ArrayPlan {
    uint64_t words[2]; // flags, capacity
    bool has_dims = true;
    const char *class_name = nullptr; // of objects and opaque arrays
    bool has_fields = false;          // names are those of the array's field table
    kwSize slot_length = 0;           // of each name
    int nparts = 0;
    NumberPart parts[4];
    // Nested elements: `slots` of them, all null if there is no block; `contents` stands for a
    // block of one.
    bool nests = false;
    kwSize nslots = 0;
    oxArray *const *slots = nullptr;
    oxArray *contents = nullptr;
};

enum class PlanPass { measuring, writing };

// Fills the plan. A status: what the stream cannot hold is refused here. The measuring pass leaves
// nested contents of opaque arrays to the caller.
int32_t plan_array(const oxArray *a, EncodeOptions options, PlanPass pass, ArrayPlan *plan);

} // namespace ox
