/* Names of variables and fields: which are valid, and how long they may be. */
#ifndef OX_NAMES_H
#define OX_NAMES_H

#include <ox/types.h>

OX_BEGIN_C

/* Whether name is an ASCII letter followed by ASCII letters, digits and underscores, in whatever
   locale; the length is not tested. The part form looks at len bytes, and always at the first. */
OX_API bool oxIsValidVelName(const char *name);
OX_API bool oxIsValidVelNamePart(const char *name, kwSize len);
/* Cuts a name of 64 bytes or more after 63, with the warning VELTRO:namelengthmaxexceeded, and
   returns true; leaves any other alone. Where that warning is raised as an error, nothing is cut.
 */
OX_API bool oxTruncateVelName(char *name);

OX_END_C

#endif
