// Emulation grid lookups: a built-in or custom grid applied to a buffer.
#pragma once

#include <cstdint>

#include "ktclr/status.h"

namespace kt::color {

// Grid lookups over a buffer, with the kernel contract's padding and
// RGB-order flag. A null grid is ERR_INVALID_PARAMETER and writes nothing.
// The conversion frame ignores their statuses.
KtStatus EmulateCmykToRgb(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                          int srcPad, int dstPad, int rgbOrder) noexcept;
KtStatus EmulateRgbToLab(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                         int srcPad, int dstPad, int rgbOrder) noexcept;
KtStatus EmulateLabToRgb(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                         int srcPad, int dstPad, int rgbOrder) noexcept;

}  // namespace kt::color
