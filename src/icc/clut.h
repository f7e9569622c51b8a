// CLUT elements of 'mAB ' and 'mBA ': their size and their flat host-order
// form, bounded by the bytes that exist.
#pragma once

#include <cstdint>

#include "ktclr/icc_luts.h"

namespace kt::icc {

inline constexpr std::uint32_t kClutHeadBytes = KTCLR_ICC_CLUT_HEAD_BYTES;
inline constexpr std::uint32_t kClutMaxInputs = 16;
inline constexpr std::uint32_t kClutPrecisionAt = 16;
inline constexpr std::uint32_t kClutReservedAt = 17;

// Stands for any size that cannot be a CLUT in a profile.
inline constexpr std::uint64_t kClutTooLarge = std::uint64_t{1} << 62;

// Bytes of the CLUT element whose first 17 bytes are at `head`, without
// and with the padding to 4; kClutTooLarge when it would not fit 32 bits.
// `inputs` above 16 counts 16.
std::uint64_t ClutUnpaddedBytes(const std::uint8_t* head, std::uint32_t inputs, std::uint32_t outputs) noexcept;
std::uint64_t ClutBytes(const std::uint8_t* head, std::uint32_t inputs, std::uint32_t outputs) noexcept;

// Writes the flat form of the CLUT element at `source` (`size` bytes from
// ClutBytes) to `flat`: grid points, precision, the reserved bytes
// reversed, then the entries, made native when `toNative` and the precision
// is not 1. Only `available` bytes of `source` are read; entry bytes past
// them (the element's padding) are written as zeros.
void WriteFlatClut(const std::uint8_t* source, std::uint64_t available, std::uint64_t size, bool toNative,
                   std::uint8_t* flat) noexcept;

}  // namespace kt::icc
