// The row variants of packed 4:2:2 to RGB and of 4-bit RGB both ways: plain
// loops for any processor, narrow steps (AVX2 lane loops for 4:2:2, SSSE3
// shuffles for 4-bit RGB; every AVX2 processor has both) and AVX-512 steps
// of sixteen or thirty-two pixels. The kernels run the best variant the
// processor has, chosen once per process; the *With forms take the variant,
// so that tests run every one.
#pragma once

#include <cstdint>

#include "colormodels/affine_variants.h"
#include "colormodels/kernel_rows.h"

namespace kt::color::packed {

using affine::Variant;

KT_KERNEL_WITH(YuyvToRgbWith);
KT_KERNEL_WITH(UyvyToRgbWith);
KT_KERNEL_WITH(RgbToRgb444With);
KT_KERNEL_WITH(Rgb444ToRgbWith);

// Walks rows of the given shape with the row function of the variant the
// processor can run closest to `variant`.
template <class Wide, class Narrow, class Plain>
KtStatus WalkVariant(Variant variant, rows::Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width,
                     int height, int srcPad, int dstPad, int rgbOrder, const Wide& wide, const Narrow& narrow,
                     const Plain& plain) noexcept {
    switch (affine::Usable(variant)) {
        case Variant::avx512: return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, wide);
        case Variant::avx2: return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, narrow);
        case Variant::plain: break;
    }
    return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, plain);
}

}  // namespace kt::color::packed
