/* ktclr: color-space identifiers and conversion methods. */
#ifndef KTCLR_COLORSPACE_H
#define KTCLR_COLORSPACE_H

/* Color-space identifiers. Ids in the gaps (16-127, 129-143, above 144)
 * are invalid everywhere. Bits per pixel in the comments. */
enum KtColorSpace {
    CS_RGB = 0,            /* 24 */
    CS_YUV = 1,            /* 24 */
    CS_CMYK = 2,           /* 32 */
    CS_HSV = 3,            /* 24 */
    CS_HLS = 4,            /* 24 */
    CS_YIQ = 5,            /* 24 */
    CS_CMY = 6,            /* 24 */
    CS_LAB = 7,            /* 24 */
    CS_XYZ = 8,            /* 24 */
    CS_YUV422_YUYV = 9,    /* 16 */
    CS_YUV410_PLANAR = 10, /*  9 */
    CS_YCCK = 11,          /* 32 */
    CS_BGR = 12,           /* 24 */
    CS_YUV411_PACKED = 13, /* 12 */
    CS_YUV422_UYVY = 14,   /* 16 */
    CS_YCBCR = 15,         /* 24 */
    CS_HSI = 128,          /* 24 */
    CS_RGB444 = 144        /* 16 */
};

/* Conversion methods: one bit each. `method` holds one, `prepareMethods`
 * a set. METHOD_AUTO is accepted only by Vx_ClrInit, in both fields. */
enum KtMethod {
    METHOD_BUILTIN = 1,
    METHOD_ICC = 2,
    METHOD_CUSTOM_ICC = 4,
    METHOD_BUILTIN_EMULATION = 8,
    METHOD_CUSTOM_EMULATION = 16,
    METHOD_AUTO = 32
};

#endif
