// How assignment grows an array, and changing the size of one in place.
#pragma once
#include <index/operands/extents.h>
#include <index/operands/subscript.h>

namespace ox {

// The dimensions after growth so that subscript k reaches position largest[k] (one-based, 0: none)
// of nsubs; false when nothing grows. With one subscript rows grow as rows, columns as columns, and
// a matrix by columns. Raises when the growing dimension is ambiguous: the last of fewer subscripts
// than dimensions, unless the array is 2-D.
bool grown_dimensions(const oxArray *a, const kwSize *largest, kwSize nsubs, Extents &dims);

// Private storage for a before its elements are written; false without memory. The elements of a
// container stay the same arrays.
bool own_for_writing(oxArray *a);

// Gives a full array these dimensions; elements keep their subscripts. New elements are zero (null
// slots), or the first element of filler converted to a's class; filler may be null. The block is
// reallocated where that keeps positions. Elements that go are released. Raises error 19 above the
// size limits and 18 without memory, a then as before.
void resize_array(oxArray *a, const Extents &dims, const oxArray *filler);

} // namespace ox
