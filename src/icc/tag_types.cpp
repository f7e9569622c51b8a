#include "icc/tag_types.h"

#include <cstddef>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;

// An owned array of plain values.
constexpr OwnedField Array(std::size_t at) { return OwnedField{static_cast<std::uint16_t>(at)}; }

// An owned array of `Element`s, `countAt` counting them, each owning the
// pointers at `inner`.
template <class Element, class Count, class... Inner>
constexpr OwnedField ArrayOf(std::size_t at, std::size_t countAt, Inner... inner) {
    static_assert(sizeof(Count) == 2 || sizeof(Count) == 4);
    return OwnedField{static_cast<std::uint16_t>(at),          static_cast<std::uint16_t>(countAt),
                      static_cast<std::uint8_t>(sizeof(Count)), static_cast<std::uint16_t>(sizeof(Element)),
                      static_cast<std::uint8_t>(sizeof...(Inner)), {static_cast<std::uint16_t>(inner)...}};
}

#define KT_ICC_TAG_CODEC_ROW(sig, record, name, ...)                                                          \
    {                                                                                                          \
        Sig(sig), sizeof(record), name::Create, name::ElementSize, name::WriteElement, name::Parse,            \
            Owns(__VA_ARGS__)                                                                                  \
    }

using Description = ICCProfileDescription;

