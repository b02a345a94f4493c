// Where two arrays differ.
#pragma once
#include <ox.h>

#include <optional>
#include <string>

namespace vel {

struct Tolerance {
    bool nan_equal = false;
    double absolute = 0; // numbers that differ by no more are equal
};

struct Difference {
    std::string path, what;
};

// The first difference in class, size, fields or values; none when there is none.
std::optional<Difference> first_difference(const std::string &path, const oxArray *a,
                                           const oxArray *b, const Tolerance &tolerance);

} // namespace vel
