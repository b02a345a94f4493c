// Arrays as text for people.
#pragma once
#include <ox.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace vel {

// What goes before the lines of something that hangs in a tree.
struct Indent {
    std::string first, rest;
};

// A line that says class and size, then the contents: tables cut in the middle, sparse arrays as
// triplets and a picture, cells and structs as trees.
void print_array(std::ostream &out, const std::string &label, const oxArray *a,
                 const Indent &indent = {});

// "double 3x4", "sparse logical 5x5, 7 stored", "struct 2x1 with fields a, b".
std::string describe(const oxArray *a);

// One element, or one stored value, as people write it.
std::string format_element(const oxArray *a, size_t k);

// Indices 0 to n-1, or the first and last of them with one gap marked by n.
std::vector<size_t> cut(size_t n, size_t most);

// The parts of print_array below its line.
void print_table(std::ostream &out, const oxArray *a, const std::string &indent);
void print_sparse(std::ostream &out, const oxArray *a, const std::string &indent);
// For a matrix of truth values of some size: where they are true.
bool has_pattern(const oxArray *a);
void print_pattern(std::ostream &out, const oxArray *a, const std::string &indent);

} // namespace vel
