// The two process-wide objects that exist before the first array.
#pragma once
#include <cstddef>

namespace detail::matrix {

// Construct the foundation library's application object, and the pool of array headers, once;
// both are destroyed at unload. The argument is not used; both answer true.
bool init_application_init(int);
bool init_pool(int);

} // namespace detail::matrix

namespace ox {

// How many process-wide objects have been constructed.
int constructed_static_objects();

// Array headers allocated and not yet freed.
std::size_t live_headers();

} // namespace ox
