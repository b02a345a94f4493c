// Reference as a core: results are handed to no hook.
#pragma once
#include <core/array.h>
#include <index/selection.h>

namespace ox {

// A(subs) of any array, not handed over. Raises for bad subscripts, sizes and lack of memory.
oxArray *reference(const oxArray *a, kwSize nsubs, const oxArray *const *subs);

// The selected elements as a new array of a's class with these dimensions; a is full and does not
// do its own indexing.
oxArray *gather_array(const oxArray *a, const Selection &from, const Extents &dims);

} // namespace ox
