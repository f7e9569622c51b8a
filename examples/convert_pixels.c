/* Converts a few RGB pixels to HSV and Lab through handles, then reads the
 * tag directory of the library's built-in display profile. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <ktclr.h>

/* signedChroma: bytes 1 and 2 are signed (Lab a and b). */
static void Convert(const char* name, int dst, uint8_t* rgb, int width, int signedChroma) {
    ClrHandle* handle = NULL;
    uint8_t out[4 * 8];
    int i;
    KtStatus s = Vx_ClrInit(&handle, CS_RGB, dst, NULL);
    if (s != STATUS_OK) {
        printf("%s: init failed with %d\n", name, (int)s);
        return;
    }
    s = Vx_ClrConvert(handle, rgb, out, width, 1, 0, 0);
    printf("%-4s status %d:", name, (int)s);
    for (i = 0; i < width; ++i) {
        int b1 = signedChroma ? (int)(int8_t)out[3 * i + 1] : (int)out[3 * i + 1];
        int b2 = signedChroma ? (int)(int8_t)out[3 * i + 2] : (int)out[3 * i + 2];
        printf(" (%3u %4d %4d)", out[3 * i], b1, b2);
    }
    printf("\n");
    Vx_ClrFree(handle);
}

static void ShowDisplayProfile(void) {
    int32_t size = 0;
    uint8_t* bytes;
    ICCProfileRecord record;
    int i;
    if (Vx_ClrGetEmbeddedProfile(KTCLR_PROFILE_RGB_DISPLAY, NULL, &size) != STATUS_OK) return;
    bytes = (uint8_t*)malloc((size_t)size);
    if (!bytes) return;
    Vx_ClrGetEmbeddedProfile(KTCLR_PROFILE_RGB_DISPLAY, bytes, &size);
    Vx_InitICCProfile(&record, KTCLR_SIZEOF_ICC_PROFILE_RECORD);
    if (Vx_FillICCProfileStructure(&record, bytes, (uint32_t)size) == STATUS_OK) {
        printf("display profile: %d bytes, %d tags:", (int)size, (int)record.tagCount);
        for (i = 0; i < record.tagCount; ++i) {
            uint32_t sig = record.tagList[i].signature;
            printf(" %c%c%c%c", (char)(sig >> 24), (char)(sig >> 16), (char)(sig >> 8), (char)sig);
        }
        printf("\n");
    }
    Vx_FreeICCProfile(&record);
    free(bytes);
}

int main(void) {
    /* red, green, blue, white, mid grey, orange */
    uint8_t rgb[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 128, 128, 128, 255, 128, 0};
    const int width = (int)(sizeof rgb / 3);
    printf("red, green, blue, white, grey, orange:\n");
    Convert("HSV", CS_HSV, rgb, width, 0);
    Convert("Lab", CS_LAB, rgb, width, 1);
    ShowDisplayProfile();
    return 0;
}
