// The allocation-fault seam and the build switch that turns heap and pools into plain malloc.
#pragma once
#include "fl.hpp"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) ||                         \
    __has_feature(thread_sanitizer)
#define FL_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define FL_SANITIZED 1
#endif

namespace fl {

// Sanitizers: one malloc per block, so that every misuse is seen by the tool.
#if defined(FL_SANITIZED)
inline constexpr bool pass_through = true;
#else
inline constexpr bool pass_through = false;
#endif

inline constinit allocation_fault fault = nullptr;

inline bool fault_strikes() { return fault && fault(); }

} // namespace fl
