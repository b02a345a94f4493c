// Matrices written out in a command line.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

// The double matrix that a word in brackets means. Throws Failure.
oxArray *parse_matrix(const std::string &word);

} // namespace vel
