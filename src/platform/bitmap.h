// Bitmaps (include/ktclr/bitmap.h): what the conversions use beyond the
// exported operations.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/bitmap.h"

namespace kt::bitmap {

// Vx_BmpFillFromDib with the length of `bits` known to the caller: rows that
// would need more than `length` bytes are refused with ERR_BAD_SIZE.
KtStatus FillFromDib(BitmapHandle* bitmap, std::uint32_t structSize, const Vx_BmpInfoHeader* header,
                     const std::uint8_t* bits, std::size_t length) noexcept;

// True for a readable record of the right size that owns pixel data.
bool HoldsData(const BitmapHandle* bitmap) noexcept;

}  // namespace kt::bitmap
