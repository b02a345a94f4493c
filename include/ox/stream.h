/* The data-item stream: typed elements, whole arrays among them, over files, sequential carriers
   and buffers; and the compressor behind compressed elements. Nothing here raises, but for the
   subsystem data's getter: failures are status values or null. */
#ifndef OX_STREAM_H
#define OX_STREAM_H

#include <ox/types.h>

OX_BEGIN_C

/* Element types. Numbers 8, 10 and 11 are reserved: moved like 4- and 8-byte data. */
enum {
    oiINT8 = 1,
    oiUINT8 = 2,
    oiINT16 = 3,
    oiUINT16 = 4,
    oiINT32 = 5,
    oiUINT32 = 6,
    oiSINGLE = 7,
    oiDOUBLE = 9,
    oiINT64 = 12,
    oiUINT64 = 13,
    oiMATRIX = 14,     /* a whole array */
    oiCOMPRESSED = 15, /* a zlib stream of one element; unwrapped on reading */
    oiUTF8 = 16,
    oiUTF16 = 17,
    oiUTF32 = 18 /* neither read nor written */
};

/* Results of the item functions. */
enum {
    oiSUCCESS = 0,
    oiREFUSED = 1,     /* no memory, or an element type that is not accepted */
    oiSHORT_WRITE = 2, /* the carrier took too little, or the count does not fit the tag */
    oiSHORT_READ = 3,  /* the carrier gave too little */
    oiBAD_ELEMENT = -1 /* bad tag, malformed array, or no array where one is required */
};

/* Arrays inside each other in one element, the outermost counted: more are neither written
   (oiSHORT_WRITE) nor read (oiBAD_ELEMENT). */
enum { oiNESTING_LIMIT = 2000 };

/* Stream flags. The first three are the kind of carrier; 8, 16 and 32 are also creation options. */
#define oiFILE UINT32_C(1) /* random access: seeks are issued */
#define oiBUFFER UINT32_C(2)
#define oiSEQUENTIAL UINT32_C(4)
#define oiCOMPRESS UINT32_C(8)        /* array elements are written compressed (file streams) */
#define oiOPTION16 UINT32_C(16)       /* characters as oiUINT16; no compression */
#define oiWIDE UINT32_C(32)           /* 16-byte tags with 64-bit counts */
#define oiPREFIX_PENDING UINT32_C(64) /* the buffer's prefix is still to be written */

/* Byte order of a stream: what its indicator and version read as on this machine. */
#define oiNATIVE_INDICATOR UINT16_C(0x4F49)
#define oiNATIVE_VERSION UINT16_C(0x0100)
#define oiSWAPPED_INDICATOR UINT16_C(0x494F)
#define oiSWAPPED_VERSION UINT16_C(0x0001)

/* An offset that means the current one. */
#define oiCURRENT_OFFSET (~(kwSize)0)

/* One element as its reader or writer sees it. */
typedef struct oiItem_tag {
    int32_t type;   /* oiINT8 ... */
    uint64_t count; /* bytes of data; for oiMATRIX on reading, bytes of the element */
    void *data;     /* the data; for oiMATRIX the oxArray */
    uint64_t name;  /* oiMATRIX: the address of the name (writing: NUL-terminated or null; reading:
                       64 bytes for it, or null). Others, on reading: the data of a small element,
                       data then points here unless it was given. */
} oiItem_tag;

struct oiStreamRec_tag;
struct gzipString_tag;

/* Makes room for n bytes at *offset and stores the capacity; may move the offset. A status. Called
   with n = 0 when a buffer stream is disposed: frees the buffer. A replacement of the default must
   leave 7 spare bytes, since the padding after an element is not in n. */
typedef int32_t (*oiReserveFcn)(struct oiStreamRec_tag *s, kwSize n, kwSize *offset,
                                kwSize *capacity);
/* Move n bytes at the stream's offset and answer how many were moved; the offset stays. */
typedef kwSize (*oiReadFcn)(struct oiStreamRec_tag *s, void *dst, kwSize n);
typedef kwSize (*oiWriteFcn)(struct oiStreamRec_tag *s, const void *src, kwSize n);
/* The primitives of a file carrier, as in stdio but with 64-bit positions. */
typedef size_t (*oiFreadFcn)(void *dst, size_t size, size_t n, FILE *f);
typedef size_t (*oiFwriteFcn)(const void *src, size_t size, size_t n, FILE *f);
typedef int (*oiFseekFcn)(FILE *f, int64_t offset, int whence);
typedef int64_t (*oiFtellFcn)(FILE *f);

