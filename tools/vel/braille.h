// Pictures of grids in the terminal, eight dots to a character.
#pragma once
#include "json.h"
#include "picture.h"

#include <ox.h>

#include <string>
#include <vector>

namespace vel {

// Counts of something in the bins of an m-by-n grid, stored by rows.
struct Counts {
    size_t m = 0, n = 0;
    size_t block_rows = 1, block_columns = 1; // in a bin
    std::vector<size_t> of;
};

// Stored entries of a sparse array in most_rows by most_columns bins at most, square ones unless
// the array is so long that they would leave a mere line of it. Nothing is expanded.
Counts count_pattern(const oxArray *a, size_t most_rows, size_t most_columns);

// A line of text for every four rows. The share of lit dots follows the logarithm of the count, so
// that large patterns do not turn solid; where anything is, at least one dot is lit. Colours follow
// the largest count of a character.
std::vector<std::string> braille(const Counts &counts, Depth depth = Depth::none);
// A dot for each bin, from light to dark on white.
Picture picture_of(const Counts &counts);
Json to_json(const Counts &counts);

std::vector<std::string> picture_of_pattern(const oxArray *a);

} // namespace vel
