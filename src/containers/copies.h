// Copies as cores: they answer null without memory and are handed to no hook.
#pragma once
#include <core/array.h>

namespace ox {

// A header in a's ring (or beside a, when a has no data) that is on no list.
oxArray *shared_copy(const oxArray *a);
// An independent copy, containers with everything in them.
oxArray *deep_copy(const oxArray *a);
// The class and attributes of a, 0-by-0 and without data.
oxArray *empty_copy(const oxArray *a);
// The header of a with new storage of the same size, contents undefined but valid for release.
// The index vectors of a sparse copy are those of a.
oxArray *skeleton_copy(const oxArray *a, bool complex);

} // namespace ox
