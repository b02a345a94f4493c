/* The two API levels: which form an unsuffixed name of a two-level function means.
   OX_API_LEVEL 730 (the default) selects 64-bit sizes, 700 selects int sizes. Suffixed names are
   always declared. This is the one list of two-level functions: a test holds the exported symbols
   against its lines. A few more functions have a second form at level 700 only (<ox/compat.h>);
   modules of that level include <ox.h>. */
#ifndef OX_LEVELS_H
#define OX_LEVELS_H

#include <ox/types.h>

/* The level of this module: 730 or 700. */
#if !defined(OX_API_LEVEL)
#define OX_API_LEVEL 730
#endif
#if OX_API_LEVEL != 730 && OX_API_LEVEL != 700
#error "OX_API_LEVEL must be 730 (64-bit sizes) or 700 (int sizes)"
#endif

/* OX_NO_LEVEL_MACROS leaves the unsuffixed names alone, for the file that defines them. */
#if !defined(OX_NO_LEVEL_MACROS)
#if OX_API_LEVEL == 730
#define OX_LEVEL(name) name##_730
#else
#define OX_LEVEL(name) name##_700
#endif

#define oxCalcSingleSubscript OX_LEVEL(oxCalcSingleSubscript)
#define oxCreateCellArray OX_LEVEL(oxCreateCellArray)
#define oxCreateCellMatrix OX_LEVEL(oxCreateCellMatrix)
#define oxCreateCharArray OX_LEVEL(oxCreateCharArray)
#define oxCreateCharMatrixFromStrings OX_LEVEL(oxCreateCharMatrixFromStrings)
#define oxCreateDoubleMatrix OX_LEVEL(oxCreateDoubleMatrix)
#define oxCreateLogicalArray OX_LEVEL(oxCreateLogicalArray)
#define oxCreateLogicalMatrix OX_LEVEL(oxCreateLogicalMatrix)
#define oxCreateNumericArray OX_LEVEL(oxCreateNumericArray)
#define oxCreateNumericMatrix OX_LEVEL(oxCreateNumericMatrix)
#define oxCreateSparse OX_LEVEL(oxCreateSparse)
#define oxCreateSparseLogicalMatrix OX_LEVEL(oxCreateSparseLogicalMatrix)
#define oxCreateStringFromNChars OX_LEVEL(oxCreateStringFromNChars)
#define oxCreateStructArray OX_LEVEL(oxCreateStructArray)
#define oxCreateStructMatrix OX_LEVEL(oxCreateStructMatrix)
#define oxGetCell OX_LEVEL(oxGetCell)
#define oxGetDimensions OX_LEVEL(oxGetDimensions)
#define oxGetField OX_LEVEL(oxGetField)
#define oxGetFieldByNumber OX_LEVEL(oxGetFieldByNumber)
#define oxGetIr OX_LEVEL(oxGetIr)
#define oxGetJc OX_LEVEL(oxGetJc)
#define oxGetNChars OX_LEVEL(oxGetNChars)
#define oxGetNumberOfDimensions OX_LEVEL(oxGetNumberOfDimensions)
#define oxGetNzmax OX_LEVEL(oxGetNzmax)
#define oxGetProperty OX_LEVEL(oxGetProperty)
#define oxGetString OX_LEVEL(oxGetString)
#define oxSetCell OX_LEVEL(oxSetCell)
#define oxSetDimensions OX_LEVEL(oxSetDimensions)
#define oxSetField OX_LEVEL(oxSetField)
#define oxSetFieldByNumber OX_LEVEL(oxSetFieldByNumber)
#define oxSetIr OX_LEVEL(oxSetIr)
#define oxSetJc OX_LEVEL(oxSetJc)
#define oxSetM OX_LEVEL(oxSetM)
#define oxSetN OX_LEVEL(oxSetN)
#define oxSetNzmax OX_LEVEL(oxSetNzmax)
#define oxSetProperty OX_LEVEL(oxSetProperty)
#endif

#endif
