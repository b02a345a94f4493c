/* Creating numeric and logical arrays, size checks, and destruction. */
#ifndef OX_CREATE_H
#define OX_CREATE_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* Every creator returns a new array that is a temporary of the current array-list context, zero
   filled unless it says otherwise. When no memory is left, or the element count exceeds the
   limit, it raises error 18; before oxInitArrayListManager it returns null instead. Classes that
   are not numeric never get an imaginary part. */

/* m-by-n, of a class, of double, of logical. */
OX_API oxArray *oxCreateNumericMatrix_730(kwSize m, kwSize n, oxClassID id, oxComplexity c);
OX_API oxArray *oxCreateDoubleMatrix_730(kwSize m, kwSize n, oxComplexity c);
OX_API oxArray *oxCreateLogicalMatrix_730(kwSize m, kwSize n);
/* ndim sizes; none or a null vector gives 0-by-0, one gives a column. */
OX_API oxArray *oxCreateNumericArray_730(kwSize ndim, const kwSize *dims, oxClassID id,
                                         oxComplexity c);
OX_API oxArray *oxCreateLogicalArray_730(kwSize ndim, const kwSize *dims);

/* As above, but the first of the ncand candidate arrays that is reusable, of the same complexity,
   byte count and element size lends its data: the new array shares them, contents as they are. */
OX_API oxArray *oxCreateNumericMatrixWithReuse(kwSize m, kwSize n, oxClassID id, oxComplexity c,
                                               kwSize ncand, oxArray *const *cand);
OX_API oxArray *oxCreateDoubleMatrixWithReuse(kwSize m, kwSize n, oxComplexity c, kwSize ncand,
                                              oxArray *const *cand);
OX_API oxArray *oxCreateNumericArrayWithReuse(kwSize ndim, const kwSize *dims, oxClassID id,
                                              oxComplexity c, kwSize ncand, oxArray *const *cand);
OX_API oxArray *oxCreateLogicalMatrixWithReuse(kwSize m, kwSize n, kwSize ncand,
                                               oxArray *const *cand);
OX_API oxArray *oxCreateLogicalArrayWithReuse(kwSize ndim, const kwSize *dims, kwSize ncand,
                                              oxArray *const *cand);

/* 1-by-1 arrays that hold value; oxCreateNumericScalar holds zero. */
OX_API oxArray *oxCreateDoubleScalar(double value);
OX_API oxArray *oxCreateSingleScalar(float value);
OX_API oxArray *oxCreateLogicalScalar(bool value); /* the byte is stored as passed */
OX_API oxArray *oxCreateNumericScalar(oxClassID id, oxComplexity c);

/* Element contents are undefined, except for 1-by-1. Raises error 19 when rows times columns (the
   product of all further sizes) exceed the limit of elements or of bytes. */
OX_API oxArray *oxCreateUninitNumericMatrix(kwSize m, kwSize n, oxClassID id, oxComplexity c);
OX_API oxArray *oxCreateUninitNumericArray(kwSize ndim, const kwSize *dims, oxClassID id,
                                           oxComplexity c);
OX_API oxArray *oxCreateUninitDoubleMatrix(kwSize m, kwSize n, oxComplexity c);

/* The smallest array that has exactly these attributes, or null when there is none. */
OX_API oxArray *oxCreateArrayFromTypeAttr(oxClassID id, oxArray_attributes attributes);

/* Drops one reference; the last one frees the array, and its data unless others share them or
   they are private. Null is ignored. Sharers of private data get storage of their own, which
   raises error 18 when no memory is left. */
OX_API void oxDestroyArray(oxArray *a);
/* Gives unused header memory back to the system; true when there was some. */
OX_API bool oxRecoverArrayStorage(void);

/* The most elements, and the most bytes, of one array: 2^48 - 1. */
OX_API kwSize oxGetMaxNumberOfElements(void);
OX_API kwSize oxGetMaxNumberOfBytes(void);

/* The element count of an array of these int dimensions; raises error 19 above the limits. A
   negative size is too large; an empty array never is. */
OX_API int oxCheckDim_700(const int *dims, int ndim, kwSize element_size);
/* The same for m-by-n; fractions are cut, NaN and large values saturate. */
OX_API int oxCheckMN_700(double m, double n, kwSize element_size);

OX_END_C

#if defined(__cplusplus)
/* Size checks for the three kinds of sizes. The nothrow forms answer whether the sizes are legal
   and store the element count (the largest value of its kind when they are not) unless count is
   null; the others return the count or raise error 19. Doubles are cut towards zero: negative is
   0, NaN and large values are 2^48 - 1. */
OX_API bool oxCheckDim_nothrow(const kwSize *dims, kwSize ndim, kwSize element_size,
                               kwSize *count = nullptr);
OX_API bool oxCheckDim_nothrow(const int *dims, int ndim, kwSize element_size,
                               int *count = nullptr);
OX_API kwSize oxCheckDim(const kwSize *dims, kwSize ndim, kwSize element_size);
OX_API int oxCheckDim(const int *dims, int ndim, kwSize element_size);
OX_API bool oxCheckMN_nothrow(kwSize m, kwSize n, kwSize element_size, kwSize *count);
OX_API bool oxCheckMN_nothrow(double m, double n, kwSize element_size, kwSize *count);
OX_API bool oxCheckMN_nothrow(int m, int n, kwSize element_size, int *count);
OX_API kwSize oxCheckMN(kwSize m, kwSize n, kwSize element_size);
OX_API kwSize oxCheckMN(double m, double n, kwSize element_size);
OX_API int oxCheckMN(int m, int n, kwSize element_size);
#endif

#endif
