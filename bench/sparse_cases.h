// The sparse matrices and requests that are measured, for the library and for its peers.
#pragma once
#include <ox.h>

#include <cstddef>
#include <string>
#include <vector>

namespace sparse_cases {

using List = std::vector<kwIndex>;

// One reference; empty lists mean all rows or all columns.
struct Request {
    List rows, columns;
};

// A name, and the request for an m-by-n matrix.
struct Case {
    const char *name;
    Request (*of)(kwSize m, kwSize n);
};
const std::vector<Case> &references();

// grid: the 5-point pattern on a 1000-by-1000 grid, five neighbouring elements a column of 1e6.
// r1e6, r1e7: random 1e6-by-1e5 with that many elements. They are made when first asked for.
const oxArray *matrix(const std::string &name);
inline const char *const names[] = {"grid", "r1e6", "r1e7"};

// count or fewer random rows below m, increasing.
List random_column(kwSize m, std::size_t count);
List range(kwIndex first, std::size_t count);
// A sparse array with these column starts and row indices.
oxArray *make(kwSize m, kwSize n, const List &jc, const List &ir);

// One of the two contents of `replace`: columns all over r1e6 become longer, then shorter.
inline constexpr kwIndex replaced[] = {12, 10};

} // namespace sparse_cases
