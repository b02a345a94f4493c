// The growth rule that every sparse assignment shares.
#pragma once
#include <core/position.h>

namespace ox {

struct Growth {
    kwSize nzmax;
    bool possible; // false: no capacity can hold the elements
};

// The new capacity when a column that gets q elements makes delta more of them than nzmax holds in
// an m-by-n array: five columns' worth of room, so that repeated assignments reallocate rarely, or
// else the exact need, or else every element. Deliberate: the first test refuses 2^48 - 1 and the
// second takes it.
inline Growth grown_capacity(kwSize nzmax, kwSize q, kwSize delta, kwSize m, kwSize n) {
    kwSize all = 0, roomy = 0, exact = 0;
    const bool all_fits = !__builtin_mul_overflow(m, n, &all);
    const auto capped = [&](kwSize wanted) {
        return Growth{all_fits && all < wanted ? all : wanted, true};
    };
    if (!__builtin_mul_overflow(q, kwSize{5}, &roomy) &&
        !__builtin_add_overflow(nzmax, roomy, &roomy) && roomy < max_size)
        return capped(roomy);
    if (!__builtin_add_overflow(nzmax, delta, &exact) && exact <= max_size) return capped(exact);
    return {all, all_fits};
}

} // namespace ox