/* One stream. Callers read it; they change it through the functions below. */
typedef struct oiStreamRec_tag {
    uint16_t indicator;      /* oiNATIVE_INDICATOR or oiSWAPPED_INDICATOR */
    uint16_t version;        /* oiNATIVE_VERSION or oiSWAPPED_VERSION */
    uint64_t offset;         /* current byte position in the carrier */
    uint64_t capacity;       /* buffer streams: bytes in the buffer */
    uint32_t flags;          /* oiFILE ... */
    uint64_t size;           /* as given at creation: bytes of the buffer, or the caller's word */
    void *handle;            /* the FILE, or the buffer */
    oiReserveFcn reserve;    /* makes room */
    oiReadFcn read;          /* moves bytes out of the carrier */
    oiWriteFcn write;        /* moves bytes into it */
    oiFwriteFcn fwrite_fcn;  /* file streams: the primitives; null otherwise */
    oiFreadFcn fread_fcn;    /* reads */
    oiFtellFcn ftell_fcn;    /* tells the position */
    oiFseekFcn fseek_fcn;    /* moves to one */
    uint32_t last_operation; /* file streams: 1 after a read, 2 after a write, 0 after a seek */
    void *(*allocate)(kwSize count, kwSize size); /* for item data; zero-filled */
    void (*free)(void *block);                    /* frees what allocate gave */
    uint64_t *flag_words;                         /* array flags of the element being read */
    uint64_t flag_inline[2];                      /* room for them */
    uint64_t *dim_words;    /* its dimensions: dim_inline, or a block freed after the element */
    uint64_t dim_inline[6]; /* room for most */
    char *name;             /* its name */
    char name_inline[64];   /* room for it */
    oxArray *subsystem;     /* see oiSetSubsystemData */
    struct gzipString_tag *gzip; /* the compressor; null for buffer streams */
    /* The library's own. */
    uint64_t position;      /* file streams: where the carrier stands */
    uint64_t physical;      /* default reserve: bytes allocated */
    unsigned char *staging; /* gathers small pieces; null until needed */
    uint32_t compact;       /* doubles are stored in the smallest integer type that holds them */
} oiStreamRec_tag;

/* --- Creation and disposal ----------------------------------------------------------------- */

/* A stream over an open file, which stays the caller's. Version and indicator 0 mean the native
   ones; a pair that is neither native nor swapped, a null file or reserve callback, or no memory
   give null. The offset starts at ftell. Null primitives mean stdio's. size is kept for the caller.
   options: oiCOMPRESS (ignored with oiOPTION16), oiOPTION16, oiWIDE. */
OX_API oiStreamRec_tag *oiCreateFileStream(FILE *f, uint16_t version, uint16_t indicator,
                                           oiReserveFcn reserve, kwSize size, oiFreadFcn fread_fcn,
                                           oiFwriteFcn fwrite_fcn, oiFseekFcn fseek_fcn,
                                           oiFtellFcn ftell_fcn, uint16_t options);
/* The same for a file that cannot seek. */
OX_API oiStreamRec_tag *oiCreateSequentialStream(FILE *f, uint16_t version, uint16_t indicator,
                                                 oiReserveFcn reserve, kwSize size,
                                                 oiFreadFcn fread_fcn, oiFwriteFcn fwrite_fcn,
                                                 uint16_t options);
/* A stream over size bytes that start with a prefix, or over no buffer yet (null). Null callbacks
   mean the defaults, which need a raw block (oxMallocEx) if the stream is written to. The stream
   owns the buffer; when the prefix is refused the result is null and the buffer still the caller's.
   A buffer of fewer than 2 bytes, or whose first two are zero, is an empty stream. */
OX_API oiStreamRec_tag *oiCreateBufferStream(void *buffer, uint16_t version, uint16_t indicator,
                                             oiReserveFcn reserve, oiReadFcn read, oiWriteFcn write,
                                             kwSize size, uint16_t options);
/* Dispose a stream and its subsystem data; null is ignored. The file is not closed; the buffer is
   freed through the reserve callback unless the pointer was set to null. */
OX_API void oiDisposeFileStream(oiStreamRec_tag *s);
OX_API void oiDisposeBufferStream(oiStreamRec_tag *s);
/* Back to offset 0, a fresh prefix pending; the buffer stays. */
OX_API void oiResetBufferStream(oiStreamRec_tag *s);

/* The FILE or the buffer, and the offset. Setting checks and moves nothing. */
OX_API void *oiGetStreamPtr(const oiStreamRec_tag *s);
OX_API void oiSetStreamPtr(oiStreamRec_tag *s, void *handle);
OX_API kwSize oiGetStreamOffset(const oiStreamRec_tag *s);
OX_API void oiSetStreamOffset(oiStreamRec_tag *s, kwSize offset);

