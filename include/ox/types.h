/* The public types: sizes, element classes, complexity, attributes, scopes. */
#ifndef OX_TYPES_H
#define OX_TYPES_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

/* Marks what the library exports; OX_STATIC is for programs that link its objects. */
#if defined(_WIN32)
#if defined(OX_BUILDING)
#define OX_API __declspec(dllexport)
#elif defined(OX_STATIC)
#define OX_API
#else
#define OX_API __declspec(dllimport)
#endif
#else
#define OX_API __attribute__((visibility("default")))
#endif

/* Marks functions that always raise. */
#if defined(__GNUC__)
#define OX_NORETURN __attribute__((noreturn))
#else
#define OX_NORETURN
#endif

/* Enclose declarations with C linkage. */
#if defined(__cplusplus)
#define OX_BEGIN_C extern "C" {
#define OX_END_C }
#else
#define OX_BEGIN_C
#define OX_END_C
#endif

/* Failures are raised as C++ exceptions that pass through the frames of C callers. */
#if !defined(__cplusplus) && defined(__GNUC__) && !defined(__EXCEPTIONS) &&                        \
    !defined(OX_NO_EXCEPTIONS_WARNING)
#pragma GCC warning                                                                                \
    "compile C extension modules with -fexceptions (OX_NO_EXCEPTIONS_WARNING silences this)"
#endif

OX_BEGIN_C

/* A count of elements or bytes, and a zero-based position or column start. */
typedef size_t kwSize;
typedef size_t kwIndex;

/* One element of a char array: a UTF-16 code unit. */
#if defined(__cplusplus)
typedef char16_t oxChar;
#else
typedef uint_least16_t oxChar;
#endif

/* One element of a logical array. */
typedef bool oxLogical;

/* The one value type of the environment; its record is visible to C++ through <ox.hpp>. */
typedef struct oxArray_tag oxArray;

/* Whether an imaginary part is asked for; any non-zero value asks for one. */
typedef enum { oxREAL = 0, oxCOMPLEX = 1 } oxComplexity;

/* Element classes. The stored class code of an array uses the same numbering; an array of class
   object may answer any other tag as its class id. Number 5 is a hole that reads as unknown. */
typedef enum {
    oxUNKNOWN_CLASS = 0,
    oxCELL_CLASS = 1,
    oxSTRUCT_CLASS = 2,
    oxLOGICAL_CLASS = 3,
    oxCHAR_CLASS = 4,
    oxVOID_CLASS = 5,
    oxDOUBLE_CLASS = 6,
    oxSINGLE_CLASS = 7,
    oxINT8_CLASS = 8,
    oxUINT8_CLASS = 9,
    oxINT16_CLASS = 10,
    oxUINT16_CLASS = 11,
    oxINT32_CLASS = 12,
    oxUINT32_CLASS = 13,
    oxINT64_CLASS = 14,
    oxUINT64_CLASS = 15,
    oxFUNCTION_CLASS = 16,
    oxOPAQUE_CLASS = 17,
    oxOBJECT_CLASS = 18
} oxClassID;

/* The stored class code, as it lies in the record. */
typedef int32_t oxArrayType;

/* Shape, complexity and density of an array as bits; one of each group is set. The type is
   unsigned because the last code is the top bit. */
typedef uint32_t oxArray_attributes;
#define oxATTR_REAL UINT32_C(0x200000)
#define oxATTR_COMPLEX UINT32_C(0x400000)
#define oxATTR_SCALAR UINT32_C(0x800000)
#define oxATTR_ROW UINT32_C(0x1000000)
#define oxATTR_COLUMN UINT32_C(0x2000000)
#define oxATTR_MATRIX UINT32_C(0x4000000)
#define oxATTR_3D UINT32_C(0x8000000)
#define oxATTR_4D UINT32_C(0x10000000)
#define oxATTR_ND UINT32_C(0x20000000)
#define oxATTR_FULL UINT32_C(0x40000000)
#define oxATTR_SPARSE UINT32_C(0x80000000)

/* Scopes that the library gives a meaning; an array's scope may hold any other value. */
enum {
    oxSCOPE_NONE = 0,
    oxSCOPE_CONTAINED = 3,
    oxSCOPE_TEMPORARY = 4,
    oxSCOPE_ERROR_STACK = 5,
    oxSCOPE_PROPERTY = 6,
    oxSCOPE_DESTROYED = 7
};

OX_END_C

#endif
