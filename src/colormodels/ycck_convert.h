// The YCCK conversions, reading a YcckTable: a handle's own, or the global
// YCbCr tables when there is no handle (a null table selects them).
//
// YCCK <-> CMYK is the usual Adobe transform: C, M, Y are the complements of
// the R, G, B that Y, Cb, Cr encode, and K passes through. Against RGB the
// complement cancels: YCCK to RGB decodes Y, Cb, Cr and drops K (as the
// CMYK-to-RGB kernel does at its default black value); RGB to YCCK encodes
// R, G, B and writes K = 0.
#pragma once

#include <cstddef>
#include <cstdint>

#include "colormodels/ycck_table.h"

namespace kt::color {

// Kernel contract: probes (ERR_INVALID_PARAMETER), paddings, RGB-order flag.
KtStatus YcckToRgb(const YcckTable* t, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                   int srcPad, int dstPad, int rgbOrder) noexcept;
KtStatus RgbToYcck(const YcckTable* t, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                   int srcPad, int dstPad, int rgbOrder) noexcept;

// n pixels of 4 bytes; src may equal dst.
void YcckToCmykPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept;
void CmykToYcckPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept;

}  // namespace kt::color
