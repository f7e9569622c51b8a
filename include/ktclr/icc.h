/* ktclr: the ICC profile model.
 *
 * A client declares an ICCProfileRecord, prepares it with Vx_InitICCProfile
 * and then either builds a profile (Vx_InitICCHeader, the Vx_SetICC...
 * setters, Vx_SetICCTagData) or parses one (Vx_FillICCProfileStructure,
 * Vx_FillICCProfileFromICCFile). The record keeps the decoded parts and the
 * finished file image (profileData) side by side; every editing call brings
 * the image up to date. All buffers of a record belong to the library and
 * are released with Vx_FreeICCProfile.
 *
 * Signatures are four characters held as uint32_t with the first character
 * in the most significant byte ('mntr' is 0x6D6E7472); records hold host
 * order, profile bytes are big-endian. */
#ifndef KTCLR_ICC_H
#define KTCLR_ICC_H

#include "export.h"
#include "status.h"

KTCLR_EXTERN_C_BEGIN

/* Size value Vx_InitICCProfile stores in ICCProfileRecord.structSize; the
 * 64-bit struct is larger, which is expected. */
#define KTCLR_SIZEOF_ICC_PROFILE_RECORD 32u
/* Bytes of an encoded header, and of header plus tag count. */
#define KTCLR_ICC_HEADER_BYTES 128u
#define KTCLR_ICC_DIRECTORY_START 132u

/* A four-character signature from its characters. */
#define KTCLR_ICC_SIG(a, b, c, d) \
    (((uint32_t)(unsigned char)(a) << 24) | ((uint32_t)(unsigned char)(b) << 16) | \
     ((uint32_t)(unsigned char)(c) << 8) | (uint32_t)(unsigned char)(d))

/* An XYZ triple of s15Fixed16 numbers. */
typedef struct ICCXYZNumber {
    int32_t X;
    int32_t Y;
    int32_t Z;
} ICCXYZNumber;

/* The decoded 128-byte header; fields sit in file order. */
typedef struct ICCHeader {
    uint32_t size;            /* header + tag count + directory + tag data */
    uint32_t cmmType;
    uint32_t version;         /* 0x04200000 is version 4.2 */
    uint32_t deviceClass;
    uint32_t colorSpace;
    uint32_t connectionSpace;
    uint16_t dateTime[6];     /* year, month, day, hours, minutes, seconds */
    uint32_t magic;           /* 'acsp' */
    uint32_t platform;
    uint32_t flags;
    uint32_t manufacturer;
    uint32_t model;
    uint64_t attributes;
    uint32_t renderingIntent; /* 0..3 */
    ICCXYZNumber illuminant;  /* already s15Fixed16 */
    uint32_t creator;
    uint8_t profileId[16];    /* raw bytes */
    uint8_t reserved[28];     /* raw bytes; written as zeros */
} ICCHeader;

/* One tag directory row, host order. */
typedef struct ICCTagEntry {
    uint32_t signature;
    uint32_t offset; /* of the element, from the start of the file image */
    uint32_t size;   /* 8-byte type head plus data, without padding */
} ICCTagEntry;

typedef struct ICCProfileRecord {
    uint32_t structSize;  /* KTCLR_SIZEOF_ICC_PROFILE_RECORD */
    uint32_t profileSize; /* bytes at profileData */
    uint32_t tagDataSize; /* bytes at tagData */
    ICCHeader* header;
    int32_t tagCount;
    ICCTagEntry* tagList;
    uint8_t* tagData;     /* the tag elements as they stand in the file, padded to 4 */
    uint8_t* profileData; /* the complete file image */
} ICCProfileRecord;

/* A tag of a type without a codec: its bytes after the 8-byte type head. */
typedef struct ICCRawTagType {
    uint32_t typeSignature;
    uint32_t reservedWord;
    uint8_t* bytes;
    uint32_t byteCount;
} ICCRawTagType;

/* 'XYZ ': an array of XYZ triples. */
typedef struct ICCXYZType {
    uint32_t signature;
    uint32_t reserved;
    ICCXYZNumber* values;
    uint32_t count;
} ICCXYZType;

