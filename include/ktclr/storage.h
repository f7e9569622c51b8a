/* ktclr: ICC profiles inside image files.
 *
 * Vx_LoadICCProfile finds the profile embedded in an image file and hands
 * its raw bytes to an ICCProfileRecord (profileData / profileSize); the
 * bytes are not parsed (Vx_FillICCProfileStructure does that).
 * Vx_SaveICCProfile embeds a record's profileData into an existing image.
 * The format is told by the file's content, never by its name.
 *
 * Loaded from: JPEG (APP2 "ICC_PROFILE" segments joined in file order),
 * TIFF and BigTIFF (tag 34675), PostScript and EPS ("%%BeginICCProfile:"
 * blocks of "% " hex lines), PNG (iCCP, through the PNG codec module in the
 * ktclr-modules folder beside the library), Photoshop (image resource 1039),
 * WebP ("ICCP" chunk) and the 0xE0 marker-segment format (format 56). */
#ifndef KTCLR_STORAGE_H
#define KTCLR_STORAGE_H

#include "export.h"
#include "icc.h"
#include "status.h"

KTCLR_EXTERN_C_BEGIN

/* Options for Vx_LoadICCProfile / Vx_HasICCProfile; a null pointer means
 * defaults. */
#define KTCLR_SIZEOF_LOAD_FILE_OPTIONS 8u
typedef struct Vx_LoadFileOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_LOAD_FILE_OPTIONS */
    uint32_t flags;      /* none defined; 0 */
} Vx_LoadFileOptions;

/* Options for Vx_SaveICCProfile; a null pointer means defaults. */
#define KTCLR_SIZEOF_SAVE_FILE_OPTIONS 12u /* the 32-bit layout; store this, not sizeof */
/* WebP: the ICCP chunk goes right after VP8X, VP8X gets its ICC bit, and a
 * simple file gets a VP8X chunk made for it. */
#define VX_SAVE_WEBP_CONTAINER_RULES 0x1u
typedef struct Vx_SaveFileOptions {
    uint32_t structSize;            /* KTCLR_SIZEOF_SAVE_FILE_OPTIONS */
    uint32_t flags;                 /* VX_SAVE_... bits */
    const KtChar16* backupFileName; /* optional: after a successful save the original bytes are kept under this name */
} Vx_SaveFileOptions;

/* Finds the profile embedded in the image file fileName (UTF-16, zero
 * terminated) and stores its bytes in profile->profileData (allocated by the
 * library, released with Vx_FreeICCProfile) and their count in
 * profile->profileSize. The record's earlier block is not released: the
 * caller still owns it. loadOptions may be null.
 * Returns STATUS_OK, or:
 *   ERR_INVALID_PARAMETER      fileName or profile null
 *   ERR_BAD_STRUCT_SIZE        profile->structSize is not 32, or loadOptions'
 *                              structSize is not KTCLR_SIZEOF_LOAD_FILE_OPTIONS
 *   ERR_INVALID_PARAMETER      (also) loadOptions->flags is not 0
 *   ERR_FILE_NOT_FOUND         no file of that name
 *   ERR_FILE_READ              the file cannot be opened or read, or is short
 *                              where data is required
 *   ERR_FORMAT_NOT_SUPPORTED   a readable file of a format without a reader
 *   ERR_NO_ICC_PROFILE         the file holds no profile; only here are the
 *                              record's earlier profileData and profileSize
 *                              put back as they were
 *   ERR_PROFILE_SEGMENT_READ   the 0xE0 marker-segment scan met a failed read
 *   ERR_CODEC_FUNCTION_MISSING PNG: the codec module or its function is
 *                              unavailable
 *   ERR_CHUNK_TOO_LARGE        WebP: a chunk runs past the end of the file
 *   ERR_RIFF_SHORT_READ        WebP: a chunk head or the profile chunk is cut
 *                              short by the end of the file
 *   ERR_NO_MEMORY              an allocation failed
 * After failures other than ERR_NO_ICC_PROFILE the two fields may be cleared. */
KTCLR_API KtStatus Vx_LoadICCProfile(const KtChar16* fileName, ICCProfileRecord* profile,
                                     const Vx_LoadFileOptions* loadOptions);

/* 1 when Vx_LoadICCProfile finds a profile in the file, 0 otherwise (also for
 * every error). Keeps nothing. */
KTCLR_API KtStatus Vx_HasICCProfile(const KtChar16* fileName, const Vx_LoadFileOptions* loadOptions);

/* Embeds profile->profileData (profileSize bytes) into the existing image
 * file fileName: JPEG (APP2 "ICC_PROFILE" segments of at most 65,519 profile
 * bytes after the JFIF/Exif segments, earlier ones replaced), TIFF and
 * BigTIFF (tag 34675, type 7, in the first directory), GIF (an "ICCRGBG1"
 * application extension with authentication bytes 0, 1, 2 in place of the
 * trailer) or WebP ("ICCP" chunk replaced, or else written right after the
 * last chunk, no pad byte; with VX_SAVE_WEBP_CONTAINER_RULES right after a
 * VP8X chunk with its ICC bit, padded). Everything else in the file stays
 * byte for byte, except that a WebP chunk written after the last chunk
 * (no "ICCP" chunk before, no VX_SAVE_WEBP_CONTAINER_RULES) overwrites
 * whatever bytes followed there, data past the RIFF end included, as far as
 * the new chunk reaches; bytes beyond it stay. The new file is
 * built in a temporary beside the original and renamed over it only when
 * complete: after any failure the original is unchanged. saveOptions may be
 * null. Returns STATUS_OK, or, checked in this order:
 *   ERR_INVALID_PARAMETER      fileName or profile null
 *   ERR_BAD_STRUCT_SIZE        profile->structSize is not 32, or
 *                              saveOptions->structSize is not 12
 *   ERR_INVALID_PARAMETER      an unknown flag; profileData null with a size
 *   ERR_FILE_NOT_FOUND         no file of that name
 *   ERR_FILE_READ              the file cannot be read, is not a regular
 *                              file, or its JPEG segments or TIFF directory
 *                              run past its end
 *   ERR_FORMAT_NOT_SUPPORTED   a format without a writer (PNG, text, ...)
 *   ERR_FILE_CREATE            the file is read-only, no temporary can be
 *                              made beside it, or the backup cannot be made
 *   ERR_FILE_WRITE             writing, flushing or renaming failed (a full
 *                              disk); a classic TIFF would pass 4 GiB
 *   ERR_INVALID_PARAMETER      the backup name names the file itself
 *   ERR_NO_MEMORY              an allocation failed
 *   8 (positive)               JPEG: the segment buffer cannot be allocated
 * The GIF and WebP writers answer no status of their own: when one fails
 * (the file cannot be opened or written; for WebP also ERR_CHUNK_TOO_LARGE,
 * ERR_RIFF_SHORT_READ, ERR_FILE_SEEK or -9, the file ends inside its RIFF
 * head), the failure is recorded as the thread's last reported error, the
 * file is left as it was, and the call answers STATUS_OK. A WebP whose RIFF
 * head is not "RIFF", a size of at least 20 and "WEBP" is left as it is,
 * with STATUS_OK. */
KTCLR_API KtStatus Vx_SaveICCProfile(const KtChar16* fileName, const ICCProfileRecord* profile,
                                     const Vx_SaveFileOptions* saveOptions);

KTCLR_EXTERN_C_END

#endif
