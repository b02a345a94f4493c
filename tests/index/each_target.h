// Running a check with every instruction set that the machine has, not only the best one.
#pragma once
#include <cstdint>
#include <hwy/targets.h>

template<class F> void for_each_target(F &&check) {
    const int64_t supported = hwy::SupportedTargets();
    for (int64_t target :
         {int64_t{HWY_AVX3}, int64_t{HWY_AVX2}, int64_t{HWY_SSE4}, int64_t{HWY_SCALAR}})
        if (target == HWY_SCALAR || (supported & target)) {
            hwy::GetChosenTarget().Update(target);
            check();
        }
    hwy::GetChosenTarget().Update(supported);
}
