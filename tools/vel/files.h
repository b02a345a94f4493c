// Whole files in and out.
#pragma once
#include <string>

namespace vel {

// The bytes of a file; throws Failure when it cannot be read.
std::string read_file(const std::string &path);

} // namespace vel
