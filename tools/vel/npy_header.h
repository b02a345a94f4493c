// The header of an NPY file.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vel {

struct NpyHeader {
    std::string type; // as written: "<f8"
    bool by_columns = false;
    std::vector<size_t> shape;
    size_t data = 0; // offset of the data
};

NpyHeader parse_npy_header(std::string_view bytes, const std::string &name);
std::string make_npy_header(const std::string &type, const std::vector<size_t> &shape);

} // namespace vel
