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

/* ---- Record lifecycle ---- */

/* Prepares a record for first use: zeroes the first `size` bytes of its
 * 32-byte layout (only those; a smaller size leaves the rest as it was),
 * then stores KTCLR_SIZEOF_ICC_PROFILE_RECORD in structSize. Allocates
 * nothing. ERR_INVALID_PARAMETER (record untouched) for a null record or a
 * size above 32; else STATUS_OK. */
KTCLR_API KtStatus Vx_InitICCProfile(ICCProfileRecord* record, uint32_t size);
/* Releases every buffer the record owns and nulls its pointer: when
 * tagCount is not 0, tagList and tagData; then header and profileData.
 * The sizes and tagCount keep their values. Calling it twice is harmless.
 * Always returns 0, not STATUS_OK: the result carries no meaning. */
KTCLR_API KtStatus Vx_FreeICCProfile(ICCProfileRecord* record);
/* Releases tagList and tagData and nulls them, only when tagCount is not
 * 0 (deleting the last tag leaves tagCount 0; the gate keeps those buffers
 * from being released twice). A null record is ignored. */
KTCLR_API void Vx_ClrIntFreeTagList(ICCProfileRecord* record);
/* Releases profileData and nulls it; profileSize keeps its value. A null
 * record is ignored. Call it before refilling a used record with
 * Vx_FillICCProfileStructure. */
KTCLR_API void Vx_ClrIntFreeICCData(ICCProfileRecord* record);

/* ---- Fixed-point numbers ----
 * The conversions from double build the fraction one hexadecimal digit at
 * a time, stop when it is used up and round only the last digit, so a
 * short fraction is returned unshifted (0.5 gives 0x8, 1.5 gives 0x18) and
 * a negative number loses its fraction (-1.75 gives 0xFFFF0000). The
 * readers are therefore not their inverses. Nothing is rejected: values out
 * of range wrap. */

/* A double as s15Fixed16: up to four hexadecimal fraction digits (0.9642
 * gives 0xF6D6, 1.0 gives 0x10000). */
KTCLR_API uint32_t Vx_DoubleTo2bFixed2bNumber(double value);
/* An s15Fixed16 number as a double: the upper 16 bits as an unsigned whole
 * part (0xFFFF0000 gives 65535.0) plus the lower 16 bits / 65536. */
KTCLR_API double Vx_2bFixed2bNumberToDouble(int32_t value);
/* A double as u8Fixed8 in the low 16 bits: up to two hexadecimal fraction
 * digits (2.2 gives 0x233, 0.5 gives 0x08). */
KTCLR_API int32_t Vx_DoubleToU8Fixed8Number(double value);
/* A u8Fixed8 number as a double: bits 8 to 15 plus the low byte / 256;
 * bits above 15 are ignored. */
KTCLR_API double Vx_U8Fixed8NumberToDouble(uint32_t value);

/* ---- Header ----
 * Every setter checks that record and its header exist and that the value
 * is accepted (else ERR_INVALID_PARAMETER, nothing changed), stores it and
 * returns the result of rebuilding profileData from the parts: STATUS_OK,
 * or ERR_NO_MEMORY with the field changed and the previous image kept. */

/* Gives the record a default header, allocating it when there is none (an
 * existing one is reused): all zero but version 4.2, 'acsp', the D50
 * illuminant (0xF6D6, 0x10000, 0xD32D) and size 132. Does not rebuild
 * profileData and leaves the tags alone, so the size no longer counts
 * them. ERR_INVALID_PARAMETER for a null record, ERR_NO_MEMORY when the
 * header cannot be allocated, else STATUS_OK. */
KTCLR_API KtStatus Vx_InitICCHeader(ICCProfileRecord* record);
/* Clears profileId to 16 zero bytes and rebuilds: no identifier is
 * computed. */
KTCLR_API KtStatus Vx_SetICCProfileId(ICCProfileRecord* record);
/* Sets cmmType; any value. */
KTCLR_API KtStatus Vx_SetICCCMMType(ICCProfileRecord* record, uint32_t cmmType);
/* Sets deviceClass: 'scnr', 'mntr', 'prtr', 'link', 'spac', 'abst' or
 * 'nmcl'. */
KTCLR_API KtStatus Vx_SetICCDeviceClass(ICCProfileRecord* record, int32_t deviceClass);
/* Sets colorSpace: 'XYZ ', 'Lab ', 'Luv ', 'YCbr', 'Yxy ', 'RGB ', 'GRAY',
 * 'HSV ', 'HLS ', 'CMYK', 'CMY ' or '2CLR' to 'FCLR'. */
