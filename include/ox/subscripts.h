/* Subscripts: turning them into positions, colon ranges, and the errors of bad subscripts. */
#ifndef OX_SUBSCRIPTS_H
#define OX_SUBSCRIPTS_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* --- Positions -------------------------------------------------------------------------- */

/* The positions that *subscript selects in a dimension of the given extent: ':' (a char array of
   that one element), a colon object, a logical mask (full or sparse), or one-based numbers or
   characters. Returns 0 when there is at least one, 1 when there is none (count and maxPosition 0,
   indices null), -1 for ':' over an extent of 0. *indices is a block from oxMalloc with *count
   entries, each the one-based position minus one plus base, which the caller frees; for ':' it is
   null. *maxPosition is one-based whatever base. Positions are not compared with the extent.
   Raises "VELTRO:badsubscript" for what is not a positive integer, for colon objects as
   oxCountIntColonObj does, and error 18. *subscript is not changed.
   Signed integer classes are read as unsigned bit patterns: int8(-1) is position 255. */
OX_API int oxConvertToIndex(const oxArray **subscript, kwSize extent, int base, kwSize *count,
                            kwSize *maxPosition, kwIndex **indices);
/* Raises when a would not give n subscripts: "VELTRO:NonScalarInput" for another element count,
   "VELTRO:obsoleteComplexInput" for an imaginary part, "VELTRO:NonIntegerInput" for fractions and
   NaN. Otherwise stores the values in out[0..n-1]: negative ones as 0, those above 2^48 - 1 as
   2^48 - 1. */
OX_API void oxArgMustBeIndices(const oxArray *a, kwSize n, kwSize *out);
/* Raises "VELTRO:indexed_matrix_cannot_be_resized"; arrayName may be null. */
OX_API OX_NORETURN void oxHandleAmbiguousArrayGrowth(const char *arrayName);

/* --- Colon ------------------------------------------------------------------------------ */

/* A colon object stands for first:step:last without its elements: an array of the class with the
   colon flag whose data hold the step as a double, then first and last in the class. */

/* Checks the 2 or 3 operands of first:last or first:step:last; out gets first, step, last and 1
   when an operand is empty (the range then is 0:0:0), else 0. Returns the class of the range.
   Raises and warns under "VELTRO:colon:...". */
OX_API oxClassID oxGetColonArgs(int nargs, const oxArray *args[], double out[4]);
/* Checks operand values against the class of the range and completes them in place: two values
   first, last become first, 1, last (so values has room for three). Raises
   "VELTRO:colon:scalarDoubleMustBeIntegerValued" and "VELTRO:colon:OutOfRange". */
OX_API void oxGetColonArgValues(int nargs, double values[], oxClassID cls);
/* A new colon object; classes char to uint32 hold first and last cut towards zero, for int64 and
   uint64 the caller writes the record. oxCreateColonObj makes one of class double. Null for a class
   that has no colon objects; without memory error 18, or null before oxInitArrayListManager. */
OX_API oxArray *oxCreateColonObject(double first, double step, double last, oxClassID cls);
OX_API oxArray *oxCreateColonObj(double first, double step, double last);
/* Stores first, step, last. */
OX_API void oxGetColonObjValues(const oxArray *obj, double out[3]);
/* How many elements a colon object stands for (the element count of any other array); the second
   form is for one used as a subscript: "VELTRO:colon:nonFiniteEndpoint" is raised for endpoints or
   a step that are not finite, and fractions warn "VELTRO:colon:nonIntegerIndex". */
OX_API kwSize oxCountColonObj(const oxArray *a);
OX_API kwSize oxCountIntColonObj(const oxArray *a);
/* The number of elements of first:step:last as a real number; NaN when an operand is. A last
   element within rounding of last counts: 0:0.1:1 has eleven. */
OX_API double oxColonop_size(double first, double step, double last, oxClassID cls);
/* Writes n elements, filled from both ends, so that a reversed range is the exact mirror. */
OX_API void oxColonop_fill_with_doubles(double *dst, kwSize n, double first, double step,
                                        double last);
/* The range as a new 1-by-n array of the class; oxIntColonop for char and the integer classes.
   Null for a class that has no ranges. Raises error 19 above the size limits and 18 without memory.
 */
OX_API oxArray *oxColonop(double first, double step, double last, oxClassID cls);
OX_API oxArray *oxIntColonop(double first, double step, double last, oxClassID cls);
/* The range as positions in a block from oxMalloc that the caller frees; null when *count is 0.
   Raises "VELTRO:colon:nonFiniteEndpoint", and error 18. */
OX_API int64_t *oxSignedIndexColonop(double first, double step, double last, kwSize *count);
/* Replaces a colon object by the array that it stands for, in the same header, and returns it;
   other arrays are returned as they are; never null. Raises errors 19 and 18. */
OX_API oxArray *oxExpandColonObj(oxArray *a);

OX_END_C

#if defined(__cplusplus)
/* Raises "VELTRO:badsubscript": that subscripts must be positive integers or logicals when code is
   1, that the index exceeds the dimensions otherwise. */
OX_API OX_NORETURN void oxHandleSubscriptError(int code);
/* The detailed form: colonMask has one character per subscript, ':' where it is a colon; values
   holds the offending values. Raises the first subscript that is no integer above offset, then
   the first that lies outside dims (none are looked at when ndims is 0); texts name the array
   unless arrayName is null. Returns when nothing is wrong. */
OX_API void oxHandleSubscriptError(const char *arrayName, int ndims, const kwSize *dims,
                                   const char *colonMask, const double *values, int offset);
#endif

#endif
