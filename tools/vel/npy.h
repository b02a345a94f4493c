// NPY: one array a file, a header in a small literal syntax before the data.
#pragma once
#include "source.h"

#include <ox.h>

#include <string>
#include <string_view>
#include <vector>

namespace vel {

// Versions 1.0 to 3.0, both orders, both byte orders: numbers, booleans and complex numbers, as
// temporaries of the current context. A vector becomes a column. Throws Failure with the offset.
oxArray *read_npy(SizedSource &in, const std::string &name);

// The bytes of an NPY file piece by piece, without a copy of the data: version 1.0, this machine's
// byte order, by columns.
class NpyPieces {
public:
    // Of a full array of numbers, which must stay alive; throws Failure for others.
    NpyPieces(const oxArray *a, const std::string &name);
    // Of a vector of one dimension.
    NpyPieces(oxClassID id, const void *re, const void *im, size_t n);
    // Of a scalar of bytes (|S3), which archives of sparse matrices hold.
    explicit NpyPieces(std::string_view text);

    std::string_view next(); // empty at the end

private:
    void begin(oxClassID id, const void *re, const void *im, const std::vector<size_t> &shape);

    std::string piece_; // the header, later interleaved numbers
    const char *re_ = nullptr, *im_ = nullptr;
    size_t size_ = 1, count_ = 0, done_ = 0;
    bool header_given_ = false;
};

// The text of a scalar of bytes.
std::string read_npy_bytes(SizedSource &in, const std::string &name);

} // namespace vel
