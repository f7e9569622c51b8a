/* ktclr: narrow-character twins of the functions that take file names.
 *
 * Each twin converts its narrow strings to UTF-16 and calls, or repeats, the
 * wide function. Narrow strings are in the multibyte encoding of the calling
 * thread's LC_CTYPE locale: UTF-8 once the program has called
 * setlocale(LC_ALL, "") under a UTF-8 locale, plain ASCII in the default
 * "C" locale. */
#ifndef KTCLR_NARROW_H
#define KTCLR_NARROW_H

#include "export.h"
#include "status.h"
#include "convert.h"
#include "icc.h"
#include "storage.h"

KTCLR_EXTERN_C_BEGIN

/* Bytes of the narrow path fields, terminator included. */
#define KTCLR_PARAMS_PATH_BYTES 264
/* Size of ConversionParamsA in the 32-bit layout. The twins neither check
 * nor copy structSize: the wide record they build always carries
 * KTCLR_SIZEOF_CONVERSION_PARAMS_EX and an iccFlags of 0. */
#define KTCLR_SIZEOF_CONVERSION_PARAMS_A 832u

/* ConversionParams with narrow paths and without iccFlags. A path that does
 * not convert (too long for 264 UTF-16 units, not decodable in the locale,
 * or without a terminator in its 264 bytes) reaches the wide record empty;
 * a path of up to 263 characters converts whole. */
typedef struct ConversionParamsA {
    uint32_t structSize; /* KTCLR_SIZEOF_CONVERSION_PARAMS_A; not read */
    uint32_t method;
    IccOptions* iccOptions;
    char srcProfilePath[KTCLR_PARAMS_PATH_BYTES];
    ProfileMemory* srcProfileMemory;
    char dstProfilePath[KTCLR_PARAMS_PATH_BYTES];
    ProfileMemory* dstProfileMemory;
    char emulationTablePath[KTCLR_PARAMS_PATH_BYTES];
    CmykOptions* cmykOptions;
    YuvOptions* yuvOptions;
    LabOptions* labOptions;
    uint32_t prepareMethods;
    uint32_t emulationMethod;
} ConversionParamsA;

/* Vx_ClrInit with the parameters converted to the wide record; a null
 * params passes null. ERR_BAD_POINTER when params is not readable. */
KTCLR_API KtStatus Vx_ClrInitA(ClrHandle** outHandle, int srcSpace, int dstSpace, ConversionParamsA* params);

/* Vx_ClrSetConversionParams with the parameters converted to the wide
 * record; a null params passes null (ERR_INVALID_PARAMETER).
 * ERR_BAD_POINTER when params is not readable. */
KTCLR_API KtStatus Vx_ClrSetConversionParamsA(ClrHandle* handle, ConversionParamsA* params);

/* Narrow form of Vx_SaveFileOptions; converted field by field (the backup
 * name only when structSize is KTCLR_SIZEOF_SAVE_FILE_OPTIONS, so that the
 * save judges a wrong size as for the wide record). */
typedef struct Vx_SaveFileOptionsA {
    uint32_t structSize;        /* KTCLR_SIZEOF_SAVE_FILE_OPTIONS */
    uint32_t flags;             /* VX_SAVE_... bits */
    const char* backupFileName; /* optional */
} Vx_SaveFileOptionsA;

/* The twins below convert fileName (a null name stays null and meets the
 * wide function's check) and return ERR_NO_MEMORY when a non-null name
 * cannot be decoded in the locale or its copy cannot be allocated; else
 * they return what the wide function returns. */

/* Vx_FillICCProfileFromICCFile with a narrow file name. */
KTCLR_API KtStatus Vx_FillICCProfileFromICCFileA(const char* fileName, ICCProfileRecord* profile);

/* Vx_LoadICCProfile with a narrow file name. */
KTCLR_API KtStatus Vx_LoadICCProfileA(const char* fileName, ICCProfileRecord* profile,
                                      const Vx_LoadFileOptions* loadOptions);

/* Vx_HasICCProfile with a narrow file name: 1 or 0, or ERR_NO_MEMORY when
 * the name does not convert. */
KTCLR_API KtStatus Vx_HasICCProfileA(const char* fileName, const Vx_LoadFileOptions* loadOptions);

/* Vx_GenerateICCFile with a narrow file name: writes profile->profileData
 * (profileSize bytes) as a new file. ERR_INVALID_PARAMETER: profile or
 * fileName null; ERR_FILE_CREATE; ERR_FILE_WRITE. */
KTCLR_API KtStatus Vx_GenerateICCFileA(ICCProfileRecord* profile, const char* fileName);

/* Vx_SaveICCProfile with a narrow file name and narrow options (null: the
 * defaults). ERR_BAD_POINTER: saveOptions not readable; ERR_NO_MEMORY: the
 * backup name does not convert. */
KTCLR_API KtStatus Vx_SaveICCProfileA(const char* fileName, const ICCProfileRecord* profile,
                                      const Vx_SaveFileOptionsA* saveOptions);

KTCLR_EXTERN_C_END

#endif
