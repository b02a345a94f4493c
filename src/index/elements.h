// What one element of an array is made of, and who owns elements that were copied as bytes.
#pragma once
#include <containers/field_table.h>
#include <core/class_table.h>

namespace ox {

// An element is `parts` neighbours of `width` bytes: one slot per field for structs, one part else.
struct ElementLayout {
    kwSize width;
    kwSize parts;
    kwSize bytes() const { return width * parts; }
};
inline ElementLayout element_layout(const oxArray *a) {
    return {class_info(a->class_code).element_size,
            is_struct_like(a) ? static_cast<kwSize>(field_count(a)) : 1};
}

// Whether copying the bytes of an element is all that there is to copying it.
inline bool elements_are_bytes(const oxArray *a) {
    return a->class_code <= oxUINT64_CLASS && !is_container(a);
}

// Elements of container classes, function handles and opaque arrays that were copied as bytes into
// data[0 .. n-1] (parts, not elements) become owned by the block: one more reference each, or a
// copy made by the class layer. a tells the class. Raises error 18 without memory, nothing in the
// block then is owned.
void own_copied_elements(const oxArray *a, void *data, kwSize n);

// Releases what the n parts own; the block itself stays.
void release_elements(const oxArray *a, void *data, kwSize n);

} // namespace ox
