/* ktclr: bitmaps, and conversions into and between them.
 *
 * A BitmapHandle describes an image held in memory: `height` rows of
 * `width` pixels, top row first, each row `bytesPerLine` bytes apart (the
 * pixel bytes padded to a multiple of 4, as in a device-independent bitmap).
 * Make one with Vx_BmpCreate or Vx_BmpFillFromDib (or let a conversion fill
 * it), read and write rows between Vx_BmpAccessBegin and Vx_BmpAccessEnd,
 * and give the pixels back with Vx_BmpFree. A record that was never filled
 * is prepared with Vx_BmpInit. */
#ifndef KTCLR_BITMAP_H
#define KTCLR_BITMAP_H

#include "export.h"
#include "status.h"
#include "convert.h"

KTCLR_EXTERN_C_BEGIN

/* Size value for BitmapHandle.structSize and the structSize arguments: the
 * 32-bit layout; the 64-bit struct is larger, which is expected. */
#define KTCLR_SIZEOF_BITMAP_HANDLE 32u

/* BitmapHandle.flags bits. */
#define VX_BMP_HAS_DATA 0x1u  /* the bitmap owns pixel data at `data` */
#define VX_BMP_IN_ACCESS 0x2u /* between Vx_BmpAccessBegin and Vx_BmpAccessEnd */

/* BitmapHandle.colorOrder: the byte order of a pixel's color components.
 * VX_BMP_ORDER_DIB is what Vx_BmpFillFromDib and the conversions into a
 * bitmap set: blue, green, red as a device-independent bitmap stores them,
 * the same bytes as VX_BMP_ORDER_BGR. */
#define VX_BMP_ORDER_RGB 0
#define VX_BMP_ORDER_BGR 1
#define VX_BMP_ORDER_GRAY 2
#define VX_BMP_ORDER_DIB 4

typedef struct BitmapHandle {
    uint32_t structSize;  /* KTCLR_SIZEOF_BITMAP_HANDLE */
    int32_t width;        /* pixels per row */
    int32_t height;       /* rows */
    int32_t bitsPerPixel; /* 8, 16, 24 or 32 */
    int32_t bytesPerLine; /* distance between rows in `data` */
    int32_t colorOrder;   /* VX_BMP_ORDER_... */
    uint32_t flags;       /* VX_BMP_... bits */
    uint8_t* data;        /* the rows, top first; owned when VX_BMP_HAS_DATA */
} BitmapHandle;

/* Bytes of the header the conversions hand to Vx_BmpFillFromDib (its size
 * field), and the fewest bytes a header must have. */
#define KTCLR_SIZEOF_BMP_INFO_HEADER 44u
#define KTCLR_BMP_INFO_HEADER_MIN 40u

/* Header of a device-independent bitmap (little-endian Windows layout) and a
 * trailing reserved word. The pixel bytes that go with it hold abs(height)
 * rows, each padded to a multiple of 4 bytes. */
typedef struct Vx_BmpInfoHeader {
    uint32_t size;           /* at least KTCLR_BMP_INFO_HEADER_MIN */
    int32_t width;           /* pixels per row, 1 or more */
    int32_t height;          /* rows; negative: top row first, positive: bottom row first */
    uint16_t planes;         /* 1 */
    uint16_t bitsPerPixel;   /* 24 or 32 */
    uint32_t compression;    /* 0: plain rows */
    uint32_t imageSize;      /* bytes of the pixel data, or 0 when they are just the rows */
    int32_t xPixelsPerMeter; /* not read */
    int32_t yPixelsPerMeter; /* not read */
    uint32_t colorsUsed;     /* 0: no color table */
    uint32_t colorsImportant;/* not read */
    uint32_t reserved;       /* 0 */
} Vx_BmpInfoHeader;

/* Makes `bitmap` an empty bitmap (no pixels, all fields zero but
 * structSize). ERR_INVALID_PARAMETER: null; ERR_BAD_STRUCT_SIZE: structSize
 * is not KTCLR_SIZEOF_BITMAP_HANDLE; ERR_BAD_POINTER: not writable. */
KTCLR_API KtStatus Vx_BmpInit(BitmapHandle* bitmap, uint32_t structSize);

/* Makes `bitmap` a bitmap of zeroed pixels with rows padded to 4 bytes.
 * What the record held before is overwritten, not released (release it
 * first with Vx_BmpFree). Statuses as Vx_BmpInit, and ERR_BAD_SIZE: width
 * or height below 1 or a row beyond 2^31 bytes; ERR_INVALID_PARAMETER:
 * bitsPerPixel not 8, 16, 24 or 32; ERR_ALLOC: no memory. */
KTCLR_API KtStatus Vx_BmpCreate(BitmapHandle* bitmap, uint32_t structSize, int width, int height,
                                int bitsPerPixel, int colorOrder);

/* Releases the bitmap's pixel data (if it owns any) and leaves it empty, as
 * Vx_BmpInit does. ERR_INVALID_PARAMETER: null; ERR_BAD_POINTER: not
 * writable; ERR_BAD_STRUCT_SIZE: the record's structSize is wrong. */
KTCLR_API KtStatus Vx_BmpFree(BitmapHandle* bitmap);

