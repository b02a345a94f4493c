// The class table: id, name, element size and properties of every element class, in one list.
#pragma once
#include <ox/types.h>

namespace ox {

struct ClassInfo {
    kwSize element_size; // bytes
    int32_t id;
    const char *name;
    bool numeric;   // may hold an imaginary part
    bool container; // elements are arrays
};

inline constexpr int class_count = 19;

// Deliberate: entry 5 stores id 0, so that the void class reads as unknown everywhere.
inline constexpr ClassInfo class_table[class_count] = {
    {0, 0, "unknown", false, false},
    {8, 1, "cell", false, true},
    {8, 2, "struct", false, true},
    {1, 3, "logical", false, false},
    {2, 4, "char", false, false},
    {0, 0, "", false, false},
    {8, 6, "double", true, false},
    {4, 7, "single", true, false},
    {1, 8, "int8", true, false},
    {1, 9, "uint8", true, false},
    {2, 10, "int16", true, false},
    {2, 11, "uint16", true, false},
    {4, 12, "int32", true, false},
    {4, 13, "uint32", true, false},
    {8, 14, "int64", true, false},
    {8, 15, "uint64", true, false},
    {32, 16, "function_handle", false, false},
    {8, 17, "opaque", false, false},
    {8, 18, "object", false, true},
};

// The table row of a class id: 0 for the hole at 5 and for every id without a row.
constexpr int class_index(int64_t id) {
    return id < 0 || id >= class_count || id == oxVOID_CLASS ? 0 : static_cast<int>(id);
}
constexpr const ClassInfo &class_info(int64_t id) { return class_table[class_index(id)]; }

// Whether the elements are numbers, characters or truth values.
constexpr bool holds_values(int64_t id) {
    return id == oxLOGICAL_CLASS || id == oxCHAR_CLASS || class_info(id).numeric;
}

} // namespace ox
