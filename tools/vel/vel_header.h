// The 64 bytes before the elements of a VEL file; docs/vel-file.md describes them.
#pragma once
#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

namespace vel {

// How the elements are written: their byte order is the other one, their tags have 64-bit counts.
struct Form {
    bool swapped = false, wide = false;
};

constexpr size_t header_size = 64;

std::array<char, header_size> make_header(Form form);

// Reads the header at the front of a file. Throws Failure when it is none.
Form read_header(FILE *f, const std::string &name);

} // namespace vel
