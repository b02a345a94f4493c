// Giving a header storage of its own: the operations of each class, and leaving the ring with it.
#pragma once
#include <core/array.h>
#include <core/class_ops.h>

namespace ox {

// Rows of the class table. Each replaces the data words of a by private copies, all or nothing:
// false without memory, a then as before.
bool unshare_numbers(oxArray *a); // full and sparse numbers, characters, truth values
bool unshare_slots(oxArray *a);   // elements are copied deeply and pass the contain hook
bool unshare_handles(oxArray *a);
bool unshare_opaque(oxArray *a);

// If a is in a ring: private storage for a, which then leaves the ring. False without memory, a
// then still in its ring.
bool own_storage(oxArray *a);
// The same for a container, but only the slot block is copied: the elements stay, each with one
// owner more.
bool own_slots(oxArray *a);

} // namespace ox