/* Fills `bitmap` from a device-independent bitmap: `header` and the pixel
 * bytes `bits` (imageSize bytes when imageSize is not 0; else exactly the
 * padded rows). The bitmap gets its own copy, top row first, rows padded to
 * 4 bytes, colorOrder VX_BMP_ORDER_DIB. What the record held before is
 * overwritten, not released. ERR_INVALID_PARAMETER: a null pointer, planes
 * not 1, compression not 0, a color table, or bits per pixel not 24 or 32;
 * ERR_BAD_STRUCT_SIZE: structSize wrong or header->size below
 * KTCLR_BMP_INFO_HEADER_MIN; ERR_BAD_SIZE: width below 1, height 0, or an
 * imageSize smaller than the rows; ERR_BAD_POINTER: a record or the pixel
 * bytes not readable (the bitmap: not writable); ERR_ALLOC: no memory. */
KTCLR_API KtStatus Vx_BmpFillFromDib(BitmapHandle* bitmap, uint32_t structSize, const Vx_BmpInfoHeader* header,
                                     const uint8_t* bits);

/* Opens the bitmap's rows to Vx_BmpGetRow and Vx_BmpPutRow after checking
 * the record and its pixels (accesses do not nest). ERR_INVALID_PARAMETER:
 * null, no pixel data, or fields that do not describe it; ERR_BAD_STRUCT_SIZE;
 * ERR_BAD_POINTER: the record or the pixels not writable. */
KTCLR_API KtStatus Vx_BmpAccessBegin(BitmapHandle* bitmap);

/* Closes what Vx_BmpAccessBegin opened. ERR_INVALID_PARAMETER: null or not
 * in access; ERR_BAD_POINTER: not writable. */
KTCLR_API KtStatus Vx_BmpAccessEnd(BitmapHandle* bitmap);

/* Copies row `row` (0 = top) into `buffer`: min(bytes, bytesPerLine) bytes.
 * Returns that byte count, or ERR_INVALID_PARAMETER (null, not in access,
 * row outside the bitmap, bytes 0) or ERR_BAD_POINTER (buffer not
 * writable over the count). */
KTCLR_API KtStatus Vx_BmpGetRow(const BitmapHandle* bitmap, uint8_t* buffer, int row, uint32_t bytes);

/* Copies min(bytes, bytesPerLine) bytes from `buffer` into row `row`.
 * Returns the byte count or a status as Vx_BmpGetRow (ERR_BAD_POINTER:
 * buffer not readable). */
KTCLR_API KtStatus Vx_BmpPutRow(BitmapHandle* bitmap, const uint8_t* buffer, int row, uint32_t bytes);

/* Converts width x height pixels of `src` through the handle (whose
 * destination must be CS_RGB or CS_BGR) and fills `bitmap` with the result
 * as a 24-bit bitmap, releasing the pixels it held. srcAlign and dstAlign
 * as in Vx_ClrConvert. The bitmap's rows are read from the converted bytes
 * 4-byte padded: they are exactly the converted rows where the conversion
 * leaves them that far apart (built-in formulas: dstAlign bringing
 * 3 x width to a multiple of 4; ICC: srcAlign non-zero and dstAlign 4).
 * Returns the conversion's status: a fill that
 * fails afterwards (for rows that do not fit the converted bytes) leaves
 * the bitmap empty and is not reported. ERR_INVALID_PARAMETER: src or
 * bitmap null; ERR_BAD_POINTER: handle or src not readable;
 * ERR_INVALID_COLOR_HANDLE; ERR_BAD_COLOR_SPACE: destination not RGB or BGR;
 * ERR_ALLOC; then the statuses of Vx_ClrConvert. */
KTCLR_API KtStatus Vx_ClrConvertToBitmap(ClrHandle* handle, uint8_t* src, BitmapHandle* bitmap,
                                         uint32_t bitmapStructSize, int width, int height, int srcAlign,
                                         int dstAlign);

/* Vx_ClrConvertDirect into a 24-bit bitmap (dstSpace CS_RGB or CS_BGR); the
 * converted rows are dstPad bytes apart, so a dstPad that brings 3 x width
 * to a multiple of 4 gives the bitmap exactly the converted rows. Unlike
 * Vx_ClrConvertToBitmap, the fill's status is returned. ERR_INVALID_PARAMETER:
 * src or bitmap null, or dstSpace not CS_RGB or CS_BGR (where the handle
 * form answers ERR_BAD_COLOR_SPACE); ERR_ALLOC; then the statuses of
 * Vx_ClrConvertDirect and of Vx_BmpFillFromDib. */
KTCLR_API KtStatus Vx_ClrConvertDirectToBitmap(int srcSpace, int dstSpace, uint8_t* src, BitmapHandle* bitmap,
                                               uint32_t bitmapStructSize, int width, int height, int srcPad,
                                               int dstPad);

/* Converts a 24-bit bitmap row by row through the handle, in place when
 * dstBitmap is null (or equal to srcBitmap), else into dstBitmap, which must
 * have the same width and height. The color orders must be equal or both
 * be VX_BMP_ORDER_BGR / VX_BMP_ORDER_DIB. Rows converted before a failing
 * row stay converted. ERR_NULL_ARGUMENT: srcBitmap null; ERR_BAD_POINTER:
 * a record not readable; ERR_BAD_SIZE: sizes differ or a bitmap is not 24
 * bits; ERR_INVALID_PARAMETER: any other pair of color orders; ERR_ALLOC;
 * then the first failing status of Vx_BmpAccessBegin, Vx_BmpGetRow,
 * Vx_ClrConvert or Vx_BmpPutRow. */
KTCLR_API KtStatus Vx_ClrConvertBitmap(ClrHandle* handle, BitmapHandle* srcBitmap, BitmapHandle* dstBitmap);

KTCLR_EXTERN_C_END

#endif
