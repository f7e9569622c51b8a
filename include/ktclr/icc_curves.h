/* ktclr: the curve tag types, 'curv' (sampled curve or gamma) and 'para'
 * (one of five closed-form functions), and their flat-buffer helpers.
 *
 * A record is in host order (native numbers: what Vx_GetICCTagData returns
 * and what callers fill) or in file order (the big-endian bytes of the ICC
 * encoding: what Vx_CreateICCTagData produces). A flat buffer is the byte
 * encoding's layout (12 fixed bytes, then the array) with the record's bytes
 * copied as they stand, so it has the record's byte order. */
#ifndef KTCLR_ICC_CURVES_H
#define KTCLR_ICC_CURVES_H

#include "export.h"
#include "status.h"

KTCLR_EXTERN_C_BEGIN

/* 'curv': count 0 is the identity, 1 a u8Fixed8 gamma, more a sampled
 * curve with values 0..65535. */
typedef struct ICCCurveType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t count;
    uint16_t* entries; /* count values; owned by the record */
} ICCCurveType;

/* 'para': parameters g, a, b, c, d, e, f as the function type uses them
 * (1, 3, 4, 5 or 7 of them for types 0 to 4), s15Fixed16 each. */
typedef struct ICCParametricCurveType {
    uint32_t signature;
    uint32_t reserved;
    uint16_t functionType;
    uint16_t reserved2;
    int32_t* parameters; /* owned by the record */
} ICCParametricCurveType;

/* Reads a flat host-order curve into `curve`: its 12 fixed bytes as they
 * stand and a new array of `count` entries copied unchanged. The record's
 * previous array is not freed. ERR_INVALID_PARAMETER for a null pointer,
 * ERR_NO_MEMORY, else STATUS_OK; release the array with
 * Vx_ClrIntIccFreeCurveType. */
KTCLR_API KtStatus Vx_ClrIntGetCurveTypeLittleIndian(const unsigned char* buffer, ICCCurveType* curve);
/* The size rule of a curve after its 8-byte type head: count * 2 + 4, but
 * 5 for a one-entry curve; 0 for a null record, whose fields are not
 * read. */
KTCLR_API uint32_t Vx_ClrIntGetCurveTypeSize(const ICCCurveType* curve, uint32_t count);
/* Frees the entries and nulls the pointer; a null record or pointer is
 * ignored, so freeing twice is harmless. */
KTCLR_API void Vx_ClrIntIccFreeCurveType(ICCCurveType* curve);
/* 1 when the record is a 'para' one, else 0 (0 for null): fileOrder 1
 * reads the signature as file bytes, any other value as a native number. */
KTCLR_API int32_t Vx_ClrIntIsParametricCurveType(const void* record, int32_t fileOrder);
/* 1, 3, 4, 5, 7 for function types 0 to 4; 0 for any other. */
KTCLR_API int32_t Vx_GetParametricCurveNumberOfParameters(uint32_t functionType);
/* Reads a flat host-order parametric curve into `curve`: its 12 fixed
 * bytes as they stand and a new array of the function type's parameters.
 * ERR_INVALID_PARAMETER for a null pointer, ERR_INVALID_TAG for an unknown
 * function type, ERR_NO_MEMORY, else STATUS_OK; release the array with
 * Vx_ClrIntIccFreeParametricCurveType. */
KTCLR_API KtStatus Vx_ClrIntGetParametricCurveTypeLittleIndian(const unsigned char* buffer,
                                                               ICCParametricCurveType* curve);
/* 4 * parameters + 4 (4 for an unknown function type); 0 for a null
 * record. The function type is read natively. */
KTCLR_API uint32_t Vx_ClrIntGetParametricCurveTypeSize(const ICCParametricCurveType* curve);
/* Frees the parameters and nulls the pointer; a null record or pointer is
 * ignored. */
KTCLR_API void Vx_ClrIntIccFreeParametricCurveType(ICCParametricCurveType* curve);
/* Writes the record as a flat buffer of 12 + 2 * count bytes (the caller
 * provides them); the count is read in the record's own byte order, which
 * its signature tells. ERR_INVALID_PARAMETER for a null pointer or a
 * missing array, else STATUS_OK. */
KTCLR_API KtStatus Vx_ConvertCurveTypeToBuffer(unsigned char* buffer, const ICCCurveType* curve);
/* Writes the record as a flat buffer. The parameter count comes from the
 * function type read natively, so a file-order record of types 1 to 4
 * yields its 12 fixed bytes only, and an unknown type writes them and
 * still returns STATUS_OK. ERR_INVALID_PARAMETER for a null pointer or a
 * missing array. */
KTCLR_API KtStatus Vx_ConvertParametricCurveTypeToBuffer(unsigned char* buffer, const ICCParametricCurveType* curve);

KTCLR_EXTERN_C_END

#endif
