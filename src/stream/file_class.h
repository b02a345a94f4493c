// How classes and element types are numbered in the stream, which is not how the record does it.
#pragma once
#include <core/class_table.h>
#include <ox/stream.h>

namespace ox {

// Bits of the first word of array flags, beside the class number in its low byte.
inline constexpr uint32_t file_logical = 0x200, file_global = 0x400, file_complex = 0x800,
                          file_sparse = 0x1000;
inline constexpr int file_object = 3, file_sparse_class = 5, file_logical_class = oxUINT8_CLASS;

// The element type that a class is stored as.
constexpr uint32_t natural_type(int id) {
    constexpr unsigned char types[class_count] = {oiDOUBLE, 0,        0,        oiUINT8,  oiUINT16,
                                                  0,        oiDOUBLE, oiSINGLE, oiINT8,   oiUINT8,
                                                  oiINT16,  oiUINT16, oiINT32,  oiUINT32, oiINT64,
                                                  oiUINT64, 0,        0,        0};
    return types[class_index(id)];
}

// The class whose elements an element type is made of; 0 for types that arrays are not stored as.
constexpr int type_class(uint32_t type) {
    constexpr unsigned char classes[] = {0,
                                         oxINT8_CLASS,
                                         oxUINT8_CLASS,
                                         oxINT16_CLASS,
                                         oxUINT16_CLASS,
                                         oxINT32_CLASS,
                                         oxUINT32_CLASS,
                                         oxSINGLE_CLASS,
                                         0,
                                         oxDOUBLE_CLASS,
                                         0,
                                         0,
                                         oxINT64_CLASS,
                                         oxUINT64_CLASS};
    return type < sizeof classes ? classes[type] : 0;
}

// What an array's flags mean here.
struct FileClass {
    int id;
    bool sparse, known;
};

constexpr FileClass read_file_class(uint32_t word) {
    const int number = static_cast<int>(word & 0xFF);
    const bool logical = (word & file_logical) != 0, sparse = (word & file_sparse) != 0;
    if (number == file_sparse_class)
        return {sparse && logical ? oxLOGICAL_CLASS : oxDOUBLE_CLASS, true, true};
    if (number == file_logical_class && logical) return {oxLOGICAL_CLASS, sparse, true};
    if (number == file_object) return {oxOBJECT_CLASS, false, true};
    const bool known = number < class_count && number != oxOBJECT_CLASS;
    return {known ? number : 0, sparse && class_info(number).numeric, known};
}

// The class number and the bits that go with it.
constexpr uint32_t write_file_class(int id, bool sparse) {
    if (id == oxOBJECT_CLASS) return file_object;
    const uint32_t bits = (id == oxLOGICAL_CLASS ? file_logical : 0) | (sparse ? file_sparse : 0);
    if (sparse && (id == oxDOUBLE_CLASS || id == oxLOGICAL_CLASS)) return file_sparse_class | bits;
    return static_cast<uint32_t>(id == oxLOGICAL_CLASS ? file_logical_class : id) | bits;
}

} // namespace ox
