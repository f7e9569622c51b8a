// The header's 128-byte encoding and the rebuilding of a record's file
// image from its parts.
#pragma once

#include <cstdint>

#include "ktclr/icc.h"

namespace kt::icc {

inline constexpr std::uint32_t kHeaderBytes = KTCLR_ICC_HEADER_BYTES;
inline constexpr std::uint32_t kTagCountOffset = kHeaderBytes;
inline constexpr std::uint32_t kDirectoryStart = KTCLR_ICC_DIRECTORY_START;
inline constexpr std::uint32_t kRowBytes = 12;

// Writes the header of `record` as 128 big-endian bytes (reserved bytes
// zero). ERR_INVALID_PARAMETER when a pointer, or the header, is null.
KtStatus EncodeICCHeader(const ICCProfileRecord* record, std::uint8_t* out128) noexcept;

// Decodes the 128 bytes at `in` into `header`. The high half of the device
// attributes is not read: it is always 0, as the attributes setter keeps it.
void DecodeICCHeader(const std::uint8_t* in, ICCHeader* header) noexcept;

// Bytes the parts of `record` fill: header, count, rows and tag data.
std::uint64_t ImageBytesNeeded(const ICCProfileRecord* record) noexcept;

// Writes count, rows and tag data of `record` behind an encoded header.
// `image` holds at least ImageBytesNeeded bytes.
void WriteDirectoryAndTags(const ICCProfileRecord* record, std::uint8_t* image) noexcept;

// Replaces profileData with a fresh image sized by the header's size field.
// ERR_INVALID_PARAMETER without a record or header, ERR_NO_MEMORY when the
// image cannot be allocated (the old image stays), ERR_ICC_SIZE_MISMATCH
// when the size field is too small for the parts or rows are missing
// (nothing changes).
KtStatus RebuildProfileImage(ICCProfileRecord* record) noexcept;

}  // namespace kt::icc
