/* Char arrays: made from and turned into C strings, UTF-8, UTF-16 and lists of strings. */
#ifndef OX_TEXT_H
#define OX_TEXT_H

#include <ox/levels.h>
#include <ox/types.h>

OX_BEGIN_C

/* A char array holds UTF-16 units without a terminator. "Local" means the code page of the process
   locale. Malformed bytes become U+FFFD, characters that an encoding lacks its substitute; nothing
   is raised for them. A text of 2^31 or more units or bytes raises error 73 wherever it would have
   to be converted.

   The string of an array is what precedes its first NUL unit. */

/* --- Making char arrays ------------------------------------------------------------------- */

/* All of these give a temporary of the current array-list context. Without memory they raise error
   18, or return null before oxInitArrayListManager. */

/* 1-by-n from a NUL-terminated text; null or "" gives 0-by-0. Despite its name, oxCreateString_UTF8
   reads the local code page, exactly as oxCreateString does. */
OX_API oxArray *oxCreateString(const char *str);
OX_API oxArray *oxCreateString_UTF8(const char *str);
OX_API oxArray *oxCreateString_UTF16(const oxChar *str);
/* The same from n bytes or units, NULs included; n = 0 gives 0-by-0. _UTF8 reads the local code
   page here, too. */
OX_API oxArray *oxCreateStringFromNChars_730(const char *str, kwSize n);
OX_API oxArray *oxCreateStringFromNChars_UTF8(const char *str, kwSize n);
OX_API oxArray *oxCreateStringFromNChars_UTF16(const oxChar *str, kwSize n);
/* m-by-w: row i is strs[i], w the length of the longest in units. Shorter rows are filled up with
   NUL units, not with blanks. */
OX_API oxArray *oxCreateCharMatrixFromStrings_730(kwSize m, const char **strs);
OX_API oxArray *oxCreateCharMatrixFromStrings_UTF8(kwSize m, const char **strs);
OX_API oxArray *oxCreateCharMatrixFromStrings_UTF16(kwSize m, const oxChar **strs);
/* All units NUL. No dimension (or a null list) gives 0-by-0, one gives a column. */
OX_API oxArray *oxCreateCharArray_730(kwSize ndim, const kwSize *dims);

/* --- Reading into the caller's buffer ----------------------------------------------------- */

/* All elements, NULs included, as bytes and a NUL. Returns 1 when the text was cut (the buffer then
   holds buflen - 1 bytes and the NUL; a character of several bytes may be cut in the middle) and
   for an array that is null or not char, whose buffer stays untouched; else 0. A null buffer or
   buflen 0 returns 0. */
OX_API int oxGetString_730(const oxArray *a, char *buf, kwSize buflen);
OX_API int oxGetString_UTF8(const oxArray *a, char *buf, kwSize buflen);
/* All n units are copied, whatever buflen says: the buffer must have room for them. Then a NUL unit
   follows at n, or at buflen - 1 when n >= buflen. Returns 1 when n < buflen, else 0: the opposite
   sense of the byte forms. A null buffer or buflen 0: nothing is written, 0. An array that is null
   or not char: nothing is written, 1 unless buflen is 0. */
OX_API int oxGetString_UTF16(const oxArray *a, oxChar *buf, kwSize buflen);
/* The string as at most buflen bytes, and a NUL if there is room left. Nothing happens for a null
   buffer, buflen 0, or an array that is null or not char. */
OX_API void oxGetNChars_730(const oxArray *a, char *buf, kwSize buflen);
OX_API void oxGetNChars_UTF8(const oxArray *a, char *buf, kwSize buflen);
/* All n units are copied, whatever buflen says, and a NUL unit at n when n < buflen. Nothing
   happens for a null buffer, or an array that is null or not char. */
OX_API void oxGetNChars_UTF16(const oxArray *a, oxChar *buf, kwSize buflen);

/* --- Reading into new blocks -------------------------------------------------------------- */

/* The string, NUL-terminated, in a block that the caller frees with oxFreeEx; it is on no list.
   Null for an array that is null or not char, and without memory. */
OX_API char *oxArrayToString(const oxArray *a);
OX_API char *oxArrayToString_UTF8(const oxArray *a);
OX_API oxChar *oxArrayToString_UTF16(const oxArray *a);
/* The same in a block from alloc, which is asked for bytes and may answer null. */
OX_API char *oxCreateCStrFromArray(const oxArray *a, void *(*alloc)(kwSize));
OX_API char *oxCreateUTF8CStrFromArray(const oxArray *a, void *(*alloc)(kwSize));
OX_API oxChar *oxCreateUTF16CStrFromArray(const oxArray *a, void *(*alloc)(kwSize));

/* The rows of a char matrix (columns beyond the second dimension count as columns) in a list that
   ends with null; the caller frees each row and the list with oxFreeEx. The byte forms convert
   whole rows, NULs included; a row without memory stays null. The UTF-16 form stops each row at its
   first NUL, and frees everything and returns null when a row gets no memory. Null for an array
   that is null or not char. */
OX_API char **oxCharMatrixToStrings(const oxArray *a);
OX_API char **oxCharMatrixToStrings_UTF8(const oxArray *a);
OX_API oxChar **oxCharMatrixToStrings_UTF16(const oxArray *a);
/* The same with list and rows from alloc; release frees what alloc gave. Null as above, and when
   alloc answers null for the list. */
OX_API char **oxCreateCStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                          void (*release)(void *));
OX_API char **oxCreateUTF8CStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                              void (*release)(void *));
OX_API oxChar **oxCreateUTF16CStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                                 void (*release)(void *));

/* --- Other forms -------------------------------------------------------------------------- */

/* All elements as local bytes in a new uint8 array: 1-by-L for a row; for any other array L rows
   by its second dimension, only the first L elements filled. A temporary; without memory error 18.
   Null for an array that is null, not char or empty. */
OX_API oxArray *oxArrayToByteChars(const oxArray *a);
/* Overwrites the first units of a with a local text, without terminator; the dimensions stay. The
   number of units that the text takes: when that is more than a has, a is unchanged. 0 when str is
   null, or a is null, not char or empty. */
OX_API int oxArrayStrCpy(oxArray *a, const char *str);

/* A copy in a block from alloc; null for null and without memory. The UTF-16 form asks alloc for as
   many bytes as the text has units with its NUL, and writes twice as many: alloc must give that. */
OX_API char *oxCopyString(const char *str, void *(*alloc)(kwSize));
OX_API char *oxCopyStringUTF8(const char *str, void *(*alloc)(kwSize));
OX_API oxChar *oxCopyStringUTF16(const oxChar *str, void *(*alloc)(kwSize));

OX_END_C

#endif