constexpr TagTypeCodec kCodecs[] = {
    KT_ICC_TAG_CODEC_ROW("XYZ ", ICCXYZType, xyz, Array(offsetof(ICCXYZType, values))),
    KT_ICC_TAG_CODEC_ROW("curv", ICCCurveType, curv, Array(offsetof(ICCCurveType, entries))),
    KT_ICC_TAG_CODEC_ROW("para", ICCParametricCurveType, para, Array(offsetof(ICCParametricCurveType, parameters))),
    KT_ICC_TAG_CODEC_ROW("mft1", ICCLut8, lut8, Array(offsetof(ICCLut8, inputTables)), Array(offsetof(ICCLut8, clut)),
                         Array(offsetof(ICCLut8, outputTables))),
    KT_ICC_TAG_CODEC_ROW("mft2", ICCLut16, lut16, Array(offsetof(ICCLut16, inputTables)),
                         Array(offsetof(ICCLut16, clut)), Array(offsetof(ICCLut16, outputTables))),
    KT_ICC_TAG_CODEC_ROW("mAB ", ICCLutAtoB, lut_atob, Array(offsetof(ICCLutAtoB, pool)),
                         Array(offsetof(ICCLutAtoB, curvesB)), Array(offsetof(ICCLutAtoB, curvesM)),
                         Array(offsetof(ICCLutAtoB, curvesA)), Array(offsetof(ICCLutAtoB, clut))),
    KT_ICC_TAG_CODEC_ROW("mBA ", ICCLutBtoA, lut_btoa, Array(offsetof(ICCLutBtoA, pool)),
                         Array(offsetof(ICCLutBtoA, curvesB)), Array(offsetof(ICCLutBtoA, curvesM)),
                         Array(offsetof(ICCLutBtoA, curvesA)), Array(offsetof(ICCLutBtoA, clut))),
    KT_ICC_TAG_CODEC_ROW("sf32", ICCS15Fixed16ArrayType, sf32, Array(offsetof(ICCS15Fixed16ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("uf32", ICCU16Fixed16ArrayType, uf32, Array(offsetof(ICCU16Fixed16ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("ui08", ICCUInt8ArrayType, ui08, Array(offsetof(ICCUInt8ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("ui16", ICCUInt16ArrayType, ui16, Array(offsetof(ICCUInt16ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("ui32", ICCUInt32ArrayType, ui32, Array(offsetof(ICCUInt32ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("ui64", ICCUInt64ArrayType, ui64, Array(offsetof(ICCUInt64ArrayType, values))),
    KT_ICC_TAG_CODEC_ROW("sig ", ICCSignatureType, sig),
    KT_ICC_TAG_CODEC_ROW("text", ICCTextType, text, Array(offsetof(ICCTextType, text))),
    KT_ICC_TAG_CODEC_ROW("data", ICCDataType, data, Array(offsetof(ICCDataType, data))),
    KT_ICC_TAG_CODEC_ROW("dtim", ICCDateTimeType, dtim),
    KT_ICC_TAG_CODEC_ROW("clrt", ICCColorantTableType, clrt, Array(offsetof(ICCColorantTableType, entries))),
    KT_ICC_TAG_CODEC_ROW("clro", ICCColorantOrderType, clro, Array(offsetof(ICCColorantOrderType, indices))),
    KT_ICC_TAG_CODEC_ROW("chrm", ICCChromaticityType, chrm, Array(offsetof(ICCChromaticityType, coordinates))),
    KT_ICC_TAG_CODEC_ROW("meas", ICCMeasurementType, meas),
    KT_ICC_TAG_CODEC_ROW("view", ICCViewingConditionsType, view),
    KT_ICC_TAG_CODEC_ROW("mluc", ICCMultiLocalizedUnicodeType, mluc,
                         Array(offsetof(ICCMultiLocalizedUnicodeType, records)),
                         Array(offsetof(ICCMultiLocalizedUnicodeType, strings))),
    KT_ICC_TAG_CODEC_ROW("ncl2", ICCNamedColor2Type, ncl2,
                         ArrayOf<ICCNamedColor2Entry, std::uint32_t>(offsetof(ICCNamedColor2Type, entries),
                                                                     offsetof(ICCNamedColor2Type, count),
                                                                     offsetof(ICCNamedColor2Entry, device))),
    KT_ICC_TAG_CODEC_ROW("pseq", ICCProfileSequenceDescType, pseq,
                         ArrayOf<Description, std::uint32_t>(
                             offsetof(ICCProfileSequenceDescType, descriptions),
                             offsetof(ICCProfileSequenceDescType, count), offsetof(Description, manufacturer.records),
                             offsetof(Description, manufacturer.strings), offsetof(Description, model.records),
                             offsetof(Description, model.strings))),
    KT_ICC_TAG_CODEC_ROW("rcs2", ICCResponseCurveSet16Type, rcs2,
                         ArrayOf<ICCResponseCurve, std::uint16_t>(
                             offsetof(ICCResponseCurveSet16Type, curves), offsetof(ICCResponseCurveSet16Type, count),
                             offsetof(ICCResponseCurve, measurementCounts), offsetof(ICCResponseCurve, maximumColorant),
                             offsetof(ICCResponseCurve, responses))),
};

// The signature of the raw row is never looked up.
constexpr TagTypeCodec kRaw = KT_ICC_TAG_CODEC_ROW("    ", ICCRawTagType, raw, Array(offsetof(ICCRawTagType, bytes)));

#undef KT_ICC_TAG_CODEC_ROW

constexpr bool RecordsFit() {
    for (const TagTypeCodec& c : kCodecs)
        if (c.recordBytes > kMaxTagRecordBytes) return false;
    return kRaw.recordBytes <= kMaxTagRecordBytes;
}
static_assert(RecordsFit(), "raise kMaxTagRecordBytes");

void FreePointerAt(std::uint8_t* base, std::size_t at) noexcept {
    void* p = nullptr;
    std::memcpy(&p, base + at, sizeof p);
    if (p) KT_FREE(p);
    p = nullptr;
    std::memcpy(base + at, &p, sizeof p);
}

std::uint32_t CountAt(const std::uint8_t* base, const OwnedField& f, bool fileOrder) noexcept {
    if (f.countBytes == 2) {
        std::uint16_t v;
        std::memcpy(&v, base + f.countAt, sizeof v);
        return fileOrder ? __builtin_bswap16(v) : v;
    }
    std::uint32_t v;
    std::memcpy(&v, base + f.countAt, sizeof v);
    return fileOrder ? FileOrder32(v) : v;
}

}  // namespace

const TagTypeCodec* FindTagTypeCodec(std::uint32_t typeSignature) noexcept {
    for (const TagTypeCodec& c : kCodecs)
        if (c.typeSignature == typeSignature) return &c;
    return nullptr;
}

const TagTypeCodec& RawTagTypeCodec() noexcept { return kRaw; }

void ReleaseRecord(const TagTypeCodec& codec, void* record) noexcept {
    auto* base = static_cast<std::uint8_t*>(record);
    std::uint32_t signatureField;
    std::memcpy(&signatureField, base, sizeof signatureField);
    const bool fileOrder = signatureField == FileOrder32(codec.typeSignature);
    for (std::uint32_t i = 0; i < codec.owned.count; ++i) {
        const OwnedField& f = codec.owned.fields[i];
        std::uint8_t* array = nullptr;
        std::memcpy(&array, base + f.at, sizeof array);
        if (array && f.innerCount) {
            const std::uint32_t count = CountAt(base, f, fileOrder);
            for (std::uint32_t e = 0; e < count; ++e)
                for (std::uint32_t k = 0; k < f.innerCount; ++k) FreePointerAt(array + std::size_t{f.stride} * e, f.inner[k]);
        }
        FreePointerAt(base, f.at);
    }
}

}  // namespace kt::icc
