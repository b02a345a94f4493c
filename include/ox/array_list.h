/* The array list: temporaries, contexts that destroy them, and scopes. */
#ifndef OX_ARRAY_LIST_H
#define OX_ARRAY_LIST_H

#include <ox/types.h>

OX_BEGIN_C

/* Installs the hooks: from then on every created array is a temporary on the list, and a failed
   creation raises error 18 instead of returning null. */
OX_API void oxInitArrayListManager(void);
/* Frees the list itself; arrays on it are not destroyed. */
OX_API void oxShutdownArrayList(void);
OX_API bool oxIsArrayListInitialized(void);

/* Opens a context and returns the index that the matching exit wants. Contexts nest strictly. */
OX_API int oxEnterNewArrayListContext(void);
/* Leaves a context. With destroy, every array of it that is not among the nkeep arrays of keep
   (entries may be null) is destroyed whatever its reference count; the kept ones, or without
   destroy all, join the enclosing context. */
OX_API void oxExitArrayListContext(int index, oxArray **keep, int nkeep, bool destroy);
/* Leaves a context and destroys nothing. */
OX_API void oxExitAndFoldArrayListContext(int index);
/* Moves an array of the enclosing context (which starts at index) into the current one. */
OX_API void oxMoveArrayFromPreviousContext(int index, oxArray *a);
/* Calls fn for each array of the current context, last listed first. */
OX_API void oxApplyToAllArraysOnArrayList(void (*fn)(oxArray *));

/* Whether the scope is oxSCOPE_TEMPORARY, and the scope itself. */
OX_API bool oxIsTemp(const oxArray *a);
OX_API int oxGetArrayScopeField(const oxArray *a);
/* Stores a scope; becoming temporary enters the array on the list (error 18 when that cannot
   grow), ceasing to be takes it off. */
OX_API void oxSetArrayScope(oxArray *a, int scope);
/* Makes an array the value of an object property: scope oxSCOPE_PROPERTY. Consumes a and returns
   the array to store, which may be another one that shares its data; null gives null. Raises
   error 18 when a copy is needed and no memory is left. */
OX_API oxArray *oxPreparePropertyValueForContainment(oxArray *a);
/* A shared copy that is not on the list and belongs to the caller; null gives null. Raises error
   18 when no memory is left. */
OX_API oxArray *oxCreateSharedCopyNotOnArrayList(const oxArray *a);

OX_END_C

#endif
