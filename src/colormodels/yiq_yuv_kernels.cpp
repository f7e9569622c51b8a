// YUV and YIQ kernels: the plain rows (yuv_yiq_rows.h), AVX2 and AVX-512
// steps.
#include "colormodels/x86/rows.h"
#include "colormodels/yuv_yiq_rows.h"

namespace kt::color {
namespace {
using namespace yuv_yiq;
constexpr rows::OrderedRows kRgbToYuvPlain = KT_ORDERED_ROWS(RgbToYuvRow);
constexpr rows::OrderedRows kYuvToRgbPlain = KT_ORDERED_ROWS(YuvToRgbRow);
constexpr rows::OrderedRows kRgbToYiqPlain = KT_ORDERED_ROWS(RgbToYiqRow);
constexpr rows::OrderedRows kYiqToRgbPlain = KT_ORDERED_ROWS(YiqToRgbRow);
constexpr rows::IsaRows kRgbToYuv{&kRgbToYuvPlain, KT_X86(kRgbToYuvAvx2), KT_X86(kRgbToYuvAvx512)};
constexpr rows::IsaRows kYuvToRgb{&kYuvToRgbPlain, KT_X86(kYuvToRgbAvx2)};
constexpr rows::IsaRows kRgbToYiq{&kRgbToYiqPlain, KT_X86(kRgbToYiqAvx2), KT_X86(kRgbToYiqAvx512)};
constexpr rows::IsaRows kYiqToRgb{&kYiqToRgbPlain};
}  // namespace

#define KT_RUN(rowsOf)                                                                                        \
    (void)black;                                                                                              \
    return rows::Run(rows::kRgbToRgb, rowsOf, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder)

KT_KERNEL(RgbToYuv) { KT_RUN(kRgbToYuv); }
KT_KERNEL(YuvToRgb) { KT_RUN(kYuvToRgb); }
KT_KERNEL(RgbToYiq) { KT_RUN(kRgbToYiq); }
KT_KERNEL(YiqToRgb) { KT_RUN(kYiqToRgb); }

}  // namespace kt::color
