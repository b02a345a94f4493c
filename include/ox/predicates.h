/* Questions about an array's shape, class and values; nothing is changed or copied. */
#ifndef OX_PREDICATES_H
#define OX_PREDICATES_H

#include <ox/types.h>

OX_BEGIN_C

/* A vector has at most one size above 1, in any number of dimensions. A predicate about values is
   false for empty arrays and for sparse ones. Finite is neither infinite nor NaN, in both parts of
   a complex array; elements of integer classes always are. */

/* --- Shape -------------------------------------------------------------------------------- */

OX_API bool oxIsVector(const oxArray *a);     /* a vector, also when empty */
OX_API bool oxIsVector2D(const oxArray *a);   /* 2-D with one row or one column */
OX_API bool oxIsScalar(const oxArray *a);     /* 2-D, 1-by-1 */
OX_API bool oxIsCharVector(const oxArray *a); /* a row of characters, not empty */

/* --- Vectors ------------------------------------------------------------------------------ */

OX_API bool oxIsRealVector(const oxArray *a);            /* real double, finite */
OX_API bool oxIsRealOrInfVector(const oxArray *a);       /* real double without NaN */
OX_API bool oxIsRealInfOrNaNVector(const oxArray *a);    /* real double */
OX_API bool oxIsComplexVector(const oxArray *a);         /* double, finite, real or complex */
OX_API bool oxIsNumericInfOrNaNVector(const oxArray *a); /* any numeric class */
OX_API bool oxIsSingleVector(const oxArray *a);          /* single, finite, real or complex */
OX_API bool oxIsFiniteNumericVector(const oxArray *a);   /* any numeric class, finite */
/* Real double whose elements are whole numbers from -2^31 to 2^31 - 1. Deliberate: 3e9 fails. */
OX_API bool oxIsIntVector(const oxArray *a);
/* The same with elements up to 2^32 - 1; negative and large ones may stand side by side. */
OX_API bool oxIsIntOrUIntVector(const oxArray *a);

/* --- One element -------------------------------------------------------------------------- */

OX_API bool oxIsRealScalar(const oxArray *a);      /* as oxIsRealVector */
OX_API bool oxIsRealOrInfScalar(const oxArray *a); /* as oxIsRealOrInfVector */
OX_API bool oxIsIntScalar(const oxArray *a);       /* as oxIsIntVector */

/* --- Arrays and matrices ------------------------------------------------------------------ */

/* The class of the name, and neither NaN nor infinity in either part. */
OX_API bool oxIsFiniteDoubleArray(const oxArray *a);
OX_API bool oxIsFiniteSingleArray(const oxArray *a);
OX_API bool oxIsFiniteNumericArray(const oxArray *a); /* any numeric class */
/* 2-D arrays that are not empty. */
OX_API bool oxIsDouble2dMatrix(const oxArray *a);        /* double, finite */
OX_API bool oxIsSingle2dMatrix(const oxArray *a);        /* single, finite */
OX_API bool oxIsReal2dMatrix(const oxArray *a);          /* real double, finite */
OX_API bool oxIsComplex2dMatrix(const oxArray *a);       /* double, finite, real or complex */
OX_API bool oxIsFiniteNumeric2dMatrix(const oxArray *a); /* any numeric class */
/* Any numeric class without imaginary part. Deliberate: only double elements are tested for being
   finite. */
OX_API bool oxIsFiniteNumeric2dNonComplexMatrix(const oxArray *a);

/* --- Arguments ---------------------------------------------------------------------------- */

/* Raises error 3 for more than one output, error 1 for more than one input, error 2 for none. */
OX_API void oxCheckOneArg(int nlhs, int nrhs);

OX_END_C

#endif