KTCLR_API KtStatus Vx_SetICCColorSpace(ICCProfileRecord* record, int32_t colorSpace);
/* Sets connectionSpace. The device class must be set first. A 'link'
 * profile takes any color space Vx_SetICCColorSpace takes and returns
 * STATUS_OK without rebuilding (profileData shows the previous value until
 * the next rebuilding call); any other class takes 'XYZ ' or 'Lab '. */
KTCLR_API KtStatus Vx_SetICCConnectionSpace(ICCProfileRecord* record, int32_t connectionSpace);
/* Sets platform: 0, 'APPL', 'MSFT', 'SGI ' or 'SUNW'. */
KTCLR_API KtStatus Vx_SetICCPrimaryPlatform(ICCProfileRecord* record, int32_t platform);
/* Sets flags to the two lowest bits of `flags`. */
KTCLR_API KtStatus Vx_SetICCFlags(ICCProfileRecord* record, int32_t flags);
/* Sets manufacturer; any value. */
KTCLR_API KtStatus Vx_SetICCDevManufacturer(ICCProfileRecord* record, uint32_t manufacturer);
/* Sets model; any value. */
KTCLR_API KtStatus Vx_SetICCDevModel(ICCProfileRecord* record, uint32_t model);
/* Sets attributes to the four lowest bits of `low`; the high half becomes
 * 0 whatever `high` says (it is accepted and ignored). */
KTCLR_API KtStatus Vx_SetICCDeviceAttributes(ICCProfileRecord* record, int32_t low, uint32_t high);
/* Sets renderingIntent: 0 to 3. */
KTCLR_API KtStatus Vx_SetICCRenderingIntent(ICCProfileRecord* record, uint32_t intent);
/* Sets creator; any value. */
KTCLR_API KtStatus Vx_SetICCCreator(ICCProfileRecord* record, uint32_t creator);
/* Sets dateTime from six values: year, month, day, hours, minutes,
 * seconds, without range checks. A null pointer is ERR_INVALID_PARAMETER. */
KTCLR_API KtStatus Vx_SetICCDateTime(ICCProfileRecord* record, const uint16_t* dateTime);

/* ---- Big-endian numbers of 1 to 8 bytes ---- */

/* Reads `count` bytes as one big-endian number, accumulated in 32 bits:
 * for 5 to 8 bytes only the last four survive (01..06 with count 6 gives
 * 0x03040506). 0 for null bytes or a count outside 1..8. */
KTCLR_API uint64_t Vx_ClrIntIccGetBytes(const unsigned char* bytes, int count);
/* Writes the lowest `count` bytes of value big-endian, all 64 bits
 * honoured. ERR_INVALID_PARAMETER for null bytes or a count outside 1..8,
 * else STATUS_OK. */
KTCLR_API KtStatus Vx_ClrIntIccSetBytes(unsigned char* bytes, uint64_t value, int count);

/* ---- Tags ----
 * `typed` points at the record of the tag's type (icc_tag_records.h,
 * icc_curves.h, icc_luts.h; ICCRawTagType for a type without a codec).
 * Done work may report a warning instead of STATUS_OK: WARN_UNKNOWN_TAG for
 * a tag signature outside the ICC set, WARN_UNKNOWN_TAG_TYPE for a type
 * handled as raw bytes, WARN_UNKNOWN_TAG_AND_TYPE for both. */

/* Adds a tag: encodes `typed` (host order) as a typeSignature element,
 * appends it to tagData, padded to 4, with a new directory row. A tag that
 * is already present gets a second row (lookups find the first). Rebuilds
 * profileData and returns its result, except on a warning, which returns
 * before the rebuild: profileData then shows the profile before the call
 * until the next rebuilding call. ERR_INVALID_PARAMETER for a null or
 * unencodable record, or a profile without a header; ERR_NO_MEMORY. The
 * caller's record is not kept (a 2-byte CLUT of 'mAB '/'mBA ' is turned
 * big-endian in place). */
KTCLR_API KtStatus Vx_SetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature,
                                    uint32_t typeSignature);
/* Decodes the first tag with `tagSignature` into `typed` (host order), by
 * the type the element names, allocating its arrays. ERR_INVALID_TAG for a
 * missing tag or a damaged element, ERR_NO_MEMORY. Whatever the result,
 * the arrays already allocated stay in `typed`: release it with
 * Vx_FreeICCTagType. No array `typed` held before is freed. */
