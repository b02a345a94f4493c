/* Whole arrays as byte vectors and back, and the saved form of function handles. */
#ifndef OX_SERIALIZE_H
#define OX_SERIALIZE_H

#include <ox/types.h>

OX_BEGIN_C

/* A 1-by-N uint8 array, a temporary of the current context: the bytes of a buffer stream that holds
   the array under the name tag (null: none), and after it the stream's subsystem data if there are
   any. options: oiCOMPRESS (for nested subsystem data), oiOPTION16, oiWIDE. Null when the stream or
   the result cannot be had; raises "VELTRO:Serialize" when the array cannot be written. */
OX_API oxArray *oxSerializeWithTagEx(const oxArray *a, const char *tag, uint16_t options);
OX_API oxArray *oxSerializeWithTag(const oxArray *a, const char *tag);
OX_API oxArray *oxSerializeEx(const oxArray *a, uint16_t options);
OX_API oxArray *oxSerialize(const oxArray *a);

/* The array in such bytes, which may come from anywhere and are not changed: a temporary of the
   current context, or null when they are malformed. Never raises for bad bytes. *tag (tag may be
   null) becomes the name, which lives as long as the process, or null when it is empty; without an
   array it stays as it was. */
OX_API oxArray *oxDeserializeWithTag(const void *bytes, kwSize length, const char **tag);
OX_API oxArray *oxDeserialize(const void *bytes, kwSize length);

/* The struct that describes a function handle, for saving. Null, after the warning
   "VELTRO:saveNestedFunctionHandle", for a handle to a nested function. */
OX_API oxArray *oxFunctionHandleToSavedStruct(const oxArray *handle);
/* The handle in such a struct, a temporary; an empty 1-by-1 handle for a null struct (error 18
   without memory); null when no function handles are registered. */
OX_API oxArray *oxSavedStructToFunctionHandle(const oxArray *saved);

OX_END_C

#endif
