// Paths into cells and structs: s.a{3}, t(2).b, counted from 1.
#pragma once
#include <ox.h>

#include <string>
#include <string_view>

namespace vel {

// The step from a container to the value in element i (field number field of a struct).
std::string step_label(const oxArray *container, size_t i, size_t field);

// The value that a path without its variable name leads to (null for an empty slot); "" is the
// array itself. Throws Failure, naming the file, the variable and the step that leads nowhere.
const oxArray *follow(const oxArray *a, std::string_view path, const std::string &file,
                      std::string_view variable = "");

} // namespace vel
