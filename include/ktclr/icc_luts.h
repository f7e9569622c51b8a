/* ktclr: the CLUT and LUT tag types: 'mft1' (lut8), 'mft2' (lut16),
 * 'mAB ' (lutAtoB) and 'mBA ' (lutBtoA), and the CLUT and curve-set
 * helpers. Host order and file order as in icc_curves.h. */
#ifndef KTCLR_ICC_LUTS_H
#define KTCLR_ICC_LUTS_H

#include "export.h"
#include "icc_curves.h"
#include "status.h"

KTCLR_EXTERN_C_BEGIN

/* Bytes of a CLUT element before its entries. */
#define KTCLR_ICC_CLUT_HEAD_BYTES 20u

/* The CLUT element of 'mAB ' and 'mBA '. The entries are
 * (product of the used gridPoints) * outputChannels values of precision
 * bytes each. */
typedef struct ICCCLUT {
    uint8_t gridPoints[16]; /* per input channel; the unused ones are 0 */
    uint8_t precision;      /* 1 or 2 */
    uint8_t reserved[3];
    uint8_t* data;          /* owned by the record */
} ICCCLUT;

/* 'mft2' and 'mft1'. The tables hold uint16_t entries for 'mft2' and
 * uint8_t entries for 'mft1': inputEntries * inputChannels,
 * gridPoints ^ inputChannels * outputChannels and
 * outputEntries * outputChannels of them. 'mft1' keeps its two entry counts
 * in the element as native (little-endian) numbers at bytes 48 and 50, with
 * the tables from byte 52, as 'mft2' does. */
typedef struct ICCLut16 {
    uint32_t signature;
    uint32_t reserved;
    uint8_t inputChannels;
    uint8_t outputChannels;
    uint8_t gridPoints;
    uint8_t padding;
    int32_t matrix[9]; /* e00 .. e22, s15Fixed16 */
    uint16_t inputEntries;
    uint16_t outputEntries;
    void* inputTables;  /* owned by the record */
    void* clut;         /* owned by the record */
    void* outputTables; /* owned by the record */
} ICCLut16;
typedef ICCLut16 ICCLut8;

/* 'mAB ' and 'mBA '. The offsets are those of the element, from the start
 * of the tag; 0 is an absent element.
 *
 * A record filled by Vx_GetICCTagData holds every present element in flat
 * host-order form: `pool` all of them in reading order, and separate copies
 * of each curve set (flat curves, each padded to 4 bytes) and of the CLUT
 * (its 20-byte head and entries). A record created by Vx_CreateICCTagData
 * holds the encoded elements in the same places, big-endian.
 *
 * A record given to Vx_CreateICCTagData or Vx_SetICCTagData instead points
 * curvesB, curvesM and curvesA at arrays of curve records (each an
 * ICCCurveType or an ICCParametricCurveType, which have the same size) and
 * clut at an ICCCLUT; every element is written. Creating turns the entries
 * of a 2-byte CLUT big-endian in place. Curves per set: lutAtoB has A =
 * inputChannels, M = B = outputChannels; lutBtoA has B = M = inputChannels,
 * A = outputChannels. */
typedef struct ICCLutAtoB {
    uint32_t signature;
    uint32_t reserved;
    uint8_t inputChannels;
    uint8_t outputChannels;
    uint16_t reserved2;
    uint32_t offsetB;
    uint32_t offsetMatrix;
    uint32_t offsetM;
    uint32_t offsetCLUT;
    uint32_t offsetA;
    uint8_t* pool; /* owned by the record */
    void* curvesB; /* owned by the record when filled by the library */
    void* curvesM;
    void* curvesA;
    void* clut;
    int32_t matrix[12]; /* e00 .. e22, then e03, e13, e23; s15Fixed16 */
} ICCLutAtoB;
typedef ICCLutAtoB ICCLutBtoA;

/* Bytes of a CLUT element: the entries and the 20-byte head, rounded up to
 * a multiple of 4. The grid points and precision are read from the first 17
 * bytes at clut (a flat or encoded CLUT, or an ICCCLUT). inputChannels of 0
 * or less counts as none, more than 16 as 16; outputChannels below 0 as 0.
 * 0 for a null pointer or a size beyond 32 bits. */
KTCLR_API uint32_t Vx_ClrIntGetCLUTSize(const void* clut, int32_t inputChannels, int32_t outputChannels);
/* Writes the record as a flat CLUT: its 20 head bytes, then dataBytes
 * bytes of its data, unchanged. ERR_INVALID_PARAMETER for a null pointer, a
 * precision other than 1 or 2, or data bytes without data; else
 * STATUS_OK. */
KTCLR_API KtStatus Vx_ConvertCLUTToBuffer(unsigned char* buffer, const ICCCLUT* clut, int32_t precision,
                                          uint32_t dataBytes);
/* Reads the CLUT element at source, sized by Vx_ClrIntGetCLUTSize and
 * trusted to be complete. With a buffer, 2-byte entries are taken as
 * big-endian and made native, and the flat CLUT is written to buffer;
 * without, they are copied as they stand. With a record, it receives the
 * CLUT and a new data array (its reserved bytes reversed), released with
 * Vx_ClrIntFreeCLUT; without, nothing is kept. ERR_INVALID_PARAMETER for a
 * null source or a size beyond 32 bits, ERR_NO_MEMORY, else STATUS_OK. */
KTCLR_API KtStatus Vx_ClrIntGetCLUTBuffer(unsigned char* buffer, const unsigned char* source, int32_t inputChannels,
                                          int32_t outputChannels, ICCCLUT* clut);
/* Frees the data array. The pointer is left as it was and clut must not be
 * null: free a record once. */
KTCLR_API void Vx_ClrIntFreeCLUT(ICCCLUT* clut);
/* Encoded bytes of a set of count curves, each padded to 4. fileOrder 1
 * reads signatures and counts big-endian ('para' function types are read
 * natively either way). recordArray non-zero walks an array of curve
 * records, zero a flat curve set. 0 for a null set, no curves, or a size
 * beyond 32 bits. */
KTCLR_API uint32_t Vx_ClrIntGetLutCurveSize(const void* curves, uint32_t count, int32_t fileOrder,
                                            int32_t recordArray);

KTCLR_EXTERN_C_END

#endif