/* fseek and ftell with 64-bit offsets. Whence 0: from the start; 1: from the current position; 2:
   the end of the file, whatever the offset; others fail. 0, or non-zero for failure; -1. */
OX_API int oiFseek64(FILE *f, int64_t offset, int whence);
OX_API int64_t oiFtell64(FILE *f);

/* --- Items --------------------------------------------------------------------------------- */

/* Reads the element at an offset (oiCURRENT_OFFSET: the next one; sequential streams cannot move).
   Item data that the item gives no room for are allocated, and the caller frees them with the
   stream's free, or destroys the array, which is a temporary of the current context. An element
   without data is consumed and leaves the item alone. */
OX_API int32_t oiGetItem(oiStreamRec_tag *s, oiItem_tag *item, kwSize offset);
OX_API int32_t oiGetCurrentItem(oiStreamRec_tag *s, oiItem_tag *item);
/* Writes an element at *offset (null: the current one) and stores its end there. The caller's data
   are not changed, also when this fails. */
OX_API int32_t oiPutItem(oiStreamRec_tag *s, const oiItem_tag *item, kwSize *offset);
/* The same; an array goes into a compressed element when the stream asks for that and can seek. */
OX_API int32_t oiPutItemAtCurrentOffsetWrapper(oiStreamRec_tag *s, const oiItem_tag *item);
OX_API int32_t oiPutItemAtOffsetWrapper(oiStreamRec_tag *s, const oiItem_tag *item, kwSize offset);
/* Reads an array element; oiBAD_ELEMENT for others. Mode 0: class, dimensions, flags and name only,
   the stream then stands behind the element; a complex array carries the imaginary-data marker. */
OX_API int32_t oiGetMatrixHeader(oiStreamRec_tag *s, oiItem_tag *item, kwSize offset, int mode);
OX_API int32_t oiGetMatrixHeaderAtCurrentOffset(oiStreamRec_tag *s, oiItem_tag *item, int mode);

/* One array kept with the stream and destroyed with it. Setting destroys nothing, so setting null
   takes the array back. The getter replaces a struct or object by its serialised form first, which
   may raise as oxSerializeEx does. */
OX_API oxArray *oiGetSubsystemData(oiStreamRec_tag *s);
OX_API void oiSetSubsystemData(oiStreamRec_tag *s, oxArray *a);

/* --- The compressor ------------------------------------------------------------------------ */

/* Compresses to a file or decompresses from one, one element at a time. Every function takes null
   and the wrong state, and answers 0. Written elements begin with 8 zero bytes where the tag will
   be. */
typedef struct gzipString_tag gzipString_tag;

/* Made idle (null without memory), and freed; null is ignored. */
OX_API gzipString_tag *oiNewGzipString(void);
OX_API void oiDeallocateGzipString(gzipString_tag *g);
/* The compressor of a stream; null for buffer streams. While it is at work, also when a caller
   started it, the stream's bytes go through it and its offset stays. */
OX_API gzipString_tag *oiGetGzipString(const oiStreamRec_tag *s);

/* Starts compressing at the file's position: -1, or 0 on failure. */
OX_API int32_t gzipStringWriteInit(gzipString_tag *g, FILE *f);
/* Takes count bytes and answers count, or -1 when the file took too little. A count below 1 means
   close. */
OX_API int32_t gzipStringWriteAddBytes(gzipString_tag *g, const void *bytes, int32_t count);
/* Ends the compressed data and answers their length without the 8 bytes, or -1. */
OX_API int32_t gzipStringWriteClose(gzipString_tag *g);

/* Starts decompressing length bytes at the file's position: -1, or 0 on failure. */
OX_API int32_t gzipStringReadInit(gzipString_tag *g, FILE *f, int32_t length);
/* Inflates count bytes at most (null: throws them away) and answers how many, which is fewer at the
   end of the data and after an error. */
OX_API int32_t gzipStringReadBytes(gzipString_tag *g, void *dst, uint64_t count);
OX_API int32_t gzipStringReadSkipBytes(gzipString_tag *g, uint64_t count);
OX_API uint64_t gzipStringReadSoFar(const gzipString_tag *g); /* bytes delivered */
OX_API int32_t gzipStringReadClose(gzipString_tag *g);        /* -1, or 0 when not reading */

/* Whether the compressor is at work; the length of what it reads; the position of its data. */
OX_API bool oiIsVELVariableCompressionEnabled(const gzipString_tag *g);
OX_API uint64_t oiGetCompressedVELVariableBytes(const gzipString_tag *g);
OX_API uint64_t oiGetCompressedVELVariableOffset(const gzipString_tag *g);

OX_END_C

#endif
