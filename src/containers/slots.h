// The slots of cells, structs and objects: how many there are, and a block of them being built.
#pragma once
#include <containers/field_table.h>
#include <core/alloc.h>
#include <core/destroy.h>

namespace ox {

// One slot per element of a cell; one per element and field of a struct or object.
inline kwSize slot_count(const oxArray *a) {
    const kwSize n = a->get_number_of_elements();
    return is_struct_like(a) ? n * static_cast<kwSize>(field_count(a)) : n;
}

// Calls f(element) for every array that a container holds.
template<class F> void for_each_element(const oxArray *a, F &&f) {
    if (!a->cell.slots) return;
    const kwSize n = slot_count(a);
    for (kwSize i = 0; i < n; ++i)
        if (oxArray *e = a->cell.slots[i]) f(e);
}

// A zeroed slot block under construction: until release() it owns the elements that it was given
// and destroys them last first, also when a hook raises half way.
class SlotBlock {
public:
    explicit SlotBlock(kwSize n) : slots_(RawArray<oxArray *>::zeroed(n)) {}
    SlotBlock(const SlotBlock &) = delete;
    SlotBlock &operator=(const SlotBlock &) = delete;
    ~SlotBlock() {
        while (slots_ && filled_ > 0) oxDestroyArray(slots_[--filled_]);
    }
    explicit operator bool() const { return static_cast<bool>(slots_); }
    void push(oxArray *element) { slots_[filled_++] = element; }
    oxArray **release() { return slots_.release(); }

private:
    RawArray<oxArray *> slots_;
    kwSize filled_ = 0;
};

} // namespace ox
