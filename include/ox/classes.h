/* The array record from outside: classes, flags, data pointers, dimensions, field offsets. */
#ifndef OX_CLASSES_H
#define OX_CLASSES_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* Nothing here checks its array: a null array or a wrong class is the caller's fault. */

/* --- Classes ---------------------------------------------------------------------------- */

/* The class id: the stored class, or what the class layer answers for opaque and object. */
OX_API oxClassID oxGetClassID(const oxArray *a);
/* The class name; for an object its stored name, "" when it has none. The library owns it. */
OX_API const char *oxGetClassName(const oxArray *a);
/* The name of a class id; "unknown" for ids without a class. */
OX_API const char *oxArrayClassIDName(oxClassID id);
/* The first class whose name equals name but for letter case; 0 for none or for null. */
OX_API oxClassID oxClassIDFromClassName(const char *name);
/* Whether the class name is name, letter case included. */
OX_API bool oxIsClass(const oxArray *a, const char *name);
/* Bytes of one element; 0 for indexing-opaque arrays and for unknown ids. */
OX_API kwSize oxGetElementSize(const oxArray *a);
OX_API kwSize oxGetElementSizeofClassID(oxClassID id);

/* Whether the stored class is the one of the name; a comment says where it is more. */
OX_API bool oxIsCell(const oxArray *a);
OX_API bool oxIsStructClass(const oxArray *a); /* struct, not object */
OX_API bool oxIsStruct(const oxArray *a);      /* struct or object */
OX_API bool oxIsLogical(const oxArray *a);
OX_API bool oxIsChar(const oxArray *a);
OX_API bool oxIsDouble(const oxArray *a);
OX_API bool oxIsSingle(const oxArray *a);
OX_API bool oxIsInt8(const oxArray *a);
OX_API bool oxIsUint8(const oxArray *a);
OX_API bool oxIsInt16(const oxArray *a);
OX_API bool oxIsUint16(const oxArray *a);
OX_API bool oxIsInt32(const oxArray *a);
OX_API bool oxIsUint32(const oxArray *a);
OX_API bool oxIsInt64(const oxArray *a);
OX_API bool oxIsUint64(const oxArray *a);
OX_API bool oxIsFunctionHandle(const oxArray *a);
OX_API bool oxIsOpaque(const oxArray *a);
OX_API bool oxIsObject(const oxArray *a);
OX_API bool oxIsFloat(const oxArray *a);   /* double or single */
OX_API bool oxIsInteger(const oxArray *a); /* one of the eight integer classes */
OX_API bool oxIsIndex(const oxArray *a);   /* uint64, the class of kwIndex */
OX_API bool oxIsNumeric(const oxArray *a); /* the class may hold an imaginary part */
OX_API bool oxIsComplex(const oxArray *a); /* numeric, and the imaginary part is there */
OX_API bool oxIsSparse(const oxArray *a);

/* --- Flags ------------------------------------------------------------------------------ */

/* One bit of the header each. */
OX_API bool oxIsCommaList(const oxArray *a);
OX_API bool oxIsReusable(const oxArray *a);
OX_API bool oxIsDataPrivate(const oxArray *a);
OX_API bool oxIsFromGlobalWS(const oxArray *a);
OX_API bool oxIsScalarDoubleFlagSet(const oxArray *a);
OX_API void oxSetFromGlobalWS(oxArray *a, bool on);
/* With private data the library never frees the data blocks, not even with the array. */
OX_API void oxSetDataPrivateFlag(oxArray *a, bool on);
OX_API void oxSetEmptySqrBrktFlag(oxArray *a, bool on);
OX_API void oxSetScalarDoubleFlag(oxArray *a);
OX_API void oxClearScalarDoubleFlag(oxArray *a);
/* Brings the flag in line with the dimensions of a double array; other classes stay as they are.
   The spelling is part of the interface. */
OX_API void oxSetScalarDoubleFlagIfAppropiate(oxArray *a);
/* One byte that the library keeps with the array and does not interpret. */
OX_API int oxGetUserBits(const oxArray *a);
OX_API void oxSetUserBits(oxArray *a, int bits);