KTCLR_API KtStatus Vx_GetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature);
/* Encodes `typed` (host order) into `out`, a record of the same type in
 * file order (the big-endian bytes of the element) with arrays of its own;
 * no profile is touched. A type without a codec fills an ICCRawTagType and
 * returns WARN_UNKNOWN_TAG_TYPE. On any result release `out` with
 * Vx_FreeICCTagType. */
KTCLR_API KtStatus Vx_CreateICCTagData(void* out, void* typed, uint32_t typeSignature);
/* Removes the first tag with `tagSignature` and its element (not its pad,
 * so later elements may lose their 4-byte alignment), clears profileId and
 * rebuilds. With `typedOut`, the tag is first decoded into it as by
 * Vx_GetICCTagData, and any result but STATUS_OK (warnings included)
 * returns at once with nothing deleted. Deleting the last tag leaves a
 * bare 132-byte profile. ERR_INVALID_PARAMETER for a null record or one
 * without tags, ERR_INVALID_TAG for a missing tag, ERR_NO_MEMORY. */
KTCLR_API KtStatus Vx_DeleteICCTag(ICCProfileRecord* record, uint32_t tagSignature, void* typedOut);
/* The type signature of the first tag with `tagSignature`, or 0 when it
 * is absent. */
KTCLR_API uint32_t Vx_GetICCTagTypeSig(ICCProfileRecord* record, uint32_t tagSignature);
/* Releases the arrays a record of `typeSignature`'s type owns, in host or
 * file order, and nulls the pointers; the record itself is the caller's.
 * Any other type is taken as ICCRawTagType. A null record or pointer is
 * ignored, so releasing twice is harmless. */
KTCLR_API void Vx_FreeICCTagType(void* typed, uint32_t typeSignature);

/* ---- Profile files and bytes ---- */

/* Rebuilds profileData from the parts after checking that the header's
 * size equals 132 + 12 * tagCount + tagDataSize. profileSize receives that
 * sum before the check. ERR_INVALID_PARAMETER for a null record,
 * ERR_NULL_ARGUMENT without a header, ERR_ICC_SIZE_MISMATCH (profileData
 * untouched), ERR_NO_MEMORY (profileData may then be null). */
KTCLR_API KtStatus Vx_GenerateICCPointer(ICCProfileRecord* record);
/* Writes profileSize bytes of profileData to a new or truncated file, as
 * they stand: nothing is rebuilt or checked. ERR_INVALID_PARAMETER,
 * ERR_FILE_CREATE, ERR_FILE_WRITE, else STATUS_OK. */
KTCLR_API KtStatus Vx_GenerateICCFile(ICCProfileRecord* record, const KtChar16* fileName);
/* Parses profile bytes into the record: header, directory rows (taken as
 * they stand) and tag data. `bytes` other than the record's own profileData
 * are copied into a new profileData; the previous image, tagList and
 * tagData are NOT released (call Vx_ClrIntFreeICCData and
 * Vx_ClrIntFreeTagList first when refilling a record), and an existing
 * header is overwritten in place. Only the size field is checked: greater
 * than `length`, or a directory that does not fit, gives
 * ERR_ICC_INVALID_PROFILE and releases what this call allocated. A tag
 * count below 1 returns STATUS_OK with tagList and tagData as they were.
 * ERR_INVALID_PARAMETER for null pointers or a zero length; ERR_NO_MEMORY. */
KTCLR_API KtStatus Vx_FillICCProfileStructure(ICCProfileRecord* record, const unsigned char* bytes,
                                              uint32_t length);
/* Checks a profile file and parses it with Vx_FillICCProfileStructure
 * (note the argument order). ERR_ICC_SIZE_MISMATCH unless it has 'acsp' at
 * 36, a size field from 1 to the file size, a major version 1 to 4 and not
 * both a minor version above 8 and non-zero bytes 10 and 11;
 * ERR_FILE_CREATE when it cannot be opened, ERR_FILE_READ for a short
 * read; otherwise the parse's result. */
KTCLR_API KtStatus Vx_FillICCProfileFromICCFile(const KtChar16* fileName, ICCProfileRecord* record);

KTCLR_EXTERN_C_END

#include "icc_tag_records.h" /* needs the types above */
#include "icc_curves.h"
#include "icc_luts.h"

#endif