/* Record lifecycle. */
KTCLR_API KtStatus Vx_InitICCProfile(ICCProfileRecord* record, uint32_t size);
KTCLR_API KtStatus Vx_FreeICCProfile(ICCProfileRecord* record);
KTCLR_API void Vx_ClrIntFreeTagList(ICCProfileRecord* record);
KTCLR_API void Vx_ClrIntFreeICCData(ICCProfileRecord* record);

/* Fixed-point numbers (s15Fixed16 and u8Fixed8). */
KTCLR_API uint32_t Vx_DoubleTo2bFixed2bNumber(double value);
KTCLR_API double Vx_2bFixed2bNumberToDouble(int32_t value);
KTCLR_API int32_t Vx_DoubleToU8Fixed8Number(double value);
KTCLR_API double Vx_U8Fixed8NumberToDouble(uint32_t value);

/* Header. */
KTCLR_API KtStatus Vx_InitICCHeader(ICCProfileRecord* record);
KTCLR_API KtStatus Vx_SetICCProfileId(ICCProfileRecord* record);
KTCLR_API KtStatus Vx_SetICCCMMType(ICCProfileRecord* record, uint32_t cmmType);
KTCLR_API KtStatus Vx_SetICCDeviceClass(ICCProfileRecord* record, int32_t deviceClass);
KTCLR_API KtStatus Vx_SetICCColorSpace(ICCProfileRecord* record, int32_t colorSpace);
KTCLR_API KtStatus Vx_SetICCConnectionSpace(ICCProfileRecord* record, int32_t connectionSpace);
KTCLR_API KtStatus Vx_SetICCPrimaryPlatform(ICCProfileRecord* record, int32_t platform);
KTCLR_API KtStatus Vx_SetICCFlags(ICCProfileRecord* record, int32_t flags);
KTCLR_API KtStatus Vx_SetICCDevManufacturer(ICCProfileRecord* record, uint32_t manufacturer);
KTCLR_API KtStatus Vx_SetICCDevModel(ICCProfileRecord* record, uint32_t model);
KTCLR_API KtStatus Vx_SetICCDeviceAttributes(ICCProfileRecord* record, int32_t low, uint32_t high);
KTCLR_API KtStatus Vx_SetICCRenderingIntent(ICCProfileRecord* record, uint32_t intent);
KTCLR_API KtStatus Vx_SetICCCreator(ICCProfileRecord* record, uint32_t creator);
KTCLR_API KtStatus Vx_SetICCDateTime(ICCProfileRecord* record, const uint16_t* dateTime);

/* Big-endian numbers of 1 to 8 bytes. The reader accumulates in 32 bits. */
KTCLR_API uint64_t Vx_ClrIntIccGetBytes(const unsigned char* bytes, int count);
KTCLR_API KtStatus Vx_ClrIntIccSetBytes(unsigned char* bytes, uint64_t value, int count);

/* Tags. Warnings WARN_UNKNOWN_TAG, WARN_UNKNOWN_TAG_TYPE and
 * WARN_UNKNOWN_TAG_AND_TYPE report work that was done. */
KTCLR_API KtStatus Vx_SetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature,
                                    uint32_t typeSignature);
KTCLR_API KtStatus Vx_GetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature);
KTCLR_API KtStatus Vx_CreateICCTagData(void* out, void* typed, uint32_t typeSignature);
KTCLR_API KtStatus Vx_DeleteICCTag(ICCProfileRecord* record, uint32_t tagSignature, void* typedOut);
KTCLR_API uint32_t Vx_GetICCTagTypeSig(ICCProfileRecord* record, uint32_t tagSignature);
KTCLR_API void Vx_FreeICCTagType(void* typed, uint32_t typeSignature);

/* Profile files and bytes. */
KTCLR_API KtStatus Vx_GenerateICCPointer(ICCProfileRecord* record);
KTCLR_API KtStatus Vx_GenerateICCFile(ICCProfileRecord* record, const KtChar16* fileName);
KTCLR_API KtStatus Vx_FillICCProfileStructure(ICCProfileRecord* record, const unsigned char* bytes,
                                              uint32_t length);
KTCLR_API KtStatus Vx_FillICCProfileFromICCFile(const KtChar16* fileName, ICCProfileRecord* record);

KTCLR_EXTERN_C_END

#include "icc_tag_records.h" /* needs the types above */
#include "icc_curves.h"
#include "icc_luts.h"

#endif
