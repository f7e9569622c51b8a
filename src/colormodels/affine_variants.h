// The row variants of the kernels from RGB to YCbCr, YUV and YIQ: lane
// loops for any processor, AVX2 steps of eight pixels, AVX-512 steps of
// sixteen (see kernel_variants.h).
#pragma once

#include "colormodels/kernel_variants.h"

namespace kt::color::affine {

KT_KERNEL_WITH(RgbToYcbcrWith);
KT_KERNEL_WITH(RgbToYuvWith);
KT_KERNEL_WITH(RgbToYiqWith);

}  // namespace kt::color::affine
