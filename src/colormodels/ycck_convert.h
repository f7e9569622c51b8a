// The YCCK conversions, reading a YcckTable. The kernels against RGB
// (kernels.h) read the constant one; the pixel conversions around a Little
// CMS transform read the handle's copy.
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

// n pixels of 4 bytes; src may equal dst.
void YcckToCmykPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept;
void CmykToYcckPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept;

}  // namespace kt::color
