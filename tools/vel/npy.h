// NPY: one array a file, a header in a small literal syntax before the data.
#pragma once
#include <ox.h>

#include <string>
#include <string_view>

namespace vel {

// Versions 1.0 to 3.0, both orders, both byte orders: numbers, booleans and complex numbers, as
// temporaries of the current context. A vector becomes a column. Throws Failure with the offset.
oxArray *parse_npy(std::string_view bytes, const std::string &name);

// Version 1.0 in this machine's byte order and column order; for full arrays of numbers.
std::string make_npy(const oxArray *a, const std::string &name);

// The text of a scalar of bytes (|S3), which NPZ files of sparse matrices hold.
std::string npy_bytes(std::string_view bytes, const std::string &name);
std::string make_npy_bytes(std::string_view text);

} // namespace vel