/* --- Data ------------------------------------------------------------------------------- */

/* The blocks belong to the array. A cell's or struct's data are its slots. */
OX_API void *oxGetData(const oxArray *a);
OX_API double *oxGetPr(const oxArray *a);
OX_API void *oxGetImagData(const oxArray *a);
OX_API double *oxGetPi(const oxArray *a);
OX_API oxChar *oxGetChars(const oxArray *a);
OX_API oxLogical *oxGetLogicals(const oxArray *a);
/* The array takes the block over from the caller (it leaves the current allocation-list context)
   unless its data are private. The previous block is not freed. */
OX_API void oxSetData(oxArray *a, void *block);
OX_API void oxSetPr(oxArray *a, double *block);
OX_API void oxSetImagData(oxArray *a, void *block);
OX_API void oxSetPi(oxArray *a, double *block);
/* Announces an imaginary part that has no block yet; replace it before the data are read. */
OX_API void oxMarkImagData(oxArray *a);

/* Sparse arrays: row indices, column starts, capacity. Setters take blocks over as oxSetData
   does; oxSetNzmax only records the capacity. */
OX_API kwIndex *oxGetIr_730(const oxArray *a);
OX_API kwIndex *oxGetJc_730(const oxArray *a);
OX_API void oxSetIr_730(oxArray *a, kwIndex *ir);
OX_API void oxSetJc_730(oxArray *a, kwIndex *jc);
OX_API kwSize oxGetNzmax_730(const oxArray *a);
OX_API void oxSetNzmax_730(oxArray *a, kwSize nzmax);

/* --- Dimensions ------------------------------------------------------------------------- */

OX_API kwSize oxGetNumberOfDimensions_730(const oxArray *a); /* at least 2 */
/* One size per dimension, owned by the array, until its dimensions change. */
OX_API const kwSize *oxGetDimensions_730(const oxArray *a);
OX_API kwSize oxGetNumberOfElements(const oxArray *a);
OX_API kwSize oxGetM(const oxArray *a); /* rows */
OX_API kwSize oxGetN(const oxArray *a); /* product of all further dimensions */
OX_API bool oxIsEmpty(const oxArray *a);
/* Store dimensions as given; data are neither moved nor checked. oxSetDimensions returns 0, or 1
   when no memory is left (the array is then untouched); ndim 0 means 0-by-0 and ndim 1 a column.
   oxSetN makes an array of more dimensions 2-D. */
OX_API int oxSetDimensions_730(oxArray *a, const kwSize *dims, kwSize ndim);
OX_API void oxSetM_730(oxArray *a, kwSize m);
OX_API void oxSetN_730(oxArray *a, kwSize n);
/* Zero-based position of the element with the nsubs zero-based subscripts; nothing is checked. */
OX_API kwIndex oxCalcSingleSubscript_730(const oxArray *a, kwSize nsubs, const kwIndex *subs);

/* --- Numbers ---------------------------------------------------------------------------- */

/* The first element as a double; NaN for an empty array and for classes without numbers. */
OX_API double oxGetScalar(const oxArray *a);
OX_API double oxGetEps(void); /* the distance from 1 to the next double */
OX_API double oxGetInf(void);
OX_API double oxGetNaN(void);
OX_API bool oxIsInf(double x);
OX_API bool oxIsNaN(double x);
OX_API bool oxIsFinite(double x);

/* --- Re-typing in place ----------------------------------------------------------------- */

/* Releases what the header holds and makes it 1-by-1 of the class without data, with the flags that
   go with that and no others; scope and reference count stay. */
OX_API void oxReInitArray2Type(oxArray *a, oxClassID id);
OX_API void oxReInitArray2ScalarDouble(oxArray *a);

/* --- Where the fields lie, in bytes from the record's start ------------------------------ */

/* For code that reads the record without its C++ definition. */
OX_API kwSize oxGetPdataOffset(void);
OX_API kwSize oxGetCellsOffset(void);
OX_API kwSize oxGetLinkOffset(void);
OX_API kwSize oxGetScopeOffset(void);
OX_API kwSize oxGetReferenceCountOffset(void);

OX_END_C

#endif
