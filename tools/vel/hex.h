// The bytes of elements, tag by tag.
#pragma once
#include "color.h"

#include <iosfwd>
#include <string>

namespace vel {

// The elements of a variable, or of a value inside of one: offsets, tags, counts, data and padding
// told apart by colour, long data cut in the middle. "" stands for the whole file. Throws Failure,
// after what could be read.
void print_hex(std::ostream &out, const std::string &path, const std::string &place, Depth depth);

} // namespace vel
