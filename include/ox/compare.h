/* Equality of whole arrays, identity, and the comparison behind switch statements. */
#ifndef OX_COMPARE_H
#define OX_COMPARE_H

#include <ox/types.h>

OX_BEGIN_C

/* Whether two arrays (either may be null) have the same shape and equal values: 1 or 0. Numeric,
   char and logical arrays compare by value across classes; other classes compare with their own.
   A null equals a null and an empty numeric, char or logical array. With nan_unequal a NaN equals
   nothing; without it NaN equals NaN. Never raises. */
OX_API int oxAreMatricesEqualNanOptional(const oxArray *a, const oxArray *b, int nan_unequal);
/* The same with nan_unequal. */
OX_API int oxAreMatricesEqual(const oxArray *a, const oxArray *b);

/* A test for identity of two arrays of one class. */
typedef bool (*oxIdentityTest)(const oxArray *a, const oxArray *b);
/* Whether both are one array, or of one class whose registered test says that they are identical.
   False when one is null. */
OX_API bool oxIsIdentical(const oxArray *a, const oxArray *b);
/* Registers the identity test of a class (null: only the same array is identical) and returns the
   previous one. Ids without a class share the row of the unknown class. */
OX_API oxIdentityTest oxRegisterIdentityTest(oxClassID id, oxIdentityTest test);

/* Raises VELTRO:badSwitchExpression unless e is a numeric or logical scalar or a char array. */
OX_API void oxValidateSwitchExpression(const oxArray *e);
/* Whether the switch value equals the case value, or an element of a case cell. Raises
   VELTRO:badCaseExpression for other classes of case values. */
OX_API bool oxSwitchCompare(const oxArray *switch_value, const oxArray *case_value);

OX_END_C

#endif
