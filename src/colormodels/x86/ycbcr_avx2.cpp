// YCbCr rows in AVX2 steps of eight pixels.
#include "colormodels/ycbcr_rows.h"
#include "colormodels/x86/affine_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace ycbcr;

template <class O>
void FromRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const affine::Vectors vectors{kFromRgbFixed};
    affine::FromRgb<O>(kFromRgbFixed, vectors, s, d, width,
                       [](const __m256d& r, const __m256d& g, const __m256d& b, __m128i* out) KT_STEP_INLINE {
                           __m256d sum[3];
                           LumaSum(r, g, b, sum[0]);
                           BlueChromaSum(r, g, b, sum[1]);
                           RedChromaSum(r, g, b, sum[2]);
                           out[0] = avx2::TruncateClamped(sum[0], 0.0, kFull);
                           out[1] = avx2::TruncateClamped(sum[1], kChromaLow, kChromaHigh);
                           out[2] = avx2::TruncateClamped(sum[2], kChromaLow, kChromaHigh);
                       });
}

[[gnu::always_inline]] inline __m256i Term(__m256i v, int k) {
    return _mm256_srai_epi32(_mm256_mullo_epi32(v, _mm256_set1_epi32(k)), kInverseShift);
}

template <class O>
void ToRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    avx2::Steps(s, d, width, [](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const avx2::Step st = avx2::Load(m, from);
        const __m256i y = st.c[0];
        const __m256i cb = _mm256_srai_epi32(_mm256_slli_epi32(st.c[1], 24), 24);
        const __m256i cr = _mm256_srai_epi32(_mm256_slli_epi32(st.c[2], 24), 24);
        const __m256i green = _mm256_add_epi32(_mm256_mullo_epi32(cb, _mm256_set1_epi32(-kGreenCb)),
                                               _mm256_mullo_epi32(cr, _mm256_set1_epi32(-kGreenCr)));
        __m256i out[3];
        out[O::r] = _mm256_add_epi32(y, Term(cr, kRedCr));
        out[O::g] = _mm256_add_epi32(y, _mm256_srai_epi32(green, kInverseShift));
        out[O::b] = _mm256_add_epi32(y, Term(cb, kBlueCb));
        avx2::StoreClamped(m, to, st.raw, out[0], out[1], out[2]);
    });
}
}  // namespace

const rows::OrderedRows kRgbToYcbcrAvx2 = KT_ORDERED_ROWS(FromRgbAvx2);
const rows::OrderedRows kYcbcrToRgbAvx2 = KT_ORDERED_ROWS(ToRgbAvx2);

}  // namespace kt::color::x86
