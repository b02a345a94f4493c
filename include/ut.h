/* The utility library's C interface: memory, messages and raising, warnings, formatting, text,
 * interning, hash tables, numbers. C++ users find the exception and the output converter in ut.hpp.
 *
 * One thread, the interpreter's, uses this library; only the text converters are per thread.
 * Texts are NUL-terminated bytes unless a length is given; a "unit" is a UTF-16 code unit. */
#ifndef UT_H
#define UT_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* Marks what the library exports. */
#if defined(_WIN32)
#if defined(UT_BUILDING)
#define UT_API __declspec(dllexport)
#else
#define UT_API __declspec(dllimport)
#endif
#else
#define UT_API __attribute__((visibility("default")))
#endif

/* Marks functions that always raise. */
#ifdef __cplusplus
#define UT_NORETURN [[noreturn]]
typedef char16_t utChar16; /* a UTF-16 code unit */
extern "C" {
#else
#define UT_NORETURN __attribute__((noreturn))
typedef uint_least16_t utChar16; /* a UTF-16 code unit */
#endif

/* ---- Memory: null on failure, never the out-of-memory listener ---- */

/** A block of `size` bytes, unspecified contents; null if memory is short. Free with utFree. */
UT_API void *utMalloc(size_t size);
/** A block of `count * size` zero bytes; null if memory is short or the product overflows. */
UT_API void *utCalloc(size_t count, size_t size);
/** `block` with room for `size` bytes, perhaps moved. Null leaves it as it was, except that size 0
 *  frees it and returns null. A null block allocates. */
UT_API void *utRealloc(void *block, size_t size);
/** Frees a block of the three functions above; null is ignored. */
UT_API void utFree(void *block);

/** Installs the function that the library's own checked allocations call when memory is short (it
 *  may raise; null: none). Returns the previous one. */
typedef void (*utOutOfMemoryListener)(void);
UT_API utOutOfMemoryListener utSetOutOfMemoryListener(utOutOfMemoryListener listener);

/** Test seam: `fails` is asked before every allocation of this library; true makes it fail. Null
 *  (at start) switches it off. Returns the previous one. */
typedef bool (*utAllocationFault)(void);
UT_API utAllocationFault utSetAllocationFault(utAllocationFault fails);
/** Blocks of utMalloc, utCalloc and utRealloc (and texts of utF2cstr) not yet freed. */
UT_API size_t utLiveBlocks(void);

/* ---- Error context: clean-ups that a raise runs ---- */

/** The registered clean-ups. */
typedef struct utErrorContext utErrorContext;
/** The process-wide context; never null. */
UT_API utErrorContext *utGetErrorContext(void);
/** Registers `cleanup(data)` for the next raise. False if memory is short: nothing registered. */
UT_API bool ut_protect(utErrorContext *context, void (*cleanup)(void *), void *data);
/** Takes the most recent registration with this data off without running it. False if there is
 * none. */
UT_API bool ut_unprotect(utErrorContext *context, void *data);
/** Runs all clean-ups, last registered first, and forgets them, also where one throws: the others
 *  still run, then the first exception goes on. */
UT_API void ut_cleanup_protected_items(utErrorContext *context);

/* ---- Message catalogue and raising ---- */

/** One row of a message table. All texts stay owned by the table's maker. */
typedef struct utMessage {
    int32_t code;          /* unique over all tables; the table registered first wins */
    const char *component; /* second part of the identifier */
    const char *mnemonic;  /* last part of the identifier */
    const char *text;      /* printf-style format */
} utMessage;

/** Codes of the built-in table. */
#define UT_MSG_SPARSE_64BIT_OBSOLETE 0x360001       /* %s the function */
#define UT_MSG_FUNCTION_OBSOLETE 0x360002           /* %s function, %s replacement, %s third text */
#define UT_MSG_OXCREATEFULL_OBSOLETE 0x360003       /* the third text for OXCREATEFULL */
#define UT_MSG_NON_SCALAR_FUNCTION_HANDLES 0x360004 /* no arguments */
#define UT_MSG_LOCATED 0x360005                     /* %s function, %s file, %d line, %s reason */

/** Adds `count` rows, which must outlive the process's use of them. False if memory is short. */
UT_API bool ut_mem_add_primary_message_table(const utMessage *rows, size_t count);
/** Text, component or mnemonic of a code; for an unknown code a generic text. Never null. */
UT_API const char *ut_get_message(int32_t code);
UT_API const char *ut_get_message_component(int32_t code);
UT_API const char *ut_get_message_mnemonic(int32_t code);

/** Receives every error of ut_error and must not return; both texts live until the next ut_error.
 */
typedef void (*utErrorRaiser)(const char *identifier, const char *message);
/** Installs the raiser; null: the library throws ut::simple_exception itself. Returns the previous.
 */
UT_API utErrorRaiser utSetErrorRaiser(utErrorRaiser raiser);
/** Raises the message of `code` formatted with the further arguments (at most 8191 bytes) under the
 *  identifier "VELTRO:component:mnemonic". `file` and `line` name the source place, see
 *  utGetLastErrorPlace. */
UT_NORETURN UT_API void ut_error(int32_t code, const char *file, int line, ...);
/** File and line given to the last ut_error ("" and 0 before the first); outputs may be null. */
UT_API void utGetLastErrorPlace(const char **file, int *line);

/** Clears the floating-point exception flags and restores rounding to nearest. */
UT_API void utResetFPU(void);

/* ---- Warning manager ---- */

/** The warning manager: statuses by identifier, modes, the last warning. */
typedef struct utWarnCtx utWarnCtx;
enum { UT_WARNING_RECORDED = 0, UT_WARNING_SHOWN = 1, UT_WARNING_ERROR = 2 };
enum {
    UT_WARNING_MODE_HINT = 2 /* "warning off" hint */,
    UT_WARNING_MODE_QUIET = 3 /* show nothing */
};

/** The process-wide context, or null while warnings are switched off as a whole. */
UT_API utWarnCtx *utGetWarningManagerContext(void);
/** Switches the warning manager off (utGetWarningManagerContext answers null) or on; returns what
 *  it was. Its contents stay. */
UT_API bool utSetWarningManagerEnabled(bool on);
/** Back to the start: no statuses, modes off, nothing recorded, no warning callback. The status
 *  callbacks stay, for caches depend on them, and are fired. */
UT_API void utResetWarningManager(utWarnCtx *context);

/** Whether mode 2 or 3 is on; false for every other mode. */
UT_API bool utIsWarningModeOn(utWarnCtx *context, int mode);
/** Switches mode 2 or 3 and fires the status callbacks if that changed it; others are ignored. */
UT_API void utSetWarningMode(utWarnCtx *context, int mode, bool on);
/** Status 0, 1 or 2 of an identifier: its own, else that of "all" (1 at start). Null is "". */
UT_API int utGetWarningStatus(utWarnCtx *context, const char *identifier);
/** Sets a status and fires the status callbacks. "all" sets the default and forgets the single
 *  ones. False, and nothing changed, for a status other than 0 to 2 or if memory is short. */
UT_API bool utSetWarningStatus(utWarnCtx *context, const char *identifier, int status);
/** Adds a function that is called after every change of a status or mode. One that is registered
 *  already is not added again. False if memory is short. */
typedef void (*utSetWarningStatusCallback)(void);
UT_API bool utRegisterSetWarningStatusCallback(utWarnCtx *context,
                                               utSetWarningStatusCallback callback);

/** Records the last warning; both texts are copied (null is ""; the old ones stay if memory is
 * short). */
UT_API void utSetLastWarningMsg(utWarnCtx *context, const char *identifier, const char *message);
/** The recorded texts, valid until the next recording; outputs may be null. */
UT_API void utGetLastWarningMsg(utWarnCtx *context, const char **identifier, const char **message);
/** Records and reads the identifier of the last warning shown: "" where there is none, never null.
 */
UT_API void utSetLastPrintedWarningId(utWarnCtx *context, const char *identifier);
UT_API const char *utGetLastPrintedWarningId(utWarnCtx *context);
/** Installs the function that utCallRegisteredWarningCallback calls (null: none); returns the
 * previous. */
typedef void (*utWarningCallback)(void);
UT_API utWarningCallback utRegisterWarningCallback(utWarnCtx *context, utWarningCallback callback);
UT_API void utCallRegisteredWarningCallback(utWarnCtx *context);

/* ---- Formatting ---- */

/** vsnprintf that also knows the widths I (pointer size), I64 and I32 before d i o u x X, with
 * flags, width and precision before them: "%Iu", "%-8Id", "%.3I64x". Always terminates when size >
 * 0; returns the length that the whole text needs, or -1 for a format that vsnprintf rejects. */
UT_API int utVSNprintf(char *buffer, size_t size, const char *format, va_list arguments);
UT_API int utSNprintf(char *buffer, size_t size, const char *format, ...);
/** Formats and prints to the installed sink (stdout at start). Returns the length. */
UT_API int utPrintf(const char *format, ...);
/** Replaces the sink of utPrintf (null: stdout), which receives each formatted text with its
 * length; returns the previous one, null for stdout. */
typedef void (*utPrintSink)(const char *text, size_t length);
UT_API utPrintSink utSetPrintSink(utPrintSink sink);
/** Copies at most n - 1 bytes of `src` with A-Z lowered and terminates (n 0: nothing). Returns dst.
 */
UT_API char *utLowerCaseCopy(char *dst, const char *src, size_t n);

/* ---- UTF-16 texts ---- */

/** Units before the NUL unit. */
UT_API size_t utf16_strlen(const utChar16 *text);
/** As above, but looks at no more than `limit` units (null text is allowed with limit 0). */
UT_API size_t utf16_strlen_lim(const utChar16 *text, size_t limit);
/** Copies a text with its NUL unit; returns dst. */
UT_API utChar16 *utf16_strcpy(utChar16 *dst, const utChar16 *src);
/** Copies at most n units, stopping after a NUL unit; never pads. Returns dst. */
UT_API utChar16 *utf16_strncpy(utChar16 *dst, const utChar16 *src, size_t n);

/* Conversions. *n is the capacity of dst on entry and the count that the whole input needs on
 * return; at most the capacity is written and no terminator. dst may be null with capacity 0.
 * Malformed input becomes U+FFFD or the substitute that the code page names, never an error. "lcp"
 * is the local code page. */
UT_API void lcp_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length);
UT_API void utf16_to_lcp_n(char *dst, int32_t *n, const utChar16 *src, int32_t length);
UT_API void utf8_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length);

