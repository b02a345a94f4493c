// The seam through which the last-error record keeps the stack of an error, which is an array.
#pragma once
#include <ox/types.h>

namespace ox {

// Makes a copy that shares a's data, is on no list and belongs to the caller; null without memory.
using ShareErrorStack = oxArray *(*)(const oxArray *a);
// Installs the copying function; until then a record keeps no stack. Returns the previous one.
ShareErrorStack set_error_stack_share(ShareErrorStack fn);

} // namespace ox
