/* ktclr: conversion handles and conversion parameters.
 *
 * A client fills a ConversionParams record, asks Vx_ClrInit for a handle
 * for one ordered pair of color spaces, converts any number of buffers with
 * it and gives it back with Vx_ClrFree. The handle owns copies of every
 * option record and profile it was given, except the buffer named inside
 * YuvOptions, which the caller keeps alive for the handle's life.
 *
 * Records begin with their own size. Callers store the KTCLR_SIZEOF_*
 * values below in the size fields; on 64-bit builds the structs are larger
 * than those values, which is expected. */
#ifndef KTCLR_CONVERT_H
#define KTCLR_CONVERT_H

#include "export.h"
#include "status.h"
#include "colorspace.h"

KTCLR_EXTERN_C_BEGIN

/* Size values for the structSize fields. */
#define KTCLR_SIZEOF_CONVERSION_PARAMS 1624u    /* without iccFlags */
#define KTCLR_SIZEOF_CONVERSION_PARAMS_EX 1628u /* with iccFlags */
#define KTCLR_SIZEOF_CLR_HANDLE 1652u
#define KTCLR_SIZEOF_CMYK_OPTIONS 12u
#define KTCLR_SIZEOF_YUV_OPTIONS 40u
#define KTCLR_SIZEOF_LAB_OPTIONS 32u
#define KTCLR_SIZEOF_PROFILE_MEMORY 12u

/* Path fields: 264 units in ConversionParams, 260 in ClrHandle. At most
 * 259 characters are honoured. */
#define KTCLR_PARAMS_PATH_UNITS 264
#define KTCLR_HANDLE_PATH_UNITS 260

/* Black level used for RGB/CMYK when a handle has no CmykOptions. */
#define KTCLR_DEFAULT_CMYK_BLACK 175u
/* ConversionParams.iccFlags bit 0: no white-on-white fix-up. */
#define KTCLR_ICC_FLAG_NO_WHITE_FIX 1u

/* Five values handed to the ICC machinery; the first defaults to 50. */
typedef struct IccOptions {
    uint32_t values[5];
} IccOptions;

/* A profile passed in memory. The engine copies the bytes. */
typedef struct ProfileMemory {
    uint32_t structSize; /* KTCLR_SIZEOF_PROFILE_MEMORY */
    void* data;
    uint32_t length; /* non-zero */
} ProfileMemory;

typedef struct CmykOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_CMYK_OPTIONS */
    uint32_t value;      /* black level for the RGB/CMYK kernels */
    uint32_t validMask;  /* bit 1: Vx_ClrSetConversionParams applies value */
} CmykOptions;

/* Bits of YuvOptions.validMask honoured by Vx_ClrSetConversionParams. */
#define KTCLR_YUV_VALUE1 1u
#define KTCLR_YUV_VALUE2 2u
#define KTCLR_YUV_VALUE3 4u
#define KTCLR_YUV_VALUE4 8u
#define KTCLR_YUV_BUFFER 16u     /* copy byteCount bytes into the first buffer */
#define KTCLR_YUV_BYTE_COUNT 32u
#define KTCLR_YUV_VALUE5 64u

typedef struct YuvOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_YUV_OPTIONS */
    uint32_t validMask;
    int32_t values[4];
    void* buffer; /* shared with the handle: keep it alive */
    uint32_t byteCount;
    int32_t value5;
    int32_t last;
} YuvOptions;

typedef struct LabOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_LAB_OPTIONS */
    uint32_t validMask;  /* bits 1..32, one per range value */
    int32_t ranges[6];
} LabOptions;

typedef struct ConversionParams {
    uint32_t structSize; /* KTCLR_SIZEOF_CONVERSION_PARAMS or ..._EX */
    uint32_t method;     /* the METHOD_ in force */
    IccOptions* iccOptions;
    KtChar16 srcProfilePath[KTCLR_PARAMS_PATH_UNITS];
    ProfileMemory* srcProfileMemory; /* wins over srcProfilePath */
    KtChar16 dstProfilePath[KTCLR_PARAMS_PATH_UNITS];
    ProfileMemory* dstProfileMemory; /* wins over dstProfilePath */
    KtChar16 emulationTablePath[KTCLR_PARAMS_PATH_UNITS];
    CmykOptions* cmykOptions;
    YuvOptions* yuvOptions;
    LabOptions* labOptions;
    uint32_t prepareMethods;  /* init: methods to build; set-params: change mask */
    uint32_t emulationMethod; /* must be 8 when method is 8 */
    uint32_t iccFlags;        /* read only when structSize is the _EX value */
} ConversionParams;

