// Arrays as text files for other programs: shortest numbers that read back equal, whatever the
// locale.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

// A real matrix, one row a line. Throws Failure (with the file's name) for other arrays.
void write_csv(const oxArray *a, char separator, const std::string &path);
// A 2-D array of numbers, general: coordinates for sparse arrays, patterns for sparse logical ones.
void write_matrix_market(const oxArray *a, const std::string &path);

} // namespace vel
