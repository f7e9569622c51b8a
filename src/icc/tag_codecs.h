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
    void Release(void* record) noexcept;                                                       \
    }

KT_ICC_DECLARE_TAG_CODEC(raw)  // ICCRawTagType
KT_ICC_DECLARE_TAG_CODEC(xyz)  // 'XYZ ', ICCXYZType

}  // namespace kt::icc
