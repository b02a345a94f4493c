// The instruction sets that vector kernels are not compiled for; included before
// <hwy/foreach_target.h>.
#pragma once

// Vectors of unknown length cannot be kept in arrays and structs. SSSE3 alone serves no machine in
// use.
#define OX_NO_SIMD (HWY_SSSE3 | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)

// GCC for Windows aligns the stack to 16 bytes only, and spills wider vectors as if it were more.
#if defined(_WIN32) && defined(__GNUC__) && !defined(__clang__)
#define HWY_DISABLED_TARGETS (OX_NO_SIMD | HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL)
#else
#define HWY_DISABLED_TARGETS OX_NO_SIMD
#endif
