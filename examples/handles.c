/* Creates conversion handles for a few color-space pairs and methods and
 * prints what the library answers. */
#include <stdio.h>
#include <string.h>

#include <ktclr.h>

static const char* StatusName(KtStatus s) {
    switch (s) {
        case STATUS_OK: return "STATUS_OK";
        case ERR_BAD_METHOD: return "ERR_BAD_METHOD";
        case ERR_UNSUPPORTED_SPACE: return "ERR_UNSUPPORTED_SPACE";
        case ERR_BAD_STRUCT_SIZE: return "ERR_BAD_STRUCT_SIZE";
        case ERR_INVALID_PARAMETER: return "ERR_INVALID_PARAMETER";
        default: return "other";
    }
}

static void Try(const char* what, int src, int dst, ConversionParams* params) {
    ClrHandle* handle = NULL;
    KtStatus s = Vx_ClrInit(&handle, src, dst, params);
    printf("%-34s init %5d %-22s", what, (int)s, StatusName(s));
    if (s == STATUS_OK) {
        printf(" valid %d, method %u, path kind %d", (int)Vx_ClrIsValid(handle), (unsigned)handle->method,
               (int)handle->PathKind);
        printf(", free %d", (int)Vx_ClrFree(handle));
    }
    printf("\n");
}

int main(void) {
    ConversionParams params;
    CmykOptions cmyk;
    LabOptions lab;
    int i;

    Try("RGB -> HSV, no parameters", CS_RGB, CS_HSV, NULL);
    Try("HSV -> XYZ, no parameters", CS_HSV, CS_XYZ, NULL);
    Try("YCCK -> RGB, no parameters", CS_YCCK, CS_RGB, NULL);
    Try("identity 200 -> 200", 200, 200, NULL);
    Try("200 -> RGB", 200, CS_RGB, NULL);

    memset(&params, 0, sizeof params);
    params.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    params.method = METHOD_BUILTIN;
    params.prepareMethods = METHOD_BUILTIN;
    memset(&cmyk, 0, sizeof cmyk);
    cmyk.structSize = KTCLR_SIZEOF_CMYK_OPTIONS;
    cmyk.value = 200;
    params.cmykOptions = &cmyk;
    Try("RGB -> CMYK, built-in, black 200", CS_RGB, CS_CMYK, &params);

    memset(&lab, 0, sizeof lab);
    lab.structSize = KTCLR_SIZEOF_LAB_OPTIONS;
    for (i = 0; i < 6; ++i) lab.ranges[i] = 100;
    params.labOptions = &lab;
    Try("Lab -> RGB, built-in, Lab tables", CS_LAB, CS_RGB, &params);

    params.method = METHOD_AUTO;
    params.prepareMethods = METHOD_AUTO;
    Try("RGB -> HSV, automatic method", CS_RGB, CS_HSV, &params);
    Try("Lab -> RGB, automatic method", CS_LAB, CS_RGB, &params);

    params.structSize = 1625;
    Try("RGB -> HSV, bad record size", CS_RGB, CS_HSV, &params);
    return 0;
}
