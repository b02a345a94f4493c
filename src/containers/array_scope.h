// Giving an array to an owner: the scope that a container or a property gives its value.
#pragma once
#include <core/array.h>

namespace ox {

// Consumes a and returns the array that its new owner stores with that scope: a itself, a sharer of
// its data that already has the scope (one reference more), or a shared copy when others hold
// references to a. Null gives null; raises 18 without memory.
oxArray *with_scope(oxArray *a, int scope);

} // namespace ox
