// Full matrices as grids of colours.
#pragma once
#include "json.h"
#include "picture.h"

#include <ox.h>

#include <string>
#include <vector>

namespace vel {

// Means over equal blocks of a matrix, by rows; NaN where a block has no finite element. Complex
// numbers count by their magnitude; pages lie side by side.
struct Grid {
    size_t m = 0, n = 0;
    size_t block_rows = 1, block_columns = 1; // elements in a block
    double least = 0, most = 0;               // of the means; NaN when there are none
    std::vector<double> of;
    double share(size_t k) const; // from 0 to 1, where between least and most
};

Grid make_grid(const oxArray *a, size_t most_rows, size_t most_columns); // has_elements, full

// Few blocks become larger rectangles: up to the size given, and limit dots for each side.
Picture picture_of(const Grid &g, size_t most_rows, size_t most_columns, size_t limit);

// The picture and its scale in at most that many columns, with shades where there are no colours.
std::vector<std::string> lines_of(const Grid &g, size_t columns, Depth depth);

Json to_json(const Grid &g);

} // namespace vel
