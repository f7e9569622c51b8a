/* Through the shared library, with no setting at all: loads the profile of a
 * PNG (argv[1]) through the codec module beside the library and compares it
 * with the profile file (argv[2]). */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <ktclr.h>

static int Widen(const char* s, KtChar16* out, size_t units) {
    size_t i = 0;
    for (; s[i] && i + 1 < units; ++i) out[i] = (KtChar16)(unsigned char)s[i];
    out[i] = 0;
    return s[i] == 0;
}

int main(int argc, char** argv) {
    KtChar16 name[1024];
    ICCProfileRecord record;
    FILE* f;
    long size;
    unsigned char* expected;
    int same;
    if (argc != 3 || !Widen(argv[1], name, 1024)) return 2;
    f = fopen(argv[2], "rb");
    if (!f || fseek(f, 0, SEEK_END) != 0 || (size = ftell(f)) <= 0) return 3;
    expected = (unsigned char*)malloc((size_t)size);
    rewind(f);
    if (!expected || fread(expected, 1, (size_t)size, f) != (size_t)size) return 4;
    fclose(f);
    if (Vx_InitICCProfile(&record, KTCLR_SIZEOF_ICC_PROFILE_RECORD) != STATUS_OK) return 5;
    if (Vx_LoadICCProfile(name, &record, NULL) != STATUS_OK) return 6;
    same = record.profileSize == (uint32_t)size && memcmp(record.profileData, expected, (size_t)size) == 0;
    Vx_FreeICCProfile(&record);
    free(expected);
    if (!same) return 7;
    puts("PNG profile loaded through the codec module");
    return 0;
}
