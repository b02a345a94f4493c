/* The flag word of an array record: every bit by name. */
#ifndef OX_FLAGS_H
#define OX_FLAGS_H

#include <stdint.h>

#define oxFLAG_SCALAR_DOUBLE (UINT32_C(1) << 0)    /* a real or complex 1-by-1 double */
#define oxFLAG_EMPTY_BRACKET (UINT32_C(1) << 2)    /* the value was written as an empty [] */
#define oxFLAG_GLOBAL_WS (UINT32_C(1) << 3)        /* from the global workspace */
#define oxFLAG_LIST_MARK (UINT32_C(1) << 4)        /* belongs to an enclosing context, or is kept */
#define oxFLAG_SPARSE (UINT32_C(1) << 5)           /* compressed-column storage */
#define oxFLAG_HEADER_KEPT (UINT32_C(1) << 6)      /* destruction leaves header and data alone */
#define oxFLAG_COLON (UINT32_C(1) << 7)            /* data hold step, first and last of a range */
#define oxFLAG_PRIVATE_DATA (UINT32_C(1) << 8)     /* the library never frees the data blocks */
#define oxFLAG_NUMERIC (UINT32_C(1) << 9)          /* the class may hold an imaginary part */
#define oxFLAG_COMMA_LIST (UINT32_C(1) << 10)      /* a comma-separated list */
#define oxFLAG_INDEXING_OPAQUE (UINT32_C(1) << 11) /* dimensions are computed before each read */
#define oxFLAG_REUSABLE (UINT32_C(1) << 12)        /* a new array may take the data block over */

/* The top byte belongs to the user; it is read and written only as one byte. */
#define oxUSER_BITS_SHIFT 24
#define oxUSER_BITS_MASK (UINT32_C(0xFF) << oxUSER_BITS_SHIFT)

#endif