/** Copies leading ASCII characters (0-127) one to one and returns how many; stops at the first
 * other. */
UT_API size_t utWidenAscii(utChar16 *dst, const char *src, size_t n);
UT_API size_t utNarrowAscii(char *dst, const utChar16 *src, size_t n);

/** This thread's ICU converter for an encoding name (null: the local code page), reset to its start
 *  state. Never close it; it lives until the thread ends. Null if the name is unknown or memory is
 *  short. A local code page unknown to ICU is served as UTF-8. */
struct UConverter;
UT_API struct UConverter *utGetConverter(const char *encoding);
/** Name of the local code page, never null: the pinned one, else the process locale's. A thread's
 * conversions look at it once, at their first use and after each pinning. The "C" locale's ASCII is
 * served as UTF-8, which reads every ASCII text the same. */
UT_API const char *utGetLocalCodePage(void);
/** Pins the local code page (null: the process locale's again). False, nothing changed, if ICU does
 *  not know it or memory is short. For tests and hosts, before other threads convert. */
UT_API bool utSetLocalCodePage(const char *encoding);
/** Whether bytes 0-127 of the encoding (null: local code page) are ASCII and stand for themselves
 * in every text, so that pure ASCII can be copied. */
UT_API bool utIsAsciiSuperset(const char *encoding);

