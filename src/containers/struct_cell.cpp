// Structs as cells and back: the same values, laid out anew.
#include <containers/slots.h>
#include <containers/structs.h>
#include <core/array_list.h>
#include <core/create.h>

#include <cstring>
#include <limits>

namespace ox {
namespace {

// What a second container stores for a value; false without memory.
bool push_shared(SlotBlock &slots, oxArray *value) {
    oxArray *copy = value ? array_hooks.temporary_copy(value) : nullptr;
    slots.push(contained(copy));
    return copy || !value;
}

// The dimensions of c but d, in their order, padded to two; dims has room for ndims of them.
kwSize other_dimensions(const oxArray *c, kwSize d, kwSize *dims) {
    kwSize n = 0;
    for (kwSize k = 0; k < c->ndims || n < 2; ++k)
        if (k != d) dims[n++] = extent_along(c, k);
    while (d > 0 && n > 2 && dims[n - 1] == 1) --n;
    return n;
}

// Slot (element, field) of the struct is the value at subscript field of dimension d and the
// element's place in the others: s(i + p * o, f) = c(i + p * (f + fields * o)), p elements before
// d.
bool fill_fields(SlotBlock &slots, const oxArray *c, kwSize d, kwSize fields) {
    kwSize before = 1, after = 1;
    for (kwSize k = 0; k < c->ndims; ++k)
        (k < d ? before : after) *= k == d ? 1 : extent_along(c, k);
    for (kwSize o = 0; o < after; ++o)
        for (kwSize i = 0; i < before; ++i)
            for (kwSize f = 0; f < fields; ++f)
                if (!push_shared(slots, c->cell.slots[i + before * (f + fields * o)])) return false;
    return true;
}

} // namespace

oxArray *struct_to_cell(const oxArray *s) {
    auto dims = RawArray<kwSize>::make(s->ndims + 1);
    ArrayGuard c(make_header(oxCELL_CLASS, 0, 0));
    if (!dims || !c) return nullptr;
    dims[0] = static_cast<kwSize>(field_count(s));
    std::memcpy(dims.get() + 1, s->get_dimensions(), s->ndims * sizeof(kwSize));
    if (store_dimensions(c.get(), s->ndims + 1, dims.get()) != 0) return nullptr;
    const kwSize n = slot_count(s);
    if (n == 0) return c.release();
    SlotBlock slots(n);
    if (!slots) return nullptr;
    for (kwSize k = 0; k < n; ++k)
        if (!push_shared(slots, s->record.slots[k])) return nullptr;
    c->cell.slots = slots.release();
    return c.release();
}

oxArray *cell_to_struct(const oxArray *c, kwSize d, const char *const *names) {
    const kwSize fields = extent_along(c, d), n = c->get_number_of_elements();
    if (fields > static_cast<kwSize>(std::numeric_limits<int32_t>::max())) return nullptr;
    auto dims = RawArray<kwSize>::make(c->ndims + 1);
    ArrayGuard s(make_header(oxSTRUCT_CLASS, 0, 0));
    if (!dims || !s) return nullptr;
    const kwSize ndims = other_dimensions(c, d, dims.get());
    if (store_dimensions(s.get(), ndims, dims.get()) != 0) return nullptr;
    if (fields > 0) {
        s->record.names = make_field_table(static_cast<int32_t>(fields), names);
        if (!s->record.names) return nullptr;
    }
    if (n == 0) return s.release();
    SlotBlock slots(n);
    if (!slots || !fill_fields(slots, c, d, fields)) return nullptr;
    s->record.slots = slots.release();
    return s.release();
}

} // namespace ox
