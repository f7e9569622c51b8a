/* The PNG codec module: extracts the iCCP profile of a PNG. libpng walks the
 * chunks up to the image data and hands over the raw iCCP chunk; zlib
 * inflates it. The profile is taken as it stands, whatever its colour space
 * or header says (libpng's own iCCP reader would drop a profile that does
 * not suit the image, a grey or Lab profile in an RGB file, say). */
#include <png.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include "storage/png_codec_abi.h"

/* The largest profile inflated; a chunk that inflates to more holds none. */
#define KT_MAX_PROFILE (256u << 20)

typedef struct {
    KtCodecAlloc allocate;
    uint8_t* buffer;
    uint32_t size;
    int32_t result;
    int seen;
} Extract;

/* libpng's allocations go through these, and none may exceed the file's size
 * plus a fixed margin for libpng's own state: a chunk declaring more bytes
 * than the file holds (a hostile 1.8 GB tEXt, say) then fails the read
 * instead of being allocated. libpng's chunk limit does not do this on read,
 * where it is only a warning. */
#define KT_ALLOC_MARGIN (1u << 20)

static png_voidp LimitedMalloc(png_structp png, png_alloc_size_t n) {
    const png_alloc_size_t* cap = (const png_alloc_size_t*)png_get_mem_ptr(png);
    return n <= *cap ? malloc(n) : NULL;
}

static void LimitedFree(png_structp png, png_voidp p) {
    (void)png;
    free(p);
}

static void Quiet(png_structp png, png_const_charp message) {
    (void)png;
    (void)message;
}

static void Fail(png_structp png, png_const_charp message) {
    (void)message;
    png_longjmp(png, 1);
}

/* Inflates the zlib stream `in` into `out` (room for `room` bytes), or only
 * counts its bytes when `out` is null. The byte count, or -1 for a broken
 * stream or one beyond KT_MAX_PROFILE. */
static int64_t Inflate(const uint8_t* in, size_t n, uint8_t* out, size_t room) {
    uint8_t scratch[16384];
    z_stream z;
    memset(&z, 0, sizeof z);
    if (inflateInit(&z) != Z_OK) return -1;
    z.next_in = (Bytef*)in;
    z.avail_in = (uInt)n;
    int64_t total = 0;
    int rc;
    do {
        const size_t left = out ? room - (size_t)total : sizeof scratch;
        z.next_out = out ? out + total : scratch;
        z.avail_out = (uInt)left;
        rc = inflate(&z, Z_NO_FLUSH);
        total += (int64_t)(left - z.avail_out);
        if (total > (int64_t)KT_MAX_PROFILE || (out && rc == Z_OK && z.avail_out == 0)) rc = Z_DATA_ERROR;
    } while (rc == Z_OK);
    inflateEnd(&z);
    return rc == Z_STREAM_END ? total : -1;
}

/* The first iCCP chunk: a name of 1 to 79 bytes, a zero byte, compression
 * method 0, the zlib stream. A chunk that does not parse holds no profile. */
static int OnChunk(png_structp png, png_unknown_chunkp chunk) {
    Extract* x = (Extract*)png_get_user_chunk_ptr(png);
    if (memcmp(chunk->name, "iCCP", 4) != 0) return 0;
    if (x->seen) return 1;
    x->seen = 1;
    const uint8_t* d = chunk->data;
    size_t name = 0;
    while (name < chunk->size && name < 80 && d[name]) ++name;
    if (name == 0 || name + 2 > chunk->size || d[name] != 0 || d[name + 1] != 0) return 1;
    const uint8_t* stream = d + name + 2;
    const size_t n = chunk->size - name - 2;
    const int64_t size = Inflate(stream, n, NULL, 0);
    if (size <= 0) return 1;
    x->buffer = (uint8_t*)x->allocate((size_t)size + 1);
    if (!x->buffer) {
        x->result = -1;
        return 1;
    }
    if (Inflate(stream, n, x->buffer, (size_t)size + 1) == size) x->size = (uint32_t)size;
    return 1;
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
    Extract x = {allocate, NULL, 0, 1, 0};
    struct stat st;
    png_alloc_size_t cap = KT_ALLOC_MARGIN;
    if (fstat(fd, &st) == 0 && st.st_size > 0) cap += (png_alloc_size_t)st.st_size;
    png_structp png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, NULL, Fail, Quiet, &cap, LimitedMalloc,
                                               LimitedFree);
    png_infop info = png ? png_create_info_struct(png) : NULL;
    volatile int32_t result = -7;
    if (!info) {
        result = -1;
    } else if (setjmp(png_jmpbuf(png)) == 0) {
        static const png_byte kIccp[] = "iCCP";
        png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, kIccp, 1);
        png_set_read_user_chunk_fn(png, &x, OnChunk);
        png_init_io(png, fp);
        png_read_info(png, info);
        result = x.result;
    }
    png_destroy_read_struct(png ? &png : NULL, info ? &info : NULL, NULL);
    fclose(fp);
    /* The buffer goes back to the caller, who releases it, even with no
     * profile in it; on an error it is released there as well. */
    *buffer = x.buffer;
    *size = result == 1 ? x.size : 0;
    return result;
}
