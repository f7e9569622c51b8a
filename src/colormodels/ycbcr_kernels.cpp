// YCbCr kernels: the plain rows (ycbcr_rows.h), AVX2 and AVX-512 steps.
#include "colormodels/ycbcr_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS(ycbcr::FromRgbRow);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS(ycbcr::ToRgbRow);
constexpr rows::IsaRows kFromRgb{&kFromRgbPlain, KT_X86(kRgbToYcbcrAvx2), KT_X86(kRgbToYcbcrAvx512)};
constexpr rows::IsaRows kToRgb{&kToRgbPlain, KT_X86(kYcbcrToRgbAvx2)};
}  // namespace

KT_KERNEL(RgbToYcbcr) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kFromRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(YcbcrToRgb) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kToRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
