// YUV and YIQ rows in AVX2 steps of eight pixels.
#include "colormodels/yuv_yiq_rows.h"
#include "colormodels/x86/affine_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace yuv_yiq;

// The fixed-point steps; a step near a whole number is redone with the
// three sums in double lanes.
template <class O, const affine::Fixed3& F, void (*S0)(const __m256d&, const __m256d&, const __m256d&, __m256d&),
          void (*S1)(const __m256d&, const __m256d&, const __m256d&, __m256d&),
          void (*S2)(const __m256d&, const __m256d&, const __m256d&, __m256d&)>
void FromRgbAvx2(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const affine::Vectors vectors{F};
    affine::FromRgb<O>(F, vectors, s, d, width,
                       [](const __m256d& r, const __m256d& g, const __m256d& b, __m128i* out) KT_STEP_INLINE {
                           __m256d sum[3];
                           S0(r, g, b, sum[0]);
                           S1(r, g, b, sum[1]);
                           S2(r, g, b, sum[2]);
                           for (int k = 0; k < 3; ++k) out[k] = avx2::TruncateClamped(sum[k], 0.0, kFull);
                       });
}

// Sixteen-bit pairs (-u, -v) in each 32-bit lane feed multiply-adds; a
// coefficient beyond 16 bits is taken less 65536 and the missing 65536 x
// operand added back from the pair itself.
template <class O>
void YuvToRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    alignas(32) static const std::int8_t pairMask[32] = {1, -1, 2, -1, 4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1,
                                                         1, -1, 2, -1, 4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1};
    const __m256i pairs = _mm256_load_si256(reinterpret_cast<const __m256i*>(pairMask));
    const __m256i magic = _mm256_set1_epi32(kUMagic | (kVMagic << 16));
    const __m256i high = _mm256_set1_epi32(static_cast<int>(0xFFFF0000u));
    const __m256i green = _mm256_set1_epi32((-12943 & 0xFFFF) | (-18940 << 16));
    const __m256i red = _mm256_set1_epi32((-29 & 0xFFFF) | ((37221 - 65536) << 16));
    const __m256i blue = _mm256_set1_epi32((66883 - 65536) | (-33 << 16));
    avx2::Steps(s, d, width, [&](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 12));
        const __m256i raw = _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
        const __m256i y = _mm256_shuffle_epi8(raw, m.spread[0]);
        const __m256i uv = _mm256_shuffle_epi8(raw, pairs);  // U low, V high
        const __m256i nuv = _mm256_add_epi16(_mm256_mulhi_epu16(uv, magic), _mm256_and_si256(uv, high));
        const __m256i g = _mm256_add_epi32(_mm256_madd_epi16(nuv, green), _mm256_set1_epi32(4063336));
        const __m256i r = _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(nuv, red), _mm256_and_si256(nuv, high)),
                                           _mm256_set1_epi32(-5133250));
        const __m256i b = _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(nuv, blue), _mm256_slli_epi32(nuv, 16)),
                                           _mm256_set1_epi32(-7486342));
        __m256i out[3];
        out[O::r] = _mm256_add_epi32(y, _mm256_srai_epi32(r, kYuvShift));
        out[O::g] = _mm256_add_epi32(y, _mm256_srai_epi32(g, kYuvShift));
        out[O::b] = _mm256_add_epi32(y, _mm256_srai_epi32(b, kYuvShift));
        avx2::StoreClamped(m, to, raw, out[0], out[1], out[2]);
    });
}
template <class O>
void RgbToYuvAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    FromRgbAvx2<O, kYuvFixed, LumaSum, YuvUSum, YuvVSum>(s, d, width);
}

template <class O>
void RgbToYiqAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    FromRgbAvx2<O, kYiqFixed, YiqYSum, YiqISum, YiqQSum>(s, d, width);
}

}  // namespace

const rows::OrderedRows kRgbToYuvAvx2 = KT_ORDERED_ROWS(RgbToYuvAvx2);
const rows::OrderedRows kYuvToRgbAvx2 = KT_ORDERED_ROWS(YuvToRgbAvx2);
const rows::OrderedRows kRgbToYiqAvx2 = KT_ORDERED_ROWS(RgbToYiqAvx2);

}  // namespace kt::color::x86
