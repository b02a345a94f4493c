/* Warnings: shown, only recorded, or raised, as the warning manager says for the identifier. */
#ifndef OX_WARNINGS_H
#define OX_WARNINGS_H

#include <ox/errors.h>
#include <ox/types.h>

OX_BEGIN_C

/* Receives the composed text of a shown warning, which is valid during the call. */
typedef void (*oxWarningHandler)(const char *text);

/* Warn with an identifier and a message. Raise with both where the identifier's status is 2. */
OX_API void oxWarningMsgIdAndTxt(const char *id, const char *fmt, ...);
OX_API void oxVWarningMsgIdAndTxt(const char *id, const char *fmt, va_list args);
/* Warns without identifier, a period appended; an empty format only clears the last warning. */
OX_API void oxWarningMsgTxt(const char *fmt, ...);
/* Warns with the message of an error-table entry. */
OX_API void oxWarningIdAndMsg(const char *id, oxErrorMessage number);
/* Replaces the handler of shown warnings (null: the default, which prints a line) and returns the
   previous one. */
OX_API oxWarningHandler oxSetWarningMessageHandler(oxWarningHandler handler);

OX_END_C

#endif
