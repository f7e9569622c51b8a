// YUV and YIQ from RGB in AVX-512 steps of sixteen pixels.
#include "colormodels/yuv_yiq_rows.h"
#include "colormodels/x86/affine_avx512.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace yuv_yiq;

// The same sixteen pixels at a time.
template <class O, const affine::Fixed3& F, void (*S0)(const __m512d&, const __m512d&, const __m512d&, __m512d&),
          void (*S1)(const __m512d&, const __m512d&, const __m512d&, __m512d&),
          void (*S2)(const __m512d&, const __m512d&, const __m512d&, __m512d&)>
void FromRgbAvx512(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const affine512::Vectors vectors{F};
    affine512::FromRgb<O>(F, vectors, s, d, width,
                          [](const __m512d& r, const __m512d& g, const __m512d& b, __m256i* out) KT_STEP_INLINE {
                              __m512d sum[3];
                              S0(r, g, b, sum[0]);
                              S1(r, g, b, sum[1]);
                              S2(r, g, b, sum[2]);
                              for (int k = 0; k < 3; ++k) out[k] = affine512::TruncateClamped(sum[k], 0.0, kFull);
                          });
}
template <class O>
void RgbToYuvAvx512(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    FromRgbAvx512<O, kYuvFixed, LumaSum, YuvUSum, YuvVSum>(s, d, width);
}

template <class O>
void RgbToYiqAvx512(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    FromRgbAvx512<O, kYiqFixed, YiqYSum, YiqISum, YiqQSum>(s, d, width);
}

}  // namespace

const rows::OrderedRows kRgbToYuvAvx512 = KT_ORDERED_ROWS(RgbToYuvAvx512);
const rows::OrderedRows kRgbToYiqAvx512 = KT_ORDERED_ROWS(RgbToYiqAvx512);

}  // namespace kt::color::x86
