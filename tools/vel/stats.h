// What can be said of all elements together.
#pragma once
#include "json.h"

#include <ox.h>

namespace vel {

// Elements equal to zero include those that a sparse array does not store. Minimum, maximum and
// mean are over the real parts that are no NaN; NaN when there are none.
struct Stats {
    size_t elements = 0, zeros = 0, nonzeros = 0, nans = 0, infinities = 0;
    double least = 0, most = 0, mean = 0;
};

Stats stats_of(const oxArray *a); // has_elements
Json json_stats(const Stats &s);

} // namespace vel
