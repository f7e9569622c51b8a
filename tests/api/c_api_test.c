/* The public headers as plain C99: create, validate and free a handle. */
#include <stdio.h>
#include <string.h>

#include <ktclr.h>

#define CHECK(cond)                                              \
    do {                                                         \
        if (!(cond)) {                                           \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #cond); \
            return 1;                                            \
        }                                                        \
    } while (0)

int main(void) {
    ClrHandle* h = NULL;
    ConversionParams p;
    CHECK(Vx_ClrInit(&h, CS_RGB, CS_HSV, NULL) == STATUS_OK);
    CHECK(h != NULL && h->structSize == KTCLR_SIZEOF_CLR_HANDLE);
    CHECK(Vx_ClrIsValid(h) == STATUS_OK);
    CHECK(Vx_ClrFree(h) == STATUS_OK);
    CHECK(Vx_ClrIsValid(NULL) == ERR_INVALID_COLOR_HANDLE);

    memset(&p, 0, sizeof p);
    p.structSize = 1625;
    CHECK(Vx_ClrInit(&h, CS_RGB, CS_HSV, &p) == ERR_BAD_STRUCT_SIZE);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    p.method = METHOD_BUILTIN;
    p.prepareMethods = METHOD_BUILTIN;
    CHECK(Vx_ClrInit(&h, CS_HSV, CS_RGB, &p) == STATUS_OK);
    CHECK(h->iccOptions != NULL && h->iccOptions->values[0] == 50u);
    CHECK(Vx_ClrFree(h) == STATUS_OK);
    puts("c api ok");
    return 0;
}
