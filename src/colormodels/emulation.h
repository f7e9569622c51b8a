// Emulation grids: choosing the built-in grid for a pair, or loading a custom
// grid from a TIFF file into the handle.
#pragma once

#include <cstdint>

#include "ktclr/convert.h"

namespace kt::color {

// custom false: sets h->builtinEmulationTable for the pair (or nothing).
// custom true: copies p->emulationTablePath into the handle and loads the
// grid into h->customEmulationTable.
KtStatus SelectEmulationTable(ClrHandle* h, int src, int dst, const ConversionParams* p, bool custom) noexcept;

void FreeCustomEmulationTable(ClrHandle* h) noexcept;

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
