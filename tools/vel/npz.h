// NPZ: a ZIP archive of NPY files.
#pragma once
#include "formats.h"

namespace vel {

// One variable a member. The members that a sparse matrix is saved as (format csc, csr or coo) are
// read as one sparse array named "sparse"; one sparse array alone is written that way.
std::unique_ptr<Input> open_npz(const std::string &path, bool force);
void write_npz(Input &in, const std::string &path, bool compress);

} // namespace vel
