/* The PNG codec module: extracts the iCCP profile of a PNG with libpng. */
#include <png.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "storage/png_codec_abi.h"

static void Quiet(png_structp png, png_const_charp message) {
    (void)png;
    (void)message;
}

static void Fail(png_structp png, png_const_charp message) {
    (void)message;
    png_longjmp(png, 1);
}

__attribute__((visibility("default"))) int32_t PngExtractICCProfile(int fd, KtCodecAlloc allocate, uint8_t** buffer,
                                                                    uint32_t* size) {
    if (!allocate || !buffer || !size) return -13;
    *buffer = NULL;
    *size = 0;
    int copy = dup(fd);
    if (copy < 0) return -7;
    FILE* volatile fp = fdopen(copy, "rb");
    if (!fp) {
        close(copy);
        return -7;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, NULL, Fail, Quiet);
    png_infop info = png ? png_create_info_struct(png) : NULL;
    volatile int32_t result = -7;
    if (!info) {
        result = -1;
    } else if (setjmp(png_jmpbuf(png)) == 0) {
        png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
        png_init_io(png, fp);
        png_read_info(png, info);
        png_charp name;
        int compression;
        png_bytep profile;
        png_uint_32 length;
        result = 1;
        if (png_get_iCCP(png, info, &name, &compression, &profile, &length) == PNG_INFO_iCCP && length > 0) {
            *buffer = (uint8_t*)allocate(length);
            if (*buffer) {
                memcpy(*buffer, profile, length);
                *size = length;
            } else {
                result = -1;
            }
        }
    }
    png_destroy_read_struct(png ? &png : NULL, info ? &info : NULL, NULL);
    fclose(fp);
    return result;
}
