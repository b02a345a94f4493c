/* Sparse arrays: compressed columns, their creation, capacity and shape. */
#ifndef OX_SPARSE_H
#define OX_SPARSE_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* What the sparse kernels answer; oxHandleSparseSubscriptError turns it into an error. */
typedef enum {
    spOK = 0,
    spZeroIndex = 2,   /* an index is zero or negative */
    spBadIndex = 4,    /* an index is not a whole number */
    spRange = 5,       /* never returned */
    spDimMismatch = 8, /* the sides of an assignment do not fit */
    spOutOfBounds = 9, /* an index exceeds the dimensions */
    spTooLarge = 10    /* the result exceeds the size limit */
} spStatus;

/* New m-by-n sparse arrays without stored elements and with room for nzmax (at least 1): a
   temporary of the current array-list context. Unlike the other creators these return null when
   no memory is left; only an array list that cannot grow raises error 18. The class of
   oxCreateSparseNumericMatrix is not checked; classes that are not numeric get no imaginary part.
 */
OX_API oxArray *oxCreateSparse_730(kwSize m, kwSize n, kwSize nzmax, oxComplexity c);
OX_API oxArray *oxCreateSparseNumericMatrix(kwSize m, kwSize n, kwSize nzmax, oxClassID id,
                                            oxComplexity c);
OX_API oxArray *oxCreateSparseLogicalMatrix_730(kwSize m, kwSize n, kwSize nzmax);

/* Number of stored elements of a sparse array, of all elements of any other. */
OX_API kwSize oxGetNumNonZeroEl(const oxArray *a);

/* Gives the stored elements of an m-by-n array (column starts jc) their places in newM-by-newN:
   ir is rewritten, newJc (newN + 1 entries, the first 0) is filled. Values keep their order. The
   caller makes sure that both shapes hold the same number of elements. */
OX_API void oxReshapeSparse(kwSize m, kwSize n, const kwIndex *jc, kwIndex *ir, kwSize newM,
                            kwSize newN, kwIndex *newJc);
/* Gives dst, whose dimensions are the new shape, the elements of src. src is consumed when it is
   a temporary, else copied. Raises error 18 when no memory is left. */
OX_API void ox_inResizeSparseArray(oxArray *dst, oxArray *src);

/* B = A(rows, cols) as a new temporary: zero-based positions that may repeat and come in any order.
   A null vector means all rows, or all columns, and its count is not read. Raises
   VELTRO:badsubscript for a position beyond A, and error 18. */
OX_API oxArray *oxSparseReference(const oxArray *a, const kwIndex *rows, kwSize nrows,
                                  const kwIndex *cols, kwSize ncols);
/* A(:): all elements as one column, a new temporary. Raises error 19 when they are more than an
   array can have, and error 18 (before oxInitArrayListManager null). */
OX_API oxArray *oxSparseColonReference(const oxArray *a);

/* A(i, j, ...) with as many subscript arrays (one-based numbers, masks, ':' or colon objects) as
   the name says; those beyond the second may hold ones only. On success *result is a new temporary;
   otherwise it is left alone and the status says why. The Scalar forms take the one-based positions
   themselves. They raise error 18, and for colon objects what oxCountIntColonObj raises. */
OX_API spStatus spRef2(const oxArray *a, const oxArray *const *subs, oxArray **result);
OX_API spStatus spRef3(const oxArray *a, const oxArray *const *subs, oxArray **result);
OX_API spStatus spRef4(const oxArray *a, const oxArray *const *subs, oxArray **result);
OX_API spStatus spRef5(const oxArray *a, const oxArray *const *subs, oxArray **result);
OX_API spStatus spRef6(const oxArray *a, const oxArray *const *subs, oxArray **result);
OX_API spStatus spRef3Scalar(const oxArray *a, const double *subs, oxArray **result);
OX_API spStatus spRef6Scalar(const oxArray *a, const double *subs, oxArray **result);

/* Assignment into a, which grows as the subscripts ask; a target that is not sparse is made so, one
   of no class takes b's. b is converted to a's class and, when it is a temporary, destroyed after
   success. A null b, or a 0-by-0 one flagged as an empty bracket, deletes instead. All answer spOK,
   or why a subscript or the sides do not fit; spAss4 assigns (deletes) the columns before the first
   bad index. They raise VELTRO:nomem or "Indices are too large to convert to linear index." when no
   capacity suffices, and error 18. */
OX_API spStatus spAss3(oxArray *a, oxArray *b, const oxArray *rows,
                       const oxArray *cols);                          /* A(I,J) */
OX_API spStatus spAss4(oxArray *a, oxArray *b, const oxArray *cols);  /* A(:,J) */
OX_API spStatus spAss5(oxArray *a, oxArray *b, const oxArray *rows);  /* A(I,:) */
OX_API spStatus spAss6(oxArray *a, oxArray *b, const oxArray *index); /* A(I) */

/* Raises the error that a kernel's status stands for; returns for success and unknown numbers. */
OX_API void oxHandleSparseSubscriptError(spStatus status);

OX_END_C

#endif
