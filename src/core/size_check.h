// The element-count and byte limits as a core that raises nothing.
#pragma once
#include <core/position.h>

namespace ox {

// The product of the sizes; false (and the limit as count) when it or its bytes exceed 2^48 - 1.
// Deliberate: a size of 0 anywhere forgives every overflow before it; an empty array fits.
bool check_size(const kwSize *dims, kwSize ndim, kwSize element_size, kwSize *count);
inline bool check_size(kwSize m, kwSize n, kwSize element_size, kwSize *count) {
    constexpr kwSize small = kwSize{1} << 19;
    if ((m | n) < small && element_size <= 256) { // far from every limit: scalars come this way
        *count = m * n;
        return true;
    }
    const kwSize dims[2] = {m, n};
    return check_size(dims, 2, element_size, count);
}

} // namespace ox
