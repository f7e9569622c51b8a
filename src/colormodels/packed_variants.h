// The row variants of packed 4:2:2 to RGB and of 4-bit RGB both ways: plain
// loops for any processor, narrow steps (AVX2 lane loops for 4:2:2, SSSE3
// shuffles for 4-bit RGB; every AVX2 processor has both) and AVX-512 steps
// of sixteen or thirty-two pixels. The kernels run the best variant the
// processor has, chosen once per process; the *With forms take the variant,
// so that tests run every one.
#pragma once

#include "colormodels/kernel_variants.h"

namespace kt::color::packed {

KT_KERNEL_WITH(YuyvToRgbWith);
KT_KERNEL_WITH(UyvyToRgbWith);
KT_KERNEL_WITH(RgbToRgb444With);
KT_KERNEL_WITH(Rgb444ToRgbWith);

}  // namespace kt::color::packed
