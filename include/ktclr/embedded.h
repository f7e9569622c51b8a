/* ktclr: the ICC profiles the library carries. */
#ifndef KTCLR_EMBEDDED_H
#define KTCLR_EMBEDDED_H

#include "export.h"
#include "status.h"

KTCLR_EXTERN_C_BEGIN

/* Selectors. */
#define KTCLR_PROFILE_RGB_DISPLAY 105 /* display, RGB to XYZ (sRGB-like) */
#define KTCLR_PROFILE_LAB 106         /* color space, Lab to Lab */
#define KTCLR_PROFILE_CMYK_PRESS 107  /* output, CMYK to Lab (coated offset press) */
#define KTCLR_PROFILE_CMY 110         /* color space, CMY to Lab */

/* Copies the profile `selector` names into the caller's buffer, whose
 * size *size holds on entry; *size then receives the profile's size. With
 * a null buffer only the size is reported: call again with a buffer that
 * large. Nothing is allocated. STATUS_OK; ERR_INVALID_PARAMETER for a null
 * size pointer or an unknown selector (108 and 109 are reserved);
 * ERR_BUFFER_TOO_SMALL when the buffer is smaller than the profile (*size
 * unchanged). */
KTCLR_API KtStatus Vx_ClrGetEmbeddedProfile(int32_t selector, uint8_t* buffer, int32_t* size);

KTCLR_EXTERN_C_END

#endif
