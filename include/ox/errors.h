/* Raising errors, the error table, and the record of the last error. */
#ifndef OX_ERRORS_H
#define OX_ERRORS_H

#include <ox/types.h>

OX_BEGIN_C

/* Numbers of the error table, in its order. */
typedef enum {
    FNOERR,
    FMAXRHS,
    FMINRHS,
    FMAXLHS,
    FMINLHS,
    FVECTOR,
    FSQUARE,
    FSINGULAR,
    FNOCONVERGE,
    FNOSTRING,
    FDIMAGREE,
    FPOSDEF,
    FINNERDIM,
    FSAMELEN,
    FNOCOMPLEX,
    FBADOPT,
    FSTRING,
    FNOWRITE,
    FNOMEM,
    FPMAXSIZE,
    FFMAXSIZE,
    F4LONG,
    FMINDIM,
    FMINBIGMAX,
    FFILTZERO,
    FICVECT,
    FOVERFLOW,
    FMESH,
    FNONANINF,
    FBUFFOVER,
    FBADARGS,
    FOUTRANGE,
    FNOFCN,
    FDIVBYZERO,
    FGINPUT,
    FBADBRACE,
    FBUILTIN,
    FGRAPHDEV,
    FZNOTMATRIX,
    FXNOTVECTOR,
    FXZDISAGREE,
    FYZDISAGREE,
    FPLOT3INARGS,
    FVIEWINARGS,
    FZNOTREAL,
    FDUMMYRICH,
    FBADCOUNT_ox,
    FBADFID_ox,
    FBADFILENAME_ox,
    FBADFORMAT_ox,
    FBADOFFSET_ox,
    FBADORIGIN_ox,
    FBADPERMISSION_ox,
    FBADPRECISION_ox,
    FBADSIZE_ox,
    FBADSTRINGall_ox,
    FBADSTRINGarg1_ox,
    FBADSTRINGarg2_ox,
    FBADSTRINGclear_ox,
    FBADMACHFORMAT_ox,
    FBADFILEOPEN_ox,
    FNOTIMPLEMENTED_ox,
    FNOFORMAT_ox,
    FBADSKIP_ox,
    FBADNCHAR_ox,
    FNOSPARSE,
    FNOLOGICALNAN,
    FNOLOGICALCOMPLEX,
    FSUBSASSIGNDIMMISMATCH,
    FSUBSDELDIMMISMATCH,
    FSUBSASSIGNNUMELMISMATCH,
    FBADNULLINDEX,
    FBADNULLASSIGN,
    FP64BITSIZE,
    FP32BITSIZE
} oxErrorMessage;

/* Non-zero: raising records the last error. */
typedef int32_t oxErrorMode;

/* The record of the last error; one is current at a time. oxInitErrorState makes one ready. */
typedef struct oxErrorState_tag {
    oxErrorMode mode;           /* 0: raising leaves this record alone */
    char *message;              /* owned, NUL-terminated, or null */
    kwSize message_capacity;    /* bytes */
    char *identifier;           /* owned, NUL-terminated, or null */
    kwSize identifier_capacity; /* bytes */
    oxArray *stack;             /* owned struct array of file, name and line, or null */
} oxErrorState;

/* Writes a prefix for the message that fmt begins into buffer (size bytes, NUL-terminated). */
typedef void (*oxErrmsgPrefixFcn)(const char *fmt, char *buffer, kwSize size);

/* --- Raising ------------------------------------------------------------------------------- */

/* None of these returns: the error is recorded (prefix and message), the current allocation-list
   context is freed, and an exception with identifier and message (without the prefix) is thrown:
   they raise. Formats are those of utVSNprintf, %Iu included. Arguments may point into listed
   blocks. */

/* Raises an entry of the error table; its identifier is VELTRO: and the entry's name without F. */
OX_API OX_NORETURN void oxErrMsg(oxErrorMessage number);
OX_API OX_NORETURN void oxErrMsgIdAndTxt(const char *id, const char *fmt, ...);
OX_API OX_NORETURN void oxVErrMsgIdAndTxt(const char *id, const char *fmt, va_list args);
/* As oxErrMsgIdAndTxt, without asking for a prefix. */
OX_API OX_NORETURN void oxSimpleErrMsgIdAndTxt(const char *id, const char *fmt, ...);
/* The same, recording a shared copy of stack (may be null). */
OX_API OX_NORETURN void oxSimpleErrStackAndMsgIdAndTxt(const oxArray *stack, const char *id,
                                                       const char *fmt, ...);
/* Raises without identifier; a period is appended to the message. */
OX_API OX_NORETURN void oxErrMsgTxt(const char *fmt, ...);
/* Raises VELTRO:UndefinedFunction, naming both. */
OX_API OX_NORETURN void oxFcnUndefinedForClass(const char *function, const char *class_name);

/* --- The table, and the record of the last error -------------------------------------------- */

/* None of these raises. */

/* The enumerator name, and the message, of a table entry, never null; the number is not checked. */
OX_API const char *oxGetErrorMessageEnumName(oxErrorMessage number);
OX_API const char *oxGetErrorTableEntry(oxErrorMessage number);

/* The current record's mode; the setter returns the previous mode. */
OX_API oxErrorMode oxGetErrorMode(void);
OX_API oxErrorMode oxSetErrorMode(oxErrorMode mode);
OX_API void oxSetErrorOn(void); /* mode 1 */

/* The last error; texts are "" where there is none, either output may be null. What is returned
   belongs to the record and holds until the next error is recorded. */
OX_API void oxGetLastErrIdAndMsg(const char **id, const char **msg);
OX_API void oxGetLastErrIdAndMsgAndStack(const char **id, const char **msg, oxArray **stack);
OX_API const char *oxGetLastErrMsg(void);
/* Record an error without raising it. A stored stack is destroyed; stack (may be null) is stored
   as a shared copy. */
OX_API void oxSetLastErrIdAndMsg(const char *id, const char *msg);
OX_API void oxSetLastErrIdAndMsgAndStack(const char *id, const char *msg, const oxArray *stack);

/* Makes a record ready for use; frees nothing. */
OX_API void oxInitErrorState(oxErrorState *state);
/* Frees what a record, or the current one, owns; the mode stays. */
OX_API void oxClearErrorState(oxErrorState *state);
OX_API void oxErrorCleanup(void);
/* The current record, never null: read, replace, exchange. The caller owns the records it puts in
   and keeps them alive. */
OX_API oxErrorState *oxGetErrorState(void);
OX_API void oxSetErrorState(oxErrorState *state);
OX_API void oxSwapErrorState(oxErrorState **state);

/* --- For hosts ------------------------------------------------------------------------------ */

/* Installs a prefix function (null: none) and returns the previous one, null at start. */
OX_API oxErrmsgPrefixFcn oxSetErrmsgPrefixFcn(oxErrmsgPrefixFcn fn);
/* What every raise does before it throws: resets the floating-point unit, frees the current
   allocation-list context, runs the utility library's protected clean-ups. */
OX_API void oxCleanupForThrow(void);

OX_END_C

#endif
