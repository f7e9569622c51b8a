/* The boundary between the library and its PNG codec module. The module
 * needs nothing from the library: the library hands it the allocation
 * function through which the profile buffer is made (and later released by
 * the library's own free). C, so the module may be written in C. */
#ifndef KTCLR_PNG_CODEC_ABI_H
#define KTCLR_PNG_CODEC_ABI_H

#include <stddef.h>
#include <stdint.h>

#define KTCLR_PNG_CODEC_MODULE "Praxima.Codecs.Png.PngCodec"
#define KTCLR_PNG_CODEC_FUNCTION "PngExtractICCProfile"

typedef void* (*KtCodecAlloc)(size_t size);

/* Reads the PNG on the open descriptor `fd` from its current position, up to
 * the image data. Returns 1 with *size holding the size of the inflated
 * iCCP profile in *buffer, or 1 with *size 0 when the file has none; -7
 * (ERR_FILE_READ) when libpng rejects the file; -1 (ERR_NO_MEMORY) when
 * `allocate` fails. A non-null *buffer (from `allocate`) is the caller's to
 * release whatever the result. Does not close `fd`. */
typedef int32_t (*KtPngExtractICCProfile)(int fd, KtCodecAlloc allocate, uint8_t** buffer, uint32_t* size);

#endif
