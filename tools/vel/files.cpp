// Whole files in and out.
#include "files.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

namespace vel {

std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    if (!in || !(bytes << in.rdbuf()).good()) {
        if (in && in.peek() == std::ifstream::traits_type::eof()) return {};
        throw Failure(Exit::io, path + ": cannot be read: " + std::strerror(errno));
    }
    return std::move(bytes).str();
}

} // namespace vel
