// Helpers of the tag-type codecs that read elements they do not trust and
// records that may be in either byte order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "icc/big_endian.h"

namespace kt::icc {

// Whether `bytes` bytes from `offset` lie inside an element of `size` bytes.
inline bool Inside(std::uint32_t size, std::uint64_t offset, std::uint64_t bytes) noexcept {
    return offset <= size && bytes <= size - offset;
}

// The number of `unit`-byte items that fit in `size` bytes from `offset`:
// what a count read from an element must not exceed.
inline std::uint64_t ItemsThatFit(std::uint32_t size, std::uint64_t offset, std::uint64_t unit) noexcept {
    return offset <= size ? (size - offset) / unit : 0;
}

// A record's fields are big-endian bytes when its signature field holds the
// file bytes of `typeSignature`: the count of such a record, natively.
inline std::uint32_t NativeCount(std::uint32_t signatureField, std::uint32_t typeSignature,
                                 std::uint32_t countField) noexcept {
    return signatureField == FileOrder32(typeSignature) ? FileOrder32(countField) : countField;
}

inline std::uint16_t FileOrder16(std::uint16_t v) noexcept { return __builtin_bswap16(v); }

}  // namespace kt::icc
