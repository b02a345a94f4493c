/* Copies, reference counts, and storage shared between arrays. */
#ifndef OX_SHARING_H
#define OX_SHARING_H

#include <ox/types.h>

OX_BEGIN_C

/* Two mechanisms share values, and both must be respected by whoever changes one. A reference
   count lets several owners hold one header; destroying it drops a reference. A ring joins several
   headers, each with dimensions, flags and scope of its own, that use one data block. An array
   with neither may be written in place; any other is unshared first.

   Arrays that these functions return are temporaries of the current array-list context, unless
   said otherwise. When no memory is left they raise error 18; before oxInitArrayListManager they
   return null instead. The source is then as before, but for a failed deep copy: its header stays
   on the list, sharing the source's data. A null source gives null. */

/* --- Reference counts -------------------------------------------------------------------- */

/* a itself with one reference more; the caller owns that reference. */
OX_API oxArray *oxCreateReference(oxArray *a);
OX_API void oxIncRefCount(oxArray *a);
/* Owners beyond the first. */
OX_API uint32_t oxGetReferenceCount(const oxArray *a);
OX_API void oxSetReferenceCount(oxArray *a, uint32_t count);
/* a when it has one owner. Otherwise gives up one reference and returns a header of its own that
   shares the data and has a's scope. */
OX_API oxArray *oxUnreference(oxArray *a);

/* --- Copies ------------------------------------------------------------------------------ */

/* A temporary that shares a's data; before oxInitArrayListManager a reference to a. */
OX_API oxArray *oxCreateSharedCopy(oxArray *a);
/* A new header that shares a's data. */
OX_API oxArray *oxCreateSharedDataCopy(const oxArray *a);
/* A copy that shares nothing; the elements of containers are copied as well. */
OX_API oxArray *oxCreateDeepCopy(const oxArray *a);
OX_API oxArray *oxDuplicateArray(const oxArray *a);
/* The same class and attributes, 0-by-0, without data. */
OX_API oxArray *oxCreateEmptyCopy(const oxArray *a);
/* The same class, dimensions and attributes with new storage whose contents are undefined; with an
   imaginary part when complex is 1. A sparse copy has the row indices and column starts of a, not
   copies of them: the caller replaces them before either array is destroyed. */
OX_API oxArray *oxCreateSkeletonCopy(const oxArray *a, int complex);
/* As oxCreateSharedDataCopy, but a reusable array loses its data to the copy: a is left empty, of
   unknown class, and reusable. */
OX_API oxArray *oxCreateClaimedDataCopy(oxArray *a);
/* Replaces what dst holds by src. dst keeps its address, scope and reference count. src is consumed
   when it has one owner; otherwise it loses a reference and shares its data with dst. A null src
   leaves dst empty and of unknown class. */
OX_API void oxMoveArrayOntoHeader(oxArray *dst, oxArray *src);
/* The same without taking src from its owner. */
OX_API void oxMoveCopyOntoHeader(oxArray *dst, oxArray *src);

/* --- Before writing ---------------------------------------------------------------------- */

/* Whether a has more than one owner or is in a ring. */
OX_API bool oxIsSharedArray(const oxArray *a);
/* Whether the two are one header or agree in everything but scope, ring and references. Arrays of
   more than two dimensions agree only with themselves. */
OX_API bool oxIsExactSharedCopy(const oxArray *a, const oxArray *b);

/* The header to write to, with storage of its own: a, or when others hold references to a, a new
   header that takes over the caller's reference and a's scope. */
OX_API oxArray *oxUnshare(oxArray *a);
OX_API oxArray *oxUnshareEx(oxArray *a);
/* The same, but containers get only a slot block of their own: the elements stay the same arrays,
   each with one owner more. */
OX_API oxArray *oxUnshareShallow(oxArray *a);
OX_API oxArray *oxUnshareShallowEx(oxArray *a);
/* Unshares a whose header the caller knows to stay the same. Deliberate: true means that it failed,
   which is seen before oxInitArrayListManager only, as failures raise afterwards. */
OX_API bool oxUnshareArray(oxArray *a, int shallow);
/* Leaves the storage to a alone; the former sharers get one common copy. Returns 0, or where no
   memory is left 1 before oxInitArrayListManager. */
OX_API int oxUnshareOtherArrays(oxArray *a);
/* Leaves the storage to a alone; the former sharers become empty (no data, no rows). Returns the
   header that followed a in the ring, null when there was none. */
OX_API oxArray *oxUnshareAndEmptyOtherArrays(oxArray *a);

OX_END_C

#endif
