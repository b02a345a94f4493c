// Whole files in and out.
#include "files.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vel {

std::string read_file(const std::string &path) {
    std::error_code ignored;
    std::ifstream in;
    std::ostringstream bytes;
    if (std::filesystem::is_directory(path, ignored))
        errno = EISDIR; // a folder can be opened, and reads as if it were empty
    else
        in.open(path, std::ios::binary);
    if (!in.is_open() || !(bytes << in.rdbuf()).good()) {
        if (in.is_open() && in.peek() == std::ifstream::traits_type::eof()) return {};
        throw Failure(Exit::io, path + ": cannot be read: " + std::strerror(errno));
    }
    return std::move(bytes).str();
}

} // namespace vel
