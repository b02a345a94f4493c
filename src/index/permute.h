// Permuting a whole array without raising: what permute and the transpose of containers share.
#pragma once
#include <core/array.h>

namespace ox {

// A full array of class cell, struct, logical, char, function handle or a number as a new one on no
// list, whose dimension k is a's dimension order[k] (from one); dims are a's, padded to n with 1.
// Containers share their elements. Null without memory.
oxArray *permuted_copy(const oxArray *a, kwSize n, const kwSize *dims, const kwSize *order);

} // namespace ox
