/* ktclr: typed records of the ICC tag types other than curves and LUTs.
 *
 * Every record begins with the type signature and a reserved word and keeps
 * its arrays behind owned pointers. A record is in host order (native
 * numbers: what Vx_GetICCTagData fills and what callers fill for
 * Vx_SetICCTagData and Vx_CreateICCTagData) or in file order (the
 * big-endian bytes of the ICC encoding: what Vx_CreateICCTagData fills).
 * Arrays a call allocated are released with Vx_FreeICCTagType. */
#ifndef KTCLR_ICC_TAG_RECORDS_H
#define KTCLR_ICC_TAG_RECORDS_H

#include "icc.h"

KTCLR_EXTERN_C_BEGIN

/* Number arrays: 'sf32' (s15Fixed16), 'uf32' (u16Fixed16), 'ui08', 'ui16',
 * 'ui32', 'ui64'. count is the number of elements, native in both orders. */
typedef struct ICCS15Fixed16ArrayType {
    uint32_t signature;
    uint32_t reserved;
    int32_t* values;
    uint32_t count;
} ICCS15Fixed16ArrayType;

typedef struct ICCU16Fixed16ArrayType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t* values;
    uint32_t count;
} ICCU16Fixed16ArrayType;

typedef struct ICCUInt8ArrayType {
    uint32_t signature;
    uint32_t reserved;
    uint8_t* values;
    uint32_t count;
} ICCUInt8ArrayType;

typedef struct ICCUInt16ArrayType {
    uint32_t signature;
    uint32_t reserved;
    uint16_t* values;
    uint32_t count;
} ICCUInt16ArrayType;

typedef struct ICCUInt32ArrayType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t* values;
    uint32_t count;
} ICCUInt32ArrayType;

typedef struct ICCUInt64ArrayType {
    uint32_t signature;
    uint32_t reserved;
    uint64_t* values;
    uint32_t count;
} ICCUInt64ArrayType;

/* 'sig ': one signature. Creating left-justifies a value shorter than four
 * bytes and fills with spaces (0x41 becomes 'A   '). */
typedef struct ICCSignatureType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t value;
} ICCSignatureType;

/* 'text'. Creating reads a zero-terminated UTF-16 string of n units and
 * stores its first n + 1 bytes as they stand in memory ("AB" is stored as
 * 41 00 42). Parsing widens the stored bytes up to the first zero byte into
 * UTF-16 units. count: bytes at text in a file-order record, units without
 * the terminator in a parsed record; ignored when creating. */
typedef struct ICCTextType {
    uint32_t signature;
    uint32_t reserved;
    void* text; /* KtChar16 in host order, bytes in file order */
    uint32_t count;
} ICCTextType;

/* 'data'. flag 0: ASCII, data holds size characters and a terminator;
 * flag 1: binary, size bytes. A file-order record counts the terminator in
 * size. */
typedef struct ICCDataType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t flag;
    uint8_t* data;
    uint32_t size;
} ICCDataType;

/* 'dtim'. */
typedef struct ICCDateTimeType {
    uint32_t signature;
    uint32_t reserved;
    uint16_t year;
    uint16_t month;
    uint16_t day;
    uint16_t hours;
    uint16_t minutes;
    uint16_t seconds;
} ICCDateTimeType;

/* 'clrt': 38 bytes an entry, as encoded. */
typedef struct ICCColorantEntry {
    uint8_t name[32]; /* zero-padded */
    uint16_t pcs[3];
} ICCColorantEntry;

typedef struct ICCColorantTableType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t count;
    ICCColorantEntry* entries;
} ICCColorantTableType;

/* 'clro'. */
typedef struct ICCColorantOrderType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t count;
    uint8_t* indices;
} ICCColorantOrderType;

/* 'chrm': u16Fixed16 x, y per channel. */
typedef struct ICCChromaticityCoordinate {
    uint32_t x;
    uint32_t y;
} ICCChromaticityCoordinate;

typedef struct ICCChromaticityType {
    uint32_t signature;
    uint32_t reserved;
    uint16_t channels;
    uint16_t colorantType;
    ICCChromaticityCoordinate* coordinates;
} ICCChromaticityType;

