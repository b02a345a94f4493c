/* Catenation: bracket expressions and cat along any dimension. */
#ifndef OX_CATENATE_H
#define OX_CATENATE_H

#include <ox/types.h>

OX_BEGIN_C

/* How operands are joined. Any number below oxCAT_HORIZONTAL means oxCAT_DIMENSION. */
enum {
    oxCAT_DIMENSION = 0,  /* cat(d, ...): the first argument is the dimension, from 1 */
    oxCAT_HORIZONTAL = 2, /* [A B]: dimension 2 */
    oxCAT_VERTICAL = 3    /* [A; B]: dimension 1 */
};

/* What the interpreter supplies with a catenation. */
typedef struct oxCatContext_tag {
    /* Chooses the class of the result from the operands. */
    oxClassID (*choose_class)(struct oxCatContext_tag *context, int nargs, const oxArray *args[]);
    void *user; /* the interpreter's own */
} oxCatContext;

/* Gives operand in the class: itself when it has it, else a new temporary. */
typedef const oxArray *(*oxCatConvertFcn)(oxCatContext *context, oxClassID id,
                                          const oxArray *operand);

/* Joins nargs arrays. The class is the chosen one, but char when that is numeric and an operand is
   char; one sparse operand makes the result sparse. 0-by-0 operands are skipped; an empty operand
   of another height (width) is skipped with the warning VELTRO:catenate:DimensionMismatch. Struct
   fields match by name. Returns a temporary of the current array-list context; cells and structs
   share their elements with the operands. Never null once the array-list manager is installed.
   Raises VELTRO:catenate:invalidDimension, sparseDimensionBad, incompatibleType, structFieldBad,
   dimensionMismatch, and errors 2, 18, 19. */
OX_API oxArray *oxCatenateDispatch(int form, int nargs, const oxArray *args[],
                                   oxCatConvertFcn convert, oxCatContext *context);

OX_END_C

#endif
