// The 64 bytes before the elements of a VEL file, or the last 8 of them before a serialised array;
// docs/vel-file.md describes them.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>

namespace vel {

// How the elements are written: their byte order is the other one, their tags have 64-bit counts.
struct Form {
    bool swapped = false, wide = false;
    bool bare = false; // a serialised array
    uint64_t header_size() const { return bare ? 8 : 64; }
};

std::string make_header(Form form);

bool is_bare(const std::string &path); // by the end of its name

// Reads the header at the front of a file. Throws Failure when it is none.
Form read_header(FILE *f, const std::string &name);

} // namespace vel
