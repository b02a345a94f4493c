// Values as JSON; docs/vel-file.md describes the form.
#pragma once
#include <nlohmann/json.hpp>
#include <ox.h>

namespace vel {

using Json = nlohmann::json;

// Beyond 2^53 a string: many readers keep numbers as doubles.
Json json_integer(uint64_t x);
// NaN, Inf and -Inf are strings.
Json json_number(double x);

// The text of a value, whatever bytes are in its strings, and a line end; a row of numbers is one
// line.
std::string json_text(const Json &j);

// A whole array; null for an empty slot.
Json json_array(const oxArray *a);

} // namespace vel
