/* A client of the installed package: create, validate, free. */
#include <stdio.h>

#include <ktclr.h>

int main(void) {
    ClrHandle* h = NULL;
    if (Vx_ClrInit(&h, CS_RGB, CS_YIQ, NULL) != STATUS_OK) return 1;
    if (Vx_ClrIsValid(h) != STATUS_OK) return 2;
    if (Vx_ClrFree(h) != STATUS_OK) return 3;
    puts("consumer ok");
    return 0;
}