/* 'meas'. Creating accepts observer 0..2, geometry 0..2, flare 0 or 0x10000
 * and illuminant 0..8. */
typedef struct ICCMeasurementType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t observer;
    ICCXYZNumber backing;
    uint32_t geometry;
    uint32_t flare; /* u16Fixed16 */
    uint32_t illuminant;
} ICCMeasurementType;

/* 'view'. Creating accepts illuminant types 0..8. */
typedef struct ICCViewingConditionsType {
    uint32_t signature;
    uint32_t reserved;
    ICCXYZNumber illuminant;
    ICCXYZNumber surround;
    uint32_t illuminantType;
} ICCViewingConditionsType;

/* 'mluc'. A name record's string is length bytes at offset from the start
 * of the tag; strings holds the strings of all records one after another
 * (the sum of the lengths, in UTF-16 units), and a parsed record's offsets
 * describe that layout: the first string right after the name records. */
typedef struct ICCMlucNameRecord {
    uint16_t language;
    uint16_t country;
    uint32_t length; /* bytes */
    uint32_t offset;
} ICCMlucNameRecord;

#define KTCLR_ICC_MLUC_RECORD_BYTES 12u

typedef struct ICCMultiLocalizedUnicodeType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t count;
    uint32_t recordSize; /* KTCLR_ICC_MLUC_RECORD_BYTES */
    ICCMlucNameRecord* records;
    KtChar16* strings;
} ICCMultiLocalizedUnicodeType;

/* 'ncl2'. Creating keeps the upper 16 bits of vendorFlags and copies the
 * PCS values as they stand (only the device values are turned big-endian);
 * parsing reads both big-endian, so a created colour reads back with its
 * PCS bytes swapped. */
typedef struct ICCNamedColor2Entry {
    uint8_t rootName[32];
    uint16_t pcs[3];
    uint16_t* device; /* deviceCoordinates values */
} ICCNamedColor2Entry;

typedef struct ICCNamedColor2Type {
    uint32_t signature;
    uint32_t reserved;
    uint32_t vendorFlags;
    uint32_t count;
    uint32_t deviceCoordinates;
    uint8_t prefix[32];
    uint8_t suffix[32];
    ICCNamedColor2Entry* entries;
} ICCNamedColor2Type;

/* 'pseq'. Creating copies deviceAttributes as it stands; parsing reads it
 * big-endian. The two descriptions are embedded 'mluc' tags. */
typedef struct ICCProfileDescription {
    uint32_t deviceManufacturer;
    uint32_t deviceModel;
    uint64_t deviceAttributes;
    uint32_t technology;
    ICCMultiLocalizedUnicodeType manufacturer;
    ICCMultiLocalizedUnicodeType model;
} ICCProfileDescription;

typedef struct ICCProfileSequenceDescType {
    uint32_t signature;
    uint32_t reserved;
    uint32_t count;
    ICCProfileDescription* descriptions;
} ICCProfileSequenceDescType;

/* 'rcs2': per measurement type, per channel the number of measurements,
 * the XYZ of the channel at its maximum colorant, and the measurements,
 * channel after channel. */
typedef struct ICCResponse16Number {
    uint16_t deviceValue;
    uint16_t reserved;
    int32_t measurement; /* s15Fixed16 */
} ICCResponse16Number;

typedef struct ICCResponseCurve {
    uint32_t measurementUnit;        /* 'StaA', 'StaE', 'StaI', 'StaT', 'StaM', 'DN  ', 'DN P', 'DNN ', 'DNNP' */
    uint32_t* measurementCounts;     /* channels values */
    ICCXYZNumber* maximumColorant;   /* channels values */
    ICCResponse16Number* responses;  /* sum of measurementCounts values */
} ICCResponseCurve;

typedef struct ICCResponseCurveSet16Type {
    uint32_t signature;
    uint32_t reserved;
    uint16_t channels;
    uint16_t count; /* measurement types */
    ICCResponseCurve* curves;
} ICCResponseCurveSet16Type;

KTCLR_EXTERN_C_END

#endif
