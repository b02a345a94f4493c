// Tests over a run of values that stop soon after the first element that decides.
#pragma once
#include <ox/types.h>

namespace ox {

bool all_finite(const double *x, kwSize n);
bool all_finite(const float *x, kwSize n);
bool any_nan(const double *x, kwSize n);
// Every element is a whole number in [low, high], which lies in the range of int64_t; NaN is not.
bool all_whole_within(const double *x, kwSize n, double low, double high);

} // namespace ox
