// How many bytes are where in cells and structs.
#pragma once
#include "json.h"
#include "picture.h"

#include <ox.h>

#include <string>
#include <vector>

namespace vel {

struct SizeTree {
    std::string label, what;      // what: class and size
    size_t bytes = 0;             // of data, with all that is inside
    std::vector<SizeTree> inside; // the largest first; small ones may be joined
};

SizeTree make_size_tree(const std::string &label, const oxArray *a);

// A line for each with its bytes, its share, and a bar.
std::vector<std::string> lines_of(const SizeTree &t, size_t columns, Depth depth);
// A band for each level, divided as the bytes are.
Picture picture_of(const SizeTree &t, size_t columns);

Json to_json(const SizeTree &t);

} // namespace vel
