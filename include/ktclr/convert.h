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

/* Five values the handle copies and keeps; the conversions do not read
 * them. values[0] is the white-point choice (KTCLR_WHITE_* of dialog.h;
 * 50 on a handle made without the record); the settings dialog stores a
 * custom white point's x in values[1..2] and y in values[3..4], each a
 * double in native byte order. Vx_ClrSetConversionParams updates values
 * 0, 1 and 3 only. */
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

/* Values handed to the YUV kernels unchanged; validMask names those that
 * Vx_ClrSetConversionParams applies (KTCLR_YUV_*). */
typedef struct YuvOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_YUV_OPTIONS */
    uint32_t validMask;
    int32_t values[4];   /* KTCLR_YUV_VALUE1 .. KTCLR_YUV_VALUE4 */
    void* buffer;        /* shared with the handle: keep it alive */
    uint32_t byteCount;  /* bytes KTCLR_YUV_BUFFER copies into buffer */
    int32_t value5;      /* KTCLR_YUV_VALUE5 */
    int32_t last;        /* copied at creation, never changed */
} YuvOptions;

typedef struct LabOptions {
    uint32_t structSize; /* KTCLR_SIZEOF_LAB_OPTIONS */
    uint32_t validMask;  /* bits 1..32, one per range value */
    int32_t ranges[6];   /* the Lab tables' range values, in table order */
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

/* Creates a handle for srcSpace -> dstSpace and builds what the prepared
 * methods need (ICC transforms, emulation and Lab tables). The handle owns
 * copies of the option records and profiles it was given (not the buffer
 * inside YuvOptions); release it with Vx_ClrFree. params may be null: the
 * built-in formulas. A pair with srcSpace == dstSpace (and no
 * METHOD_CUSTOM_ICC prepared) gives an identity handle that copies rows,
 * whatever the id.
 *
 * With METHOD_AUTO in both params->method and params->prepareMethods, the
 * chosen method is written into both fields for the duration of the call
 * and METHOD_AUTO is put back only on success: a failure after the choice
 * leaves the chosen bit in the caller's record.
 *
 * STATUS_OK with *outHandle set; on failure *outHandle is left untouched:
 * ERR_INVALID_PARAMETER, ERR_BAD_STRUCT_SIZE, ERR_BAD_POINTER,
 * ERR_UNSUPPORTED_SPACE, ERR_BAD_METHOD, ERR_BAD_COLOR_SPACE, ERR_ALLOC or a
 * status of the profile and table set-up. An unreadable or mis-sized
 * CmykOptions, YuvOptions or LabOptions record returns ERR_BAD_POINTER or
 * ERR_BAD_STRUCT_SIZE with the half-built handle left live on the handle
 * list: the caller never receives it, and unloading the library frees it. */
KTCLR_API KtStatus Vx_ClrInit(ClrHandle** outHandle, int srcSpace, int dstSpace,
                              ConversionParams* params);

/* Destroys a live handle and frees everything it owns. STATUS_OK;
 * ERR_INVALID_PARAMETER for a null or unreadable pointer;
 * ERR_INVALID_COLOR_HANDLE for a pointer that is not a live handle (a
 * handle freed already, while its block is still readable). */
KTCLR_API KtStatus Vx_ClrFree(ClrHandle* handle);

/* STATUS_OK if handle is a live handle (readable, its size field right and
 * on the list of handles), else ERR_INVALID_COLOR_HANDLE. */
KTCLR_API KtStatus Vx_ClrIsValid(ClrHandle* handle);

/* Changes a live handle; params->prepareMethods is the change mask
 * (KTCLR_CHANGE_*), applied in the order METHOD, CMYK, YUV, LAB,
 * ICC_OPTIONS, CUSTOM_PROFILES, CUSTOM_EMULATION. Changes made before a
 * failing step stay in force. The YUV change tests params->cmykOptions,
 * not yuvOptions, for null. ERR_INVALID_PARAMETER, ERR_BAD_STRUCT_SIZE,
 * ERR_BAD_POINTER, ERR_INVALID_COLOR_HANDLE, ERR_BAD_METHOD (a method not
 * prepared, or an option change for a pair without that space), ERR_ALLOC
 * or a transform builder's status; else STATUS_OK. A custom emulation
 * table that cannot be loaded leaves the handle without one and still
 * returns STATUS_OK. */
KTCLR_API KtStatus Vx_ClrSetConversionParams(ClrHandle* handle, ConversionParams* params);

/* Converts width x height pixels from the handle's source space to its
 * destination space with the method in force. srcAlign/dstAlign: row
 * alignment in bytes (0: packed rows; both strides are rounded only when
 * both are non-zero). Both buffers are probed over their whole extent
 * before anything is written. STATUS_OK; ERR_NULL_ARGUMENT, ERR_BAD_SIZE,
 * ERR_INVALID_PARAMETER, ERR_BAD_POINTER, ERR_INVALID_COLOR_HANDLE,
 * ERR_SAME_BUFFER (in place with differing alignments), ERR_BAD_METHOD, or
 * the status of the method's row conversion. A pair converted through RGB
 * reports STATUS_OK whatever the conversion found. */
KTCLR_API KtStatus Vx_ClrConvert(ClrHandle* handle, uint8_t* src, uint8_t* dst, int width, int height,
                                 int srcAlign, int dstAlign);

/* Converts between two spaces with the built-in formulas, without a
 * handle; srcPad/dstPad: bytes after each row. A pair without RGB on
 * either side passes through a temporary RGB image. STATUS_OK;
 * ERR_INVALID_PARAMETER, ERR_BAD_COLOR_SPACE (unknown space), ERR_ODD_WIDTH,
 * ERR_BAD_PLANAR_SIZE, ERR_BAD_POINTER, ERR_SAME_BUFFER, ERR_ALLOC (the
 * temporary image) or a kernel's status (ERR_INVALID_TAG for an HLS pixel
 * with zero saturation and a hue). */
KTCLR_API KtStatus Vx_ClrConvertDirect(int srcSpace, int dstSpace, uint8_t* src, uint8_t* dst, int width,
                                       int height, int srcPad, int dstPad);

KTCLR_EXTERN_C_END

#endif
