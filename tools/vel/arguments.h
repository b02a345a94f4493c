// What the words of a command line mean as arrays.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

// A number, a matrix in brackets such as [1 2;3 4], or the name of a CSV file: a temporary of the
// current context. Throws Failure with a sentence for anything else.
oxArray *parse_argument(const std::string &word);

} // namespace vel
