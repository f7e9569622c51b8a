/* ktclr: status values returned by every exported function.
 * STATUS_OK (1) is success; every other value is negative. WARN_ values
 * report that the work was done; ERR_ values that it was not (or only in
 * part, where the function says so). Vx_ClrGetStatusName and
 * Vx_ClrGetStatusText turn any value into words for messages. */
#ifndef KTCLR_STATUS_H
#define KTCLR_STATUS_H

#include "export.h"

enum KtStatusCode {
    STATUS_OK = 1,                       /* success */
    ERR_NO_MEMORY = -1,                  /* allocation failed in the profile model or file storage; a file name could not be converted */
    ERR_ALLOC = -3,                      /* allocation failed in the conversion engine */
    ERR_FILE_SEEK = -4,                  /* a file position could not be reached while moving bytes */
    ERR_FILE_WRITE = -5,                 /* writing a file failed */
    ERR_FILE_READ = -7,                  /* a file read failed or was short; a custom emulation table could not be read */
    ERR_FILE_NOT_FOUND = -8,             /* a named file is missing, or its path exceeds 259 characters */
    ERR_TIFF_DIRECTORY_COUNT = -9,       /* custom emulation table: TIFF directory count outside 1..999 */
    ERR_BAD_SIZE = -11,                  /* width or height below 1; a custom emulation table image too small */
    ERR_INVALID_PARAMETER = -13,         /* null or unreadable argument, or a value outside the accepted set */
    ERR_FILE_CREATE = -14,               /* a file could not be created or opened */
    ERR_TIFF_SAMPLES = -27,              /* custom emulation table: samples per pixel not 3 or 4 */
    ERR_INVALID_TAG = -37,               /* tag absent or malformed; an HLS pixel with zero saturation and a hue */
    ERR_BAD_POINTER = -60,               /* a record or buffer is not readable or writable over its extent */
    ERR_INVALID_COLOR_HANDLE = -261,     /* not a live conversion handle */
    ERR_BUFFER_TOO_SMALL = -290,         /* the caller's buffer is too small */
    ERR_SAME_BUFFER = -351,              /* this in-place conversion is refused */
    ERR_BAD_COLOR_SPACE = -785,          /* color space unknown, or without the format the method needs */
    ERR_BAD_METHOD = -786,               /* method unknown, not prepared, or not choosable for the pair */
    ERR_PROFILE_OPEN = -787,             /* a profile could not be opened */
    ERR_PROFILE_COUNT = -788,            /* a transform asked for with a profile count outside 1..255 */
    ERR_BAD_STRUCT_SIZE = -789,          /* a record's size field has no accepted value */
    ERR_NO_ICC_FORMAT = -794,            /* a side of a custom ICC conversion has no ICC pixel format */
    ERR_ODD_WIDTH = -796,                /* width not a multiple of the packed pixel group */
    ERR_BAD_PLANAR_SIZE = -797,          /* planar width or height not a multiple of 4 */
    ERR_NO_ICC_PROFILE = -812,           /* the image file holds no profile */
    ERR_PROFILE_SEGMENT_READ = -813,     /* a read failed while scanning an image file's segments */
    ERR_NULL_ARGUMENT = -814,            /* a required pointer (handle, buffer, transform, header) is null */
    ERR_ICC_INVALID_PROFILE = -817,      /* profile bytes shorter than their size field */
    ERR_CODEC_FUNCTION_MISSING = -825,   /* the PNG codec module or its profile function is unavailable */
    ERR_UNSUPPORTED_SPACE = -918,        /* color-space id out of range, or no built-in profile for a format */
    WARN_UNKNOWN_TAG = -1150,            /* warning: tag signature not among the known ones (work done) */
    WARN_UNKNOWN_TAG_TYPE = -1151,       /* warning: tag type without a codec, kept as raw bytes (work done) */
    WARN_UNKNOWN_TAG_AND_TYPE = -1152,   /* warning: both unknown (work done) */
    ERR_ICC_SIZE_MISMATCH = -1153,       /* header size disagrees with the computed size, or a profile file fails validation */
    ERR_FORMAT_NOT_SUPPORTED = -1154,    /* the image format has no profile reader or writer */
    ERR_NO_UNICODE_TRANSLATION = -1488,  /* a narrow/wide string conversion is impossible */
    ERR_DEFAULT_CHAR_USED = -1851,       /* a narrow string conversion substituted a default character */
    ERR_TIFF_NOT_TIFF = -1872,           /* custom emulation table: not a TIFF file */
    ERR_CHUNK_TOO_LARGE = -1859,         /* a RIFF chunk runs past the end of the file */
    ERR_RIFF_SHORT_READ = -1920          /* a RIFF chunk head or chunk is cut short by the end of the file */
};

KTCLR_EXTERN_C_BEGIN

/* The name of a status as spelled above ("ERR_FILE_NOT_FOUND"), or
 * "UNKNOWN_STATUS" for a value that is none of them. Never null; the
 * string is static. */
KTCLR_API const char* Vx_ClrGetStatusName(KtStatus status);

/* One sentence saying what a status means, without a final full stop
 * ("no such file, or its path is longer than 259 characters"); for an unknown
 * value "unknown status". Never null; the string is static. */
KTCLR_API const char* Vx_ClrGetStatusText(KtStatus status);

KTCLR_EXTERN_C_END

#endif
