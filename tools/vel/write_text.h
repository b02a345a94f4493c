// Arrays as text files for other programs: shortest numbers that read back equal, whatever the
// locale.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

// A real matrix, one row a line. Throws Failure (with the file's name) for other arrays.
std::string make_csv(const oxArray *a, char separator, const std::string &name);
// A 2-D array of numbers, general: coordinates for sparse arrays, patterns for sparse logical ones.
std::string make_matrix_market(const oxArray *a, const std::string &name);

} // namespace vel