/* Change-mask bits of Vx_ClrSetConversionParams (params.prepareMethods). */
#define KTCLR_CHANGE_METHOD 1u
#define KTCLR_CHANGE_CUSTOM_PROFILES 2u
#define KTCLR_CHANGE_ICC_OPTIONS 4u
#define KTCLR_CHANGE_CUSTOM_EMULATION 8u
#define KTCLR_CHANGE_CMYK 16u
#define KTCLR_CHANGE_YUV 32u
#define KTCLR_CHANGE_LAB 64u

/* Tables a handle may own; their layout is private to the library. */
typedef struct LabTable LabTable;
typedef struct RgbToLabTable RgbToLabTable;
typedef struct YcckTable YcckTable;

/* One step (1) or two steps through RGB (2). */
#define KTCLR_PATH_ONE_STEP 1
#define KTCLR_PATH_TWO_STEP 2

typedef struct ClrHandle {
    uint32_t structSize; /* always KTCLR_SIZEOF_CLR_HANDLE */
    int32_t srcSpace;
    int32_t dstSpace;
    void* iccTransform;       /* lcms2 transform for METHOD_ICC */
    void* customIccTransform; /* lcms2 transform for METHOD_CUSTOM_ICC */
    uint32_t srcFormat;
    uint32_t dstFormat;
    CmykOptions* cmykOptions;
    YuvOptions* yuvOptions;
    int32_t PathKind;
    IccOptions* iccOptions;
    uint32_t method;
    uint32_t preparedMethods;
    KtChar16 srcProfilePath[KTCLR_HANDLE_PATH_UNITS];
    KtChar16 dstProfilePath[KTCLR_HANDLE_PATH_UNITS];
    KtChar16 emulationTablePath[KTCLR_HANDLE_PATH_UNITS];
    ProfileMemory* srcProfileMemory;
    ProfileMemory* dstProfileMemory;
    const uint8_t* builtinEmulationTable; /* borrowed */
    uint8_t* customEmulationTable;        /* owned */
    uint32_t reserved[2];
    int32_t gammaPercent; /* always 45 */
    LabTable* labTable;
    RgbToLabTable* rgbToLabTable;
    YcckTable* ycckTable;
} ClrHandle;

/* Creates a handle for srcSpace -> dstSpace; params may be null (built-in
 * formulas). On failure *outHandle is left untouched. */
KTCLR_API KtStatus Vx_ClrInit(ClrHandle** outHandle, int srcSpace, int dstSpace,
                              ConversionParams* params);

/* Destroys a live handle and everything it owns. */
KTCLR_API KtStatus Vx_ClrFree(ClrHandle* handle);

/* STATUS_OK if handle is live, else ERR_INVALID_COLOR_HANDLE. */
KTCLR_API KtStatus Vx_ClrIsValid(ClrHandle* handle);

/* Changes a live handle; params->prepareMethods is the change mask
 * (KTCLR_CHANGE_*). Changes made before a failing step stay in force. */
KTCLR_API KtStatus Vx_ClrSetConversionParams(ClrHandle* handle, ConversionParams* params);

/* Converts width x height pixels from the handle's source space to its
 * destination space. srcAlign/dstAlign: row alignment in bytes (0: packed
 * rows; both strides are rounded only when both are non-zero). */
KTCLR_API KtStatus Vx_ClrConvert(ClrHandle* handle, uint8_t* src, uint8_t* dst, int width, int height,
                                 int srcAlign, int dstAlign);

/* Converts between two spaces with the built-in formulas, without a handle;
 * srcPad/dstPad: bytes after each row. */
KTCLR_API KtStatus Vx_ClrConvertDirect(int srcSpace, int dstSpace, uint8_t* src, uint8_t* dst, int width,
                                       int height, int srcPad, int dstPad);

KTCLR_EXTERN_C_END

#endif
