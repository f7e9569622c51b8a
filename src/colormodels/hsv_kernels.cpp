// HSV kernels: the plain rows (hsv_rows.h) and AVX2 steps.
#include "colormodels/hsv_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS(hsv::FromRgbRow);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS(hsv::ToRgbRow);
constexpr rows::IsaRows kFromRgb{&kFromRgbPlain, KT_X86(kRgbToHsvAvx2)};
constexpr rows::IsaRows kToRgb{&kToRgbPlain, KT_X86(kHsvToRgbAvx2)};
}  // namespace

KT_KERNEL(RgbToHsv) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kFromRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(HsvToRgb) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kToRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
