// Files of all kinds, told apart by the ends of their names.
#pragma once
#include "arguments.h"
#include "vel_header.h"

#include <memory>
#include <ox.h>
#include <string>
#include <vector>

namespace vel {

// The arrays of a file, read one at a time so that no more than one need be in memory.
class Input {
public:
    virtual ~Input() = default;
    const std::vector<std::string> &names() const { return names_; }
    // An array: a temporary of the current context, or null for an empty slot. Throws Failure.
    virtual const oxArray *load(size_t k) = 0;

protected:
    std::vector<std::string> names_;
};

// Formats without names call their array by the name of the file. Throws Failure.
std::unique_ptr<Input> open_input(const std::string &path, const ReadOptions &options);
// Whether open_input knows the kind of file.
bool is_readable_kind(const std::string &path);

struct WriteOptions {
    Form form;             // of VEL files
    bool compress = false; // VEL and NPZ
};
// Throws Failure when the format cannot hold what it is given; no file appears then.
void write_all(const std::string &path, Input &in, const WriteOptions &options);

} // namespace vel
