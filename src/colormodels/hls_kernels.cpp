// HLS kernels: the plain rows (hls_rows.h) and AVX2 steps.
#include "colormodels/hls_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS(hls::FromRgbRow);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS(hls::ToRgbChecked);
constexpr rows::IsaRows kFromRgb{&kFromRgbPlain, KT_X86(kRgbToHlsAvx2)};
constexpr rows::IsaRows kToRgb{&kToRgbPlain, KT_X86(kHlsToRgbAvx2)};
}  // namespace

KT_KERNEL(RgbToHls) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kFromRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

// An achromatic pixel with a hue ends the conversion with ERR_INVALID_TAG
// (hls_rows.h).
KT_KERNEL(HlsToRgb) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kToRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
