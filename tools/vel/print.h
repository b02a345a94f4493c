// Arrays as text for people.
#pragma once
#include <ox.h>

#include <iosfwd>

namespace vel {

// A line that says class and size, then the elements as an aligned table; long and wide tables are
// cut in the middle.
void print_array(std::ostream &out, const char *name, const oxArray *a);

// "double 3x4", "sparse logical 5x5", "complex single 1x1".
std::string describe(const oxArray *a);

} // namespace vel
