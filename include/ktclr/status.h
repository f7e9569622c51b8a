/* ktclr: status values returned by every exported function.
 * STATUS_OK (1) is success; WARN_ values report that the work was done. */
#ifndef KTCLR_STATUS_H
#define KTCLR_STATUS_H

enum KtStatusCode {
    STATUS_OK = 1,
    ERR_NO_MEMORY = -1,
    ERR_ALLOC = -3,
    ERR_FILE_WRITE = -5,
    ERR_FILE_READ = -7,
    ERR_FILE_NOT_FOUND = -8,
    ERR_TIFF_DIRECTORY_COUNT = -9,     /* custom table: directory count outside 1..999 */
    ERR_BAD_SIZE = -11,
    ERR_INVALID_PARAMETER = -13,
    ERR_FILE_CREATE = -14,
    ERR_TIFF_SAMPLES = -27,            /* custom table: samples per pixel not 3 or 4 */
    ERR_INVALID_TAG = -37,
    ERR_BAD_POINTER = -60,
    ERR_INVALID_COLOR_HANDLE = -261,
    ERR_BUFFER_TOO_SMALL = -290,
    ERR_SAME_BUFFER = -351,
    ERR_BAD_COLOR_SPACE = -785,
    ERR_BAD_METHOD = -786,
    ERR_PROFILE_OPEN = -787,
    ERR_PROFILE_COUNT = -788,
    ERR_BAD_STRUCT_SIZE = -789,
    ERR_NO_ICC_FORMAT = -794,
    ERR_ODD_WIDTH = -796,
    ERR_BAD_PLANAR_SIZE = -797,
    ERR_NO_ICC_PROFILE = -812,
    ERR_PROFILE_SEGMENT_READ = -813,
    ERR_NULL_ARGUMENT = -814,
    ERR_ICC_INVALID_PROFILE = -817,
    ERR_CODEC_FUNCTION_MISSING = -825,
    ERR_UNSUPPORTED_SPACE = -918,
    WARN_UNKNOWN_TAG = -1150,
    WARN_UNKNOWN_TAG_TYPE = -1151,
    WARN_UNKNOWN_TAG_AND_TYPE = -1152,
    ERR_ICC_SIZE_MISMATCH = -1153,
    ERR_FORMAT_NOT_SUPPORTED = -1154,
    ERR_NO_UNICODE_TRANSLATION = -1488, /* narrow/wide conversion impossible */
    ERR_DEFAULT_CHAR_USED = -1851,      /* a default character was substituted */
    ERR_TIFF_NOT_TIFF = -1872,          /* custom table: not a TIFF file */
    ERR_CHUNK_TOO_LARGE = -1859,
    ERR_RIFF_SHORT_READ = -1920         /* a RIFF chunk head or chunk is cut short by the end of the file */
};

#endif
