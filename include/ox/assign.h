/* Subscripted assignment A(I, J, ...) = B, deletion A(I, :) = [], and resizing, all in place. */
#ifndef OX_ASSIGN_H
#define OX_ASSIGN_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* Assigns rhs to the elements of a that nsubs subscripts (see oxConvertToIndex) select. a keeps its
   header: storage that others share is copied first; reference counts are the caller's business.
   A scalar rhs goes to every position; otherwise the sizes of rhs that are not 1 must be those of
   the subscripts in order. rhs is converted to a's class (which warns and raises as oxMustBe does)
   and made full. An array of unknown class without elements, or one marked as an empty bracket,
   takes the class of rhs. a grows where positions lie beyond it; new elements that the assignment
   does not reach take the value of filler's first element, or zero when filler is null. With
   resizeOnly a grows but no element is assigned.
   Raises "VELTRO:badsubscript", errors 68 and 70 and "VELTRO:subsassigndimmismatch" for sizes that
   do not match, "VELTRO:indexed_matrix_cannot_be_resized", error 19 above the size limits and 18
   without memory. Nothing of a has changed then, unless it had already grown.
   Returns the object that growth of an array of class objects was filled with, which the caller
   destroys, or null. */
OX_API oxArray *oxSubscriptedAssignmentWithFiller(oxArray *a, kwSize nsubs, const oxArray *subs[],
                                                  const oxArray *rhs, const oxArray *filler,
                                                  bool resizeOnly);
/* The same without filler; nothing is left to destroy. */
OX_API void oxSubscriptedAssignment(oxArray *a, kwSize nsubs, const oxArray *subs[],
                                    const oxArray *rhs);
/* The same for a struct or object array a; fields are matched by name, and must be the same ones
   (error 68). An array without elements and fields takes the fields of rhs. */
OX_API void oxStructureAssignment(oxArray *a, kwSize nsubs, const oxArray *subs[],
                                  const oxArray *rhs);

/* Removes the elements that the subscripts select; all but one of them must be ':' (error 72). A
   position beyond the extent raises error 69, an array of unknown class error 71. */
OX_API void oxSubscriptedDelete(oxArray *a, kwSize nsubs, const oxArray *subs[]);

/* Give an array other sizes. Elements keep their subscripts, new ones are zero or null slots, those
   outside are released. Storage that others share is copied first. Raise error 19 above the size
   limits and 18 without memory; a then is as before. */
OX_API void oxResize(oxArray *a, kwSize m, kwSize n);
OX_API void oxResizeArray(oxArray *a, kwSize ndims, const kwSize *dims);

OX_END_C

#endif
