// The header of an NPY file.
#pragma once
#include "source.h"

#include <string>
#include <vector>

namespace vel {

struct NpyHeader {
    std::string type; // as written: "<f8"
    bool by_columns = false;
    std::vector<size_t> shape;
};

// Leaves the source at the data. Throws Failure with the offset.
NpyHeader read_npy_header(SizedSource &in, const std::string &name);
// Of version 1.0, by columns.
std::string make_npy_header(const std::string &type, const std::vector<size_t> &shape);

} // namespace vel
