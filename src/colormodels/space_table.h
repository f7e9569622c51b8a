// The color-space table: one row per identifier with its bits per pixel and
// its two kernels. Sizing, validation and both dispatches read it.
#pragma once

#include "colormodels/kernels.h"

namespace kt::color {

struct SpaceInfo {
    int id;
    int bitsPerPixel;
    Kernel fromRgb;  // null where the frame handles the space itself (YCCK)
    Kernel toRgb;
};

// Null for identifiers in the gaps (16-127, 129-143, above 144) or negative.
const SpaceInfo* FindSpace(int id) noexcept;

// Bits per pixel, or ERR_BAD_COLOR_SPACE for an unknown identifier.
int BitsPerPixel(int id) noexcept;

}  // namespace kt::color
