/* Struct arrays: named fields, object data, properties, and conversion to and from cells. */
#ifndef OX_STRUCTS_H
#define OX_STRUCTS_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* Every element of a struct array (class struct or object) has the same ordered list of fields;
   a field's value is an array that the struct owns one reference to, or null. Positions of elements
   and fields count from zero. Names may repeat; the highest number then answers for the name.

   Arrays that share their fields must be unshared before fields are added, removed or set. */

/* --- Making structs ----------------------------------------------------------------------- */

/* All values null; a temporary of the current array-list context. Names are copied and taken as
   given, neither checked nor compared. Without memory these raise error 18, or return null before
   oxInitArrayListManager. No dimension (or a null list) gives 0-by-0, one gives a column. */
OX_API oxArray *oxCreateStructMatrix_730(kwSize m, kwSize n, int nfields, const char **names);
OX_API oxArray *oxCreateStructArray_730(kwSize ndim, const kwSize *dims, int nfields,
                                        const char **names);
/* n-by-1 with the fields file, name (char) and line (double) from the three lists of n: the stack
   of an error. A temporary; without memory error 18, or null as above. */
OX_API oxArray *oxCreateStackStruct(kwSize n, const char *const *file, const char *const *name,
                                    const double *line);

/* --- Fields ------------------------------------------------------------------------------- */

/* None of these checks the class of the array, nor a position of element or field. */

/* 0 for a struct without fields. */
OX_API int oxGetNumberOfFields(const oxArray *a);
/* The names in field order, or null without fields; the array's own, until its fields change. A
   single name stays valid for ever. */
OX_API const char **oxGetFieldNames(const oxArray *a);
OX_API const char *oxGetFieldNameByNumber(const oxArray *a, int n); /* null when out of range */
OX_API int oxGetFieldNumber(const oxArray *a, const char *name);    /* -1 when there is none */

/* The value of a field of element i, which stays the struct's; null when empty, and for a name that
   is no field. */
OX_API oxArray *oxGetFieldByNumber_730(const oxArray *a, kwSize i, int n);
OX_API oxArray *oxGetField_730(const oxArray *a, kwSize i, const char *name);
/* The struct takes v over, or another array that shares its data and is then stored instead; raises
   error 18 when that must be made and no memory is left. The previous value is not released:
   destroy it first. oxSetField does not notice a name that is no
   field and overwrites the last field of the element before: add the field first. */
OX_API void oxSetFieldByNumber_730(oxArray *a, kwSize i, int n, oxArray *v);
OX_API void oxSetField_730(oxArray *a, kwSize i, const char *name, oxArray *v);

/* Adds an empty field behind the others and returns its number, or that of the field of this name.
   The name is not checked. Returns -1 without memory for the name. Without memory for the values
   it raises error 18 (or before oxInitAllocListManager returns -1) and the name stays although the
   elements have no slot for it: nothing may be done with such an array, not even destroying it,
   before oxSetFields has given it a fitting block. */
OX_API int oxAddField(oxArray *a, const char *name);
/* The same with a checked name: raises VELTRO:AddField:InvalidFieldName, or error 18 for -1. */
OX_API void oxAddFieldToStruct(oxArray *a, const char *name);
/* Removes field n; its values become temporaries of the current array-list context, except that one
   which another container counts as its own loses a reference. Nothing happens for other classes
   and numbers out of range. Raises error 18 when the list cannot grow, or when the names are shared
   and no memory is left for others; nothing has changed in the latter case. */
OX_API void oxRemoveField(oxArray *a, int n);

/* The name table and the slots, for code that walks them. Slot i * fields + n is field n of element
   i; null without fields or elements. The setter takes the block off the current allocation-list
   context, unless the data are private; it frees nothing. */
OX_API struct name_index_info *oxGetFieldInfo(const oxArray *a);
OX_API oxArray **oxGetFields(const oxArray *a);
OX_API void oxSetFields(oxArray *a, oxArray **slots);

/* --- Object data -------------------------------------------------------------------------- */

/* Makes a struct an object of the named class and clears its checksum: 0. Refused for other
   classes, where the object tag is set, and without memory for the name: 1. */
OX_API int oxSetClassName(oxArray *a, const char *name);
/* Plain access. The setter stores the pointer: the name must live as long as the process. */
OX_API const char *oxGetObjectClassName(const oxArray *a);
OX_API void oxSetObjectClassName(oxArray *a, const char *name);
OX_API uint32_t oxGetObjectCheckSum(const oxArray *a);
OX_API void oxSetObjectCheckSum(oxArray *a, uint32_t checksum);
OX_API int oxGetObjectTagIndex(const oxArray *a);
OX_API void oxSetObjectTagIndex(oxArray *a, int tag);

/* --- Properties of class-system objects --------------------------------------------------- */

/* Only opaque arrays whose class supplies the access have properties; all others raise
   VELTRO:invalidInput. oxGetProperty gives a value of the caller's own (null for none), the shared
   form what the class answers. */
OX_API oxArray *oxGetProperty_730(const oxArray *a, kwSize index, const char *name);
OX_API oxArray *oxGetPropertyShared(const oxArray *a, kwSize index, const char *name);
OX_API void oxSetProperty_730(oxArray *a, kwSize index, const char *name, const oxArray *value);
OX_API void oxSetPropertyShared(oxArray *a, kwSize index, const char *name, const oxArray *value);

/* --- Builtins ----------------------------------------------------------------------------- */

/* plhs[0] = struct2cell(prhs[0]): a cell of size [fields, dimensions], sharing the values; a
   temporary. Raises errors 3, 1 and 2 for wrong counts of arguments,
   VELTRO:UndefinedFunction for what is no struct, and error 18. */
OX_API void oxStruct2cell(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);
/* plhs[0] = cell2struct(cell, names, d): dimension d (1 when not given) of the cell becomes the
   fields; names are a cell of strings or the rows of a char matrix. A temporary that shares the
   values. Raises errors 3, 2 and 1 for wrong counts of arguments, 15 for wrong classes,
   VELTRO:Cell2Struct:DimensionNumber, NumberOfNamesMismatch, NonStringFieldNames, NonStringVector,
   Non2DCharArray and InvalidFieldName, VELTRO:DuplicateFieldName, and error 18. */
OX_API void oxCell2struct(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);

OX_END_C

#endif
