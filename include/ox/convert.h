/* Element-type conversion: buffers, whole arrays, and arguments that must have a class. */
#ifndef OX_CONVERT_H
#define OX_CONVERT_H

#include <ox/types.h>

OX_BEGIN_C

/* Integer destinations saturate and round half away from zero; NaN becomes 0. Three warnings tell
   of it, each at most once per call: VELTRO:intConvertNaN, VELTRO:intConvertOverflow,
   VELTRO:intConvertNonIntVal. Char destinations cut towards zero and saturate in silence when the
   source is floating. Logical destinations hold whether an element differs from 0; a NaN raises
   error 66. */

/* Converts n elements from src to dst, which must not overlap and belong to the caller. Writes
   nothing for classes other than logical, char, and double to uint64, and for logical to logical
   or char. When a NaN raises, the elements before it are written. */
OX_API void oxConvertBufferToType(void *dst, oxClassID dst_class, const void *src,
                                  oxClassID src_class, size_t n);

/* A new array of the class with a's dimensions and converted elements, a temporary of the current
   array-list context; null when there is no such conversion or no memory is left. An imaginary
   part that comes out all zero is dropped. Complex to logical raises error 67, NaN to logical
   error 66, a sparse array to anything but double and logical VELTRO:unimplementedSparseType.
   Byte-sized elements that are all 0 or 1 become logical without copying: the arrays share. A colon
   object becomes the range that it stands for, unless it has the class. */
OX_API oxArray *oxCreateConvertedCopy(const oxArray *a, oxClassID to);

/* The functions below never answer null once the array-list manager is installed: they raise error
   18 where it is not said otherwise. */

/* a itself when it has the class, else a converted copy, which the caller owns as a temporary.
   Raises VELTRO:invalidConversion when there is no conversion or no memory; complex to char
   raises VELTRO:noConversionComplexToChar, and floating elements outside 0 to 65535 warn
   VELTRO:nonIntegerTruncatedInConversionToChar. Class void means oxMustBeSparse. */
OX_API oxArray *oxMustBe(oxArray *a, oxClassID to);
/* a itself when it is a full double array, else a full double copy of it; raises
   VELTRO:invalidConversion for classes without numbers. */
OX_API oxArray *oxMustBeFullDouble(oxArray *a);
/* a itself when it is not sparse, else a full array of its class. */
OX_API oxArray *oxMustBeFull(oxArray *a);
/* a itself when it is sparse, else a sparse copy of a 2-D double or logical array; others raise
   VELTRO:unimplementedSparseType. */
OX_API oxArray *oxMustBeSparse(oxArray *a);
/* a itself when it has an imaginary part, else a copy with a zero one; classes that cannot have
   one are converted to double first. */
OX_API oxArray *oxMustBeComplex(oxArray *a);

/* Drops the imaginary part of a numeric array that shares no data when every element of it
   equals 0; -0.0 does, NaN does not. Other arrays stay as they are. */
OX_API void oxFreeImagIfZero(oxArray *a);

OX_END_C

#endif
