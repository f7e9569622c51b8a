// The built-in method's one-step dispatch: the kernel between a space and
// the RGB hub, chosen from the color-space table, with the extras a handle
// may hold. Both conversion entry points use it.
#pragma once

#include <cstdint>

#include "ktclr/convert.h"

namespace kt::convert {

struct BuiltinExtras {
    int black = KTCLR_DEFAULT_CMYK_BLACK;     // the CMYK kernels' black value
    const LabTable* labTable = nullptr;       // Lab to RGB through the table
    const RgbToLabTable* rgbToLab = nullptr;  // RGB to Lab through the table
};

// One side must be CS_RGB or CS_BGR; otherwise, and for identifiers without
// a kernel, nothing is written and STATUS_OK returned. Paddings go to the
// kernel as given.
KtStatus ConvertOneStep(int srcSpace, int dstSpace, const std::uint8_t* src, std::uint8_t* dst, int width,
                        int height, int srcPad, int dstPad, const BuiltinExtras& extras) noexcept;

inline bool IsHub(int space) { return space == CS_RGB || space == CS_BGR; }

}  // namespace kt::convert
