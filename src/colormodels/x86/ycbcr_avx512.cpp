// YCbCr from RGB in AVX-512 steps of sixteen pixels.
#include "colormodels/ycbcr_rows.h"
#include "colormodels/x86/affine_avx512.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace ycbcr;

template <class O>
void FromRgbAvx512(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const affine512::Vectors vectors{kFromRgbFixed};
    affine512::FromRgb<O>(kFromRgbFixed, vectors, s, d, width,
                          [](const __m512d& r, const __m512d& g, const __m512d& b, __m256i* out) KT_STEP_INLINE {
                              __m512d sum[3];
                              LumaSum(r, g, b, sum[0]);
                              BlueChromaSum(r, g, b, sum[1]);
                              RedChromaSum(r, g, b, sum[2]);
                              out[0] = affine512::TruncateClamped(sum[0], 0.0, kFull);
                              out[1] = affine512::TruncateClamped(sum[1], kChromaLow, kChromaHigh);
                              out[2] = affine512::TruncateClamped(sum[2], kChromaLow, kChromaHigh);
                          });
}
}  // namespace

const rows::OrderedRows kRgbToYcbcrAvx512 = KT_ORDERED_ROWS(FromRgbAvx512);

}  // namespace kt::color::x86