/* ---- Interning and hash tables ---- */

/** The process-lifetime copy of a text: equal texts give equal pointers. Null only if memory is
 *  short. The two tables are separate: names of fields, and names of classes. */
UT_API const char *ut_symtab_add(const char *text);
UT_API const char *ut_namehash_add(const char *text);

/** A map from pointers, compared as addresses, to 32-bit numbers. */
typedef struct ut_ghash ut_ghash;
/** A table for about `size` entries with keys of 8 bytes and values of 4 (others: null) that keeps
 * its load between `lo` and `hi` (clamped to 0.05 .. 0.9). Null if memory is short. */
UT_API ut_ghash *ut_new_ghash_table(int size, int keysize, int valsize, double lo, double hi);
/** Adds a key. False if it is there already (its value stays) or memory is short. */
UT_API bool ut_ghash_insert(ut_ghash *table, const void *key, int32_t value);
/** Changes the value of a key. False if it is absent. */
UT_API bool ut_ghash_replace(ut_ghash *table, const void *key, int32_t value);
/** Looks a key up; `value` (may be null) is written only when found. */
UT_API bool ut_ghash_query(const ut_ghash *table, const void *key, int32_t *value);
/** Removes a key. False if it is absent. */
UT_API bool ut_ghash_remove_element(ut_ghash *table, const void *key);
/** Entries in the table. */
UT_API size_t ut_ghash_count(const ut_ghash *table);
/** Frees the table; null is ignored. */
UT_API void ut_delete_ghash_table(ut_ghash *table);

/* ---- Numbers ---- */

/** A quiet NaN, positive infinity, the distance from 1 to the next double, and that of float. */
UT_API double utGetNaN(void);
UT_API double utGetInf(void);
UT_API double utGetEps(void);
UT_API float utGetSingleEps(void);
/** Neither infinite nor NaN. */
UT_API bool utFinite(double x);
/** Nearest integral value, halves away from zero; infinities, NaN and signed zeros pass through. */
UT_API double utDoubleScalarRound(double x);
UT_API double utFdlibm_floor(double x);
UT_API double utFdlibm_ceil(double x);

/* ---- Fortran strings: blank-padded, a length instead of a terminator ---- */

/** A new C string (utFree) of the first `length` bytes without trailing blanks; null if memory is
 * short. */
UT_API char *utF2cstr(const char *fortran, size_t length);
/** Copies a C string (null is "") into `length` bytes, cut or padded with blanks. */
UT_API void utC2fstr(const char *text, char *fortran, size_t length);

#ifdef __cplusplus
}
#endif
#endif
