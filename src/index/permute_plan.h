// A permutation of dimensions reduced to as few as it takes, and the moves it stands for.
#pragma once
#include <ox/types.h>

namespace ox {

// More dimensions of at least 2 than any array has elements for.
inline constexpr kwSize max_plan_rank = 48;

// Result dimension k has extent[k] elements, from[k] apart in the source and to[k] in the result;
// to[0] is 1. Dimensions of 1 are dropped and neighbours that stay neighbours merged, so that rank
// 0 and 1 mean a plain copy.
struct PermutePlan {
    kwSize rank = 0;
    kwSize extent[max_plan_rank], from[max_plan_rank], to[max_plan_rank];
};

// Dimension k of the result is dimension order[k] (from one) of the source. No dimension may be 0.
// Each position holds `together` elements that stay together.
PermutePlan plan_permutation(kwSize n, const kwSize *dims, const kwSize *order,
                             kwSize together = 1);

// Moves elements of 1, 2, 4, 8 or 32 bytes from src to dst, which are apart.
void permute_elements(const PermutePlan &plan, void *dst, const void *src, kwSize width);

} // namespace ox
