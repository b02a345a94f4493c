// Making struct arrays, and turning them into cells and back, as cores: they answer null without
// memory and are handed to no hook.
#pragma once
#include <containers/field_table.h>

namespace ox {

// As oxCreateStructMatrix and oxCreateStructArray describe them.
oxArray *make_struct(kwSize m, kwSize n, int32_t nfields, const char *const *names);
oxArray *make_struct_nd(kwSize ndim, const kwSize *dims, int32_t nfields, const char *const *names);

// The slot of field n of element i. Deliberate: i and n are not checked, and n = -1 is the slot
// before the element.
inline oxArray **field_slot(const oxArray *a, kwSize i, int32_t n) {
    const auto first = static_cast<std::ptrdiff_t>(i * static_cast<kwSize>(field_count(a)));
    return a->record.slots + (first + n);
}

// A cell of [fields, dimensions of s] holding the values of a struct or object.
oxArray *struct_to_cell(const oxArray *s);
// The struct whose fields are dimension d (from zero) of a cell, as many as names, and whose
// dimensions are the others. Where d is not the first, trailing dimensions of 1 go.
// Both share the values; null stays null. They may raise what the hooks raise.
oxArray *cell_to_struct(const oxArray *c, kwSize d, const char *const *names);

} // namespace ox
