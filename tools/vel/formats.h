// Files of all kinds, told apart by the ends of their names.
#pragma once
#include "arguments.h"
#include "vel_header.h"

#include <ox.h>
#include <string>
#include <vector>

namespace vel {

struct Named {
    std::string name;
    const oxArray *value;
};

// Everything in a file: temporaries of the current context. Formats without names call their array
// by the name of the file. Throws Failure.
std::vector<Named> read_all(const std::string &path, const ReadOptions &options);
// Whether read_all knows the kind of file.
bool is_readable_kind(const std::string &path);

struct WriteOptions {
    Form form;             // of VEL files
    bool compress = false; // VEL and NPZ
};
// Throws Failure when the format cannot hold what it is given; no file appears then.
void write_all(const std::string &path, const std::vector<Named> &arrays,
               const WriteOptions &options);

} // namespace vel
