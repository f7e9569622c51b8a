#include "icc/tag_types.h"

#include <iterator>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"

namespace kt::icc {
namespace {

#define KT_ICC_TAG_CODEC_ROW(sig, record, name) \
    { Sig(sig), sizeof(record), name::Create, name::ElementSize, name::WriteElement, name::Parse, name::Release }

constexpr TagTypeCodec kCodecs[] = {
    KT_ICC_TAG_CODEC_ROW("XYZ ", ICCXYZType, xyz),
    KT_ICC_TAG_CODEC_ROW("curv", ICCCurveType, curv),
    KT_ICC_TAG_CODEC_ROW("para", ICCParametricCurveType, para),
    KT_ICC_TAG_CODEC_ROW("mft1", ICCLut8, lut8),
    KT_ICC_TAG_CODEC_ROW("mft2", ICCLut16, lut16),
    KT_ICC_TAG_CODEC_ROW("mAB ", ICCLutAtoB, lut_atob),
    KT_ICC_TAG_CODEC_ROW("mBA ", ICCLutBtoA, lut_btoa),
    KT_ICC_TAG_CODEC_ROW("sf32", ICCS15Fixed16ArrayType, sf32),
    KT_ICC_TAG_CODEC_ROW("uf32", ICCU16Fixed16ArrayType, uf32),
    KT_ICC_TAG_CODEC_ROW("ui08", ICCUInt8ArrayType, ui08),
    KT_ICC_TAG_CODEC_ROW("ui16", ICCUInt16ArrayType, ui16),
    KT_ICC_TAG_CODEC_ROW("ui32", ICCUInt32ArrayType, ui32),
    KT_ICC_TAG_CODEC_ROW("ui64", ICCUInt64ArrayType, ui64),
    KT_ICC_TAG_CODEC_ROW("sig ", ICCSignatureType, sig),
    KT_ICC_TAG_CODEC_ROW("text", ICCTextType, text),
    KT_ICC_TAG_CODEC_ROW("data", ICCDataType, data),
    KT_ICC_TAG_CODEC_ROW("dtim", ICCDateTimeType, dtim),
    KT_ICC_TAG_CODEC_ROW("clrt", ICCColorantTableType, clrt),
    KT_ICC_TAG_CODEC_ROW("clro", ICCColorantOrderType, clro),
    KT_ICC_TAG_CODEC_ROW("chrm", ICCChromaticityType, chrm),
    KT_ICC_TAG_CODEC_ROW("meas", ICCMeasurementType, meas),
    KT_ICC_TAG_CODEC_ROW("view", ICCViewingConditionsType, view),
    KT_ICC_TAG_CODEC_ROW("mluc", ICCMultiLocalizedUnicodeType, mluc),
    KT_ICC_TAG_CODEC_ROW("ncl2", ICCNamedColor2Type, ncl2),
    KT_ICC_TAG_CODEC_ROW("pseq", ICCProfileSequenceDescType, pseq),
    KT_ICC_TAG_CODEC_ROW("rcs2", ICCResponseCurveSet16Type, rcs2),
};

// The signature of the raw row is never looked up.
constexpr TagTypeCodec kRaw = KT_ICC_TAG_CODEC_ROW("    ", ICCRawTagType, raw);

#undef KT_ICC_TAG_CODEC_ROW

constexpr bool RecordsFit() {
    for (const TagTypeCodec& c : kCodecs)
        if (c.recordBytes > kMaxTagRecordBytes) return false;
    return kRaw.recordBytes <= kMaxTagRecordBytes;
}
static_assert(RecordsFit(), "raise kMaxTagRecordBytes");

}  // namespace

const TagTypeCodec* FindTagTypeCodec(std::uint32_t typeSignature) noexcept {
    for (const TagTypeCodec& c : kCodecs)
        if (c.typeSignature == typeSignature) return &c;
    return nullptr;
}

const TagTypeCodec& RawTagTypeCodec() noexcept { return kRaw; }

}  // namespace kt::icc
