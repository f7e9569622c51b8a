// The built-in conversion kernels. Each converts between one space and 24-bit
// RGB in either byte order, with one signature:
//   src, dst, width, height, source row padding, destination row padding
//   (a value below 1 counts as 0), black-generation value (read by the two
//   CMYK kernels only), RGB-order flag (1: R,G,B; 0: B,G,R).
// Each probes both buffers over (row bytes + padding) x height first.
#pragma once

#include <cstdint>

#include "ktclr/status.h"
#include "ktclr/export.h"

namespace kt::color {

using Kernel = KtStatus (*)(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                            int dstPad, int black, int rgbOrder);

#define KT_KERNEL(name)                                                                                          \
    KtStatus name(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad, int dstPad, \
                  int black, int rgbOrder) noexcept

// RGB family and luminance-chrominance spaces.
KT_KERNEL(RgbToRgbCopy);  // copy, swapping R and B when rgbOrder is 0
KT_KERNEL(RgbToYuv);
KT_KERNEL(YuvToRgb);
KT_KERNEL(RgbToCmyk);
KT_KERNEL(CmykToRgb);
KT_KERNEL(RgbToHsv);
KT_KERNEL(HsvToRgb);
KT_KERNEL(RgbToHls);
KT_KERNEL(HlsToRgb);
KT_KERNEL(RgbToYiq);
KT_KERNEL(YiqToRgb);
KT_KERNEL(RgbToCmy);
KT_KERNEL(CmyToRgb);
KT_KERNEL(RgbToYuyv);
KT_KERNEL(YuyvToRgb);
KT_KERNEL(RgbToYuv410);
KT_KERNEL(Yuv410ToRgb);
KT_KERNEL(RgbToYuv411);
KT_KERNEL(Yuv411ToRgb);
KT_KERNEL(RgbToUyvy);
KT_KERNEL(UyvyToRgb);
KT_KERNEL(RgbToYcbcr);
KT_KERNEL(YcbcrToRgb);
KT_KERNEL(RgbToHsi);
KT_KERNEL(HsiToRgb);
KT_KERNEL(RgbToRgb444);
KT_KERNEL(Rgb444ToRgb);

// YCCK against RGB through the constant YCbCr tables (ycck_table.h); K is
// dropped one way and written as 0 the other.
KT_KERNEL(RgbToYcck);
KT_KERNEL(YcckToRgb);

// Lab and XYZ.
KT_KERNEL(RgbToLab);
KT_KERNEL(LabToRgb);
KT_KERNEL(RgbToXyz);
KT_KERNEL(XyzToRgb);

}  // namespace kt::color
