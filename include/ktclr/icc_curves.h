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

/* Flat host-order buffer to a record; the record's previous array is not
 * freed. */
KTCLR_API KtStatus Vx_ClrIntGetCurveTypeLittleIndian(const unsigned char* buffer, ICCCurveType* curve);
/* count * 2 + 4, but 5 for a one-entry curve; 0 for a null record. */
KTCLR_API uint32_t Vx_ClrIntGetCurveTypeSize(const ICCCurveType* curve, uint32_t count);
KTCLR_API void Vx_ClrIntIccFreeCurveType(ICCCurveType* curve);
/* 1 when the record is a 'para' one: fileOrder 1 reads the signature as
 * file bytes, any other value as a native number. */
KTCLR_API int32_t Vx_ClrIntIsParametricCurveType(const void* record, int32_t fileOrder);
/* 1, 3, 4, 5, 7 for function types 0 to 4; 0 for any other. */
KTCLR_API int32_t Vx_GetParametricCurveNumberOfParameters(uint32_t functionType);
KTCLR_API KtStatus Vx_ClrIntGetParametricCurveTypeLittleIndian(const unsigned char* buffer,
                                                               ICCParametricCurveType* curve);
/* 4 * parameters + 4 (4 for an unknown function type); 0 for a null record. */
KTCLR_API uint32_t Vx_ClrIntGetParametricCurveTypeSize(const ICCParametricCurveType* curve);
KTCLR_API void Vx_ClrIntIccFreeParametricCurveType(ICCParametricCurveType* curve);
/* The record as a flat buffer of 12 + 2 * count bytes; the count is read in
 * the record's own byte order, which its signature tells. */
KTCLR_API KtStatus Vx_ConvertCurveTypeToBuffer(unsigned char* buffer, const ICCCurveType* curve);
/* The record as a flat buffer; the parameter count comes from the function
 * type read natively, so a file-order record yields its 12 fixed bytes
 * only. */
KTCLR_API KtStatus Vx_ConvertParametricCurveTypeToBuffer(unsigned char* buffer, const ICCParametricCurveType* curve);

KTCLR_EXTERN_C_END

#endif
