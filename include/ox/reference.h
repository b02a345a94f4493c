/* Subscripted reference: A(I, J, ...) of full arrays, structs, cells and sparse arrays. */
#ifndef OX_REFERENCE_H
#define OX_REFERENCE_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* The elements of a that nsubs subscripts (see oxConvertToIndex) select, as a new temporary of a's
   class. Fewer subscripts than dimensions fold the trailing dimensions into the last one. With one
   subscript the result takes the orientation of a vector a, a column for ':', and otherwise the
   shape of the subscript; with several their counts are its dimensions. An imaginary part that is
   all zero is dropped. Elements of cells and structs are shared by reference. Without subscripts
   the result is a shared copy of a. Raises "VELTRO:badsubscript" for positions that are no positive
   integers or lie outside, error 19 for a result above the size limits, error 18 without memory
   (before oxInitArrayListManager null). */
OX_API oxArray *oxSubscriptedReference(const oxArray *a, kwSize nsubs, const oxArray *subs[]);
/* The same for a struct or object array a: elements with all their fields. */
OX_API oxArray *oxStructureReference(const oxArray *a, kwSize nsubs, const oxArray *subs[]);

/* How many positions subscript k (one-based) of nsubs selects, where that can be told without
   converting it: for ':', colon objects (raising as oxCountIntColonObj does), masks and text; of a
   sparse mask all elements count. False, and *count 0, for a real numeric subscript. */
OX_API bool oxSubsCount(const oxArray *a, const oxArray *sub, kwSize k, kwSize nsubs,
                        kwSize *count);

/* The zero-based position of the element that scalar subscripts select. leadingIndex, one-based, is
   a first index before them that ranges over the fields of a; 0 means there is none. A single
   subscript of an array with fewer than two rows counts along the row. Raise
   "VELTRO:cellIndexIsZero" for what is no positive integer and "VELTRO:nindexIsZero" without
   subscripts. Beyond the extents oxScalarRefConst raises; oxScalarRef grows a and sets *growFlag
   (may be null) to true, which otherwise becomes false. */
OX_API kwSize oxScalarRef(oxArray *a, kwSize nsubs, const oxArray *subs[], kwSize leadingIndex,
                          bool *growFlag);
OX_API kwSize oxScalarRefConst(const oxArray *a, kwSize nsubs, const oxArray *subs[],
                               kwSize leadingIndex);

/* Copies n elements of a class between a dense block and the positions offset + index[i] * stride
   (index null: 0, 1, ... n-1). Null for classes without elements. */
typedef void (*oxIndexedSourceCopyFcn)(void *dst, const void *src, const kwIndex *index, kwSize n,
                                       kwSize stride, kwSize offset);
typedef void (*oxIndexedDestinationCopyFcn)(void *dst, const kwIndex *index, const void *src,
                                            kwSize n, kwSize stride, kwSize offset,
                                            bool scalarSource);
OX_API oxIndexedSourceCopyFcn oxGetIndexedSourceCopyFcn(oxClassID id);
OX_API oxIndexedDestinationCopyFcn oxGetIndexedDestinationCopyFcn(oxClassID id);

OX_END_C

#endif
