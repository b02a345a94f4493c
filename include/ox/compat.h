/* The 32-bit level: the functions of two levels with int sizes and indices. */
#ifndef OX_COMPAT_H
#define OX_COMPAT_H

#include <ox/levels.h>
#include <ox/reference.h>
#include <ox/sparse.h>
#include <ox/text.h>
#include <ox/types.h>

OX_BEGIN_C

/* Each X_700 widens its int arguments, calls the 64-bit X and narrows what comes back; see there
   for shapes, ownership and further errors. Two things are the same in all of them: a negative size
   or index, and a result of 2^31 or more, raise error 73 ("Maximum variable size allowed by the
   function is exceeded."); lists of sizes are read only, and a null list counts as empty. Modules
   get these functions under their plain names when OX_API_LEVEL is 700. */

/* --- Creation ---------------------------------------------------------------------------- */

/* m-by-n arrays, temporaries of the current array-list context. */
OX_API oxArray *oxCreateDoubleMatrix_700(int m, int n, oxComplexity c);
OX_API oxArray *oxCreateNumericMatrix_700(int m, int n, oxClassID id, oxComplexity c);
OX_API oxArray *oxCreateLogicalMatrix_700(int m, int n);
OX_API oxArray *oxCreateCellMatrix_700(int m, int n);
OX_API oxArray *oxCreateStructMatrix_700(int m, int n, int nfields, const char **names);
OX_API oxArray *oxCreateSparse_700(int m, int n, int nzmax, oxComplexity c);
OX_API oxArray *oxCreateSparseLogicalMatrix_700(int m, int n, int nzmax);
/* Arrays of ndim sizes. */
OX_API oxArray *oxCreateNumericArray_700(int ndim, const int *dims, oxClassID id, oxComplexity c);
OX_API oxArray *oxCreateLogicalArray_700(int ndim, const int *dims);
OX_API oxArray *oxCreateCharArray_700(int ndim, const int *dims);
OX_API oxArray *oxCreateCellArray_700(int ndim, const int *dims);
OX_API oxArray *oxCreateStructArray_700(int ndim, const int *dims, int nfields, const char **names);

/* Char arrays from n bytes or units, and from m strings. Both CharMatrix names of the local code
   page do the same. */
OX_API oxArray *oxCreateStringFromNChars_700(const char *str, int n);
OX_API oxArray *oxCreateStringFromNChars_UTF8_700(const char *str, int n);
OX_API oxArray *oxCreateStringFromNChars_UTF16_700(const oxChar *str, int n);
OX_API oxArray *oxCreateCharMatrixFromStrings_700(int m, const char **strs);
OX_API oxArray *oxCreateCharMatrixFromStrs_700(int m, const char **strs);
OX_API oxArray *oxCreateCharMatrixFromStrings_UTF8_700(int m, const char **strs);
OX_API oxArray *oxCreateCharMatrixFromStrings_UTF16_700(int m, const oxChar **strs);

/* --- Setters ------------------------------------------------------------------------------ */

/* Sizes and capacity, stored without touching data; oxSetDimensions_700 answers 0, or 1 without
   memory. */
OX_API void oxSetM_700(oxArray *a, int m);
OX_API void oxSetN_700(oxArray *a, int n);
OX_API void oxSetNzmax_700(oxArray *a, int nzmax);
OX_API int oxSetDimensions_700(oxArray *a, const int *dims, int ndim);
/* Elements of cells, structs and objects; the container takes v over. */
OX_API void oxSetCell_700(oxArray *a, int i, oxArray *v);
OX_API void oxSetField_700(oxArray *a, int i, const char *name, oxArray *v);
OX_API void oxSetFieldByNumber_700(oxArray *a, int i, int n, oxArray *v);
/* A property of element index; value stays the caller's. */
OX_API void oxSetProperty_700(oxArray *a, int index, const char *name, const oxArray *value);

/* --- Getters ------------------------------------------------------------------------------ */

/* At least 2. */
OX_API int oxGetNumberOfDimensions_700(const oxArray *a);
/* The sizes as int, in a block of the array's own that holds until the next call for this array or
   its destruction; filled anew by every call. Raises error 18 without memory and error 73 for a
   size of 2^31 or more. */
OX_API int *oxGetDimensions_700(const oxArray *a);
/* The capacity of a sparse array. */
OX_API int oxGetNzmax_700(const oxArray *a);
/* Elements of cells, structs and objects, which stay the container's; null when empty. */
OX_API oxArray *oxGetCell_700(const oxArray *a, int i);
OX_API oxArray *oxGetField_700(const oxArray *a, int i, const char *name);
OX_API oxArray *oxGetFieldByNumber_700(const oxArray *a, int i, int n);
/* A property of element index; the caller's own array. */
OX_API oxArray *oxGetProperty_700(const oxArray *a, int index, const char *name);
/* Zero-based position of an element given by nsubs zero-based subscripts. */
OX_API int oxCalcSingleSubscript_700(const oxArray *a, int nsubs, const int *subs);
/* How many positions subscript k (from 1) of nsubs selects, into *count (also when the answer is
   false: 0, the values must be converted first). */
OX_API bool oxSubsCount_700(const oxArray *a, const oxArray *sub, int k, int nsubs, int *count);
/* Text into the caller's buffer of buflen bytes. */
OX_API int oxGetString_700(const oxArray *a, char *buf, int buflen);
OX_API int oxGetString_UTF8_700(const oxArray *a, char *buf, int buflen);
OX_API void oxGetNChars_700(const oxArray *a, char *buf, int buflen);
OX_API void oxGetNChars_UTF8_700(const oxArray *a, char *buf, int buflen);

/* --- Refused ------------------------------------------------------------------------------ */

/* Row and column vectors of int cannot describe the 64-bit storage of sparse arrays: these raise
   VELTRO:matrix:ERR_SPARSE_64BIT_OBSOLETE, whatever their arguments, and never return. */
OX_API int *oxGetIr_700(const oxArray *a);
OX_API int *oxGetJc_700(const oxArray *a);
OX_API void oxSetIr_700(oxArray *a, int *ir);
OX_API void oxSetJc_700(oxArray *a, int *jc);
OX_API oxArray *oxSparseReference_700(const oxArray *a, const int *rows, int nrows, const int *cols,
                                      int ncols);
OX_API void oxReshapeSparse_700(int m, int n, const int *jc, int *ir, int newM, int newN,
                                int *newJc);

OX_END_C

/* These have their 64-bit form under the plain name, which level 700 takes over. */
#if OX_API_LEVEL == 700 && !defined(OX_NO_LEVEL_MACROS)
#define oxCreateCharMatrixFromStrings_UTF16 oxCreateCharMatrixFromStrings_UTF16_700
#define oxCreateCharMatrixFromStrings_UTF8 oxCreateCharMatrixFromStrings_UTF8_700
#define oxCreateStringFromNChars_UTF16 oxCreateStringFromNChars_UTF16_700
#define oxCreateStringFromNChars_UTF8 oxCreateStringFromNChars_UTF8_700
#define oxGetNChars_UTF8 oxGetNChars_UTF8_700
#define oxGetString_UTF8 oxGetString_UTF8_700
#define oxReshapeSparse oxReshapeSparse_700
#define oxSparseReference oxSparseReference_700
#define oxSubsCount oxSubsCount_700
#endif

#endif
