// Copying between selected elements and a dense block, by element width.
#pragma once
#include <index/selection.h>

namespace ox {

// dst[0 .. count-1] = the selected elements of src, in order.
void gather(void *dst, const void *src, kwSize width, const Selection &from);
// The selected elements of dst = src[0 .. count-1]; the last one wins where positions repeat.
void scatter(void *dst, const void *src, kwSize width, const Selection &to);
// The selected elements of dst = *value.
void scatter_value(void *dst, const void *value, kwSize width, const Selection &to);

} // namespace ox
