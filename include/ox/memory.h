/* Memory in three layers (raw, checked, listed) and the allocation list with its contexts. */
#ifndef OX_MEMORY_H
#define OX_MEMORY_H

#include <ox/types.h>

OX_BEGIN_C

/* Raw layer: null on failure, never raises. Sizes are bytes. With the aligned heap (the default
   allocator) a zero size gives null, and a count * size that does not fit gives null. The caller
   owns the block and frees it with oxFreeEx. */
OX_API void *oxMallocEx(kwSize size);
OX_API void *oxCallocEx(kwSize count, kwSize size); /* zeroed */
/* A null block allocates; size 0 frees the block and gives null. On failure the block stays. */
OX_API void *oxReallocEx(void *block, kwSize size);
OX_API void oxFreeEx(void *block); /* null is ignored */

/* Checked layer: as raw, but a failed request for a non-zero size calls the out-of-memory
   listener, which raises error 18 once the allocation-list manager is installed; before, they
   answer null. */
OX_API void *oxMallocExCheck(kwSize size);
OX_API void *oxCallocExCheck(kwSize count, kwSize size);
OX_API void *oxReallocExCheck(void *block, kwSize size);

/* Listed layer: checked (null for a zero size, error 18), and the block is entered on the
   allocation list, so that leaving the context frees what the caller left behind. oxMalloc and its
   kin are these functions. */
OX_API void *oxMallocExAllocList(kwSize size);
OX_API void *oxCallocExAllocList(kwSize count, kwSize size);
/* The old block leaves the list and the new one enters it; an unmoved block keeps its entry. Size
   0 frees and gives null. When error 18 is raised the old block is freed with its context. */
OX_API void *oxReallocExAllocList(void *block, kwSize size);
/* The block leaves the current context and is freed. A block of an enclosing context is freed
   too, but its entry stays: that is the caller's fault. */
OX_API void oxFreeExAllocList(void *block);
/* The same four under the names that extension modules use: null for a zero size, otherwise error
   18 when no memory is left. */
OX_API void *oxMalloc(kwSize size);
OX_API void *oxCalloc(kwSize count, kwSize size);
OX_API void *oxRealloc(void *block, kwSize size);
OX_API void oxFree(void *block);

/* Enters a block on the current context, or takes it off; null is ignored. Ownership moves to
   the list (which raises error 18, and leaves the block to the caller, when it cannot grow), or
   back to the caller. Only the current context is searched. */
OX_API void oxAddToAllocList(void *block);
OX_API void oxRemoveFromAllocList(void *block);
/* Whether any context lists the block; false for null. */
OX_API bool oxIsOnAllocList(const void *block);
/* Number of blocks listed in all contexts. */
OX_API kwSize GetAllocListLength(void);

/* Opens a context and returns the index that oxRestorePreviousAllocListContext wants back. */
OX_API int oxEnterNewAllocListContext(void);
/* Makes the context that starts at index current again; entries are not touched. */
OX_API void oxRestorePreviousAllocListContext(int index);
/* Frees every block of the current context, last listed first. */
OX_API void oxFreeAllocListContext(void);

/* Installs the list as allocation and free listener and the raise of error 18 as out-of-memory
   reaction. Until then failed allocations return null. */
OX_API void oxInitAllocListManager(void);
/* Frees the list itself; blocks still listed are not freed. A later listing starts afresh. */
OX_API void oxShutdownAllocLst(void);

/* Replaces the listeners of the listed layer; either may be null. Both receive non-null blocks:
   each new one, and each one about to be freed. */
OX_API void oxSetAllocListeners(void (*on_alloc)(void *), void (*on_free)(void *));
/* Replaces the reaction of the checked layer to a failed allocation; null: return null. */
OX_API void oxSetOutOfMemoryListener(void (*listener)(void));

OX_END_C

#endif
