// NPZ: a ZIP archive of NPY files.
#pragma once
#include "formats.h"

namespace vel {

// One variable a member. The members that a sparse matrix is saved as (format csc or csr) are read
// as one sparse array named "sparse"; one sparse array alone is written that way.
std::vector<Named> read_npz(const std::string &path);
std::string make_npz(const std::vector<Named> &arrays, const std::string &path, bool compress);

} // namespace vel
