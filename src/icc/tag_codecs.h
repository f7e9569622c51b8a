// The functions of each tag-type codec, as the table in tag_types.cpp
// names them. Contracts: see TagTypeCodec in tag_types.h.
#pragma once

#include <cstdint>

#include "ktclr/icc.h"

namespace kt::icc {

#define KT_ICC_DECLARE_TAG_CODEC(name)                                                         \
    namespace name {                                                                           \
    KtStatus Create(const void* host, std::uint32_t typeSignature, void* fileOrder) noexcept;  \
    std::uint64_t ElementSize(const void* fileOrder) noexcept;                                 \
    void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept;                  \
    KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept;      \
    }

// Defines codec `name` over four functions that take a form as their last
// argument: the two variants of one layout share a codec that way.
#define KT_ICC_DEFINE_FORM_CODEC(name, form, create, elementSize, write, parse)                      \
    namespace name {                                                                                \
    KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {                   \
        return create(host, fileOrder, form);                                                       \
    }                                                                                               \
    std::uint64_t ElementSize(const void* fileOrder) noexcept { return elementSize(fileOrder, form); } \
    void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept { write(fileOrder, element, form); } \
    KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {          \
        return parse(element, size, host, form);                                                    \
    }                                                                                               \
    }

KT_ICC_DECLARE_TAG_CODEC(raw)  // ICCRawTagType
KT_ICC_DECLARE_TAG_CODEC(xyz)  // 'XYZ ', ICCXYZType
KT_ICC_DECLARE_TAG_CODEC(curv)      // 'curv', ICCCurveType
KT_ICC_DECLARE_TAG_CODEC(para)      // 'para', ICCParametricCurveType
KT_ICC_DECLARE_TAG_CODEC(lut8)      // 'mft1', ICCLut8
KT_ICC_DECLARE_TAG_CODEC(lut16)     // 'mft2', ICCLut16
KT_ICC_DECLARE_TAG_CODEC(lut_atob)  // 'mAB ', ICCLutAtoB
KT_ICC_DECLARE_TAG_CODEC(lut_btoa)  // 'mBA ', ICCLutBtoA
KT_ICC_DECLARE_TAG_CODEC(sf32)  // 'sf32', ICCS15Fixed16ArrayType
KT_ICC_DECLARE_TAG_CODEC(uf32)  // 'uf32', ICCU16Fixed16ArrayType
KT_ICC_DECLARE_TAG_CODEC(ui08)  // 'ui08', ICCUInt8ArrayType
KT_ICC_DECLARE_TAG_CODEC(ui16)  // 'ui16', ICCUInt16ArrayType
KT_ICC_DECLARE_TAG_CODEC(ui32)  // 'ui32', ICCUInt32ArrayType
KT_ICC_DECLARE_TAG_CODEC(ui64)  // 'ui64', ICCUInt64ArrayType
KT_ICC_DECLARE_TAG_CODEC(sig)   // 'sig ', ICCSignatureType
KT_ICC_DECLARE_TAG_CODEC(text)  // 'text', ICCTextType
KT_ICC_DECLARE_TAG_CODEC(data)  // 'data', ICCDataType
KT_ICC_DECLARE_TAG_CODEC(dtim)  // 'dtim', ICCDateTimeType
KT_ICC_DECLARE_TAG_CODEC(clrt)  // 'clrt', ICCColorantTableType
KT_ICC_DECLARE_TAG_CODEC(clro)  // 'clro', ICCColorantOrderType
KT_ICC_DECLARE_TAG_CODEC(chrm)  // 'chrm', ICCChromaticityType
KT_ICC_DECLARE_TAG_CODEC(meas)  // 'meas', ICCMeasurementType
KT_ICC_DECLARE_TAG_CODEC(view)  // 'view', ICCViewingConditionsType
KT_ICC_DECLARE_TAG_CODEC(mluc)  // 'mluc', ICCMultiLocalizedUnicodeType
KT_ICC_DECLARE_TAG_CODEC(ncl2)  // 'ncl2', ICCNamedColor2Type
KT_ICC_DECLARE_TAG_CODEC(pseq)  // 'pseq', ICCProfileSequenceDescType
KT_ICC_DECLARE_TAG_CODEC(rcs2)  // 'rcs2', ICCResponseCurveSet16Type

}  // namespace kt::icc
