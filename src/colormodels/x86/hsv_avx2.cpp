// HSV rows in AVX2 steps of eight pixels.
#include "colormodels/hsv_rows.h"
#include "colormodels/x86/lanes_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace hsv;

// The inverse's divisions by constants as products, checked here on every
// operand they meet: h = H x 360 / 255, h / 60 and S x V / 255. The two
// divisions by 15300 go through one single-precision product of 2x + 1 with
// 1/30600 (x < 2^22, so 2x + 1 converts exactly and the product stays
// nearer its true value than the half step is to a whole number); the
// exhaustive tests prove them.
constexpr int kHueMagic = 5921371, kHueShift = 22;
constexpr int kSextantMagic = 1093, kSextantShift = 16;
constexpr unsigned kByteMagic = 65794, kByteShift = 24;
constexpr bool MagicHolds() {
    for (int hb = 0; hb < 256; ++hb)
        if (((hb * kHueMagic) >> kHueShift) != hb * kDegrees / 255) return false;
    for (int h = 0; h <= kDegrees; ++h)
        if (((h * kSextantMagic) >> kSextantShift) != h / kSextant) return false;
    for (unsigned sv = 0; sv <= 255 * 255; ++sv)
        if ((sv * kByteMagic) >> kByteShift != sv / 255) return false;
    return true;
}
static_assert(MagicHolds());

// Which of v, q, p, t (codes 0 to 3) each of R, G, B takes in sectors 0 to
// 6, two bits per channel; sector 6 (H = 255) is sector 0.
constexpr int kV = 0, kQ = 1, kP = 2, kT = 3;
constexpr int Code(int r, int g, int b) { return r | g << 2 | b << 4; }
constexpr std::int8_t kSectorCodes[16] = {Code(kV, kT, kP), Code(kQ, kV, kP), Code(kP, kV, kT), Code(kP, kQ, kV),
                                          Code(kT, kP, kV), Code(kV, kP, kQ), Code(kV, kT, kP)};

// hue x 255 / 360 for hues 0 to 359 as a product, checked on all of them.
constexpr int kToByteMagic = 46422, kToByteShift = 16;
constexpr bool HueMagicHolds() {
    for (int hue = 0; hue < kDegrees; ++hue)
        if (((hue * kToByteMagic) >> kToByteShift) != hue * 255 / kDegrees) return false;
    return true;
}
static_assert(HueMagicHolds());

// Picks v, q, p or t by the two code bits at bit (moved to the sign bits).
[[gnu::always_inline]] inline __m256i Pick(__m256i code, int bit, __m256i v, __m256i q, __m256i p, __m256i t) {
    const __m256 low = _mm256_castsi256_ps(_mm256_sll_epi32(code, _mm_cvtsi32_si128(31 - bit)));
    const __m256 high = _mm256_castsi256_ps(_mm256_sll_epi32(code, _mm_cvtsi32_si128(30 - bit)));
    const __m256 vq = _mm256_blendv_ps(_mm256_castsi256_ps(v), _mm256_castsi256_ps(q), low);
    const __m256 pt = _mm256_blendv_ps(_mm256_castsi256_ps(p), _mm256_castsi256_ps(t), low);
    return _mm256_castps_si256(_mm256_blendv_ps(vq, pt, high));
}

template <class O>
void ToRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const __m256i codes = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kSectorCodes)));
    const __m256 inverse = _mm256_set1_ps(1.0f / static_cast<float>(2 * kSectorScale));
    const __m256i one = _mm256_set1_epi32(1);
    avx2::Steps(s, d, width, [&](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const avx2::Step st = avx2::Load(m, from);
        const __m256i sat = st.c[1], v = st.c[2];
        const __m256i h = _mm256_srli_epi32(_mm256_mullo_epi32(st.c[0], _mm256_set1_epi32(kHueMagic)), kHueShift);
        const __m256i turns = _mm256_srli_epi32(_mm256_mullo_epi32(h, _mm256_set1_epi32(kSextantMagic)), kSextantShift);
        const __m256i frac = _mm256_sub_epi32(h, _mm256_mullo_epi32(turns, _mm256_set1_epi32(kSextant)));
        const __m256i sv = _mm256_mullo_epi32(sat, v);
        const __m256i p = _mm256_sub_epi32(
            v, _mm256_srli_epi32(_mm256_mullo_epi32(sv, _mm256_set1_epi32(static_cast<int>(kByteMagic))), kByteShift));
        const __m256i twice = _mm256_mullo_epi32(_mm256_add_epi32(sv, sv), frac);  // 2 sv r
        const __m256i qArg = _mm256_add_epi32(twice, one);
        const __m256i tArg = _mm256_add_epi32(_mm256_sub_epi32(_mm256_mullo_epi32(sv, _mm256_set1_epi32(2 * kSextant)), twice), one);
        const __m256i q = _mm256_sub_epi32(v, _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(qArg), inverse)));
        const __m256i t = _mm256_sub_epi32(v, _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(tArg), inverse)));
        const __m256i code = _mm256_shuffle_epi8(codes, turns);
        __m256i out[3];
        out[O::r] = Pick(code, 0, v, q, p, t);
        out[O::g] = Pick(code, 2, v, q, p, t);
        out[O::b] = Pick(code, 4, v, q, p, t);
        avx2::StoreClamped(m, to, st.raw, out[0], out[1], out[2]);
    });
}
// The forward row's quotients are exact single-precision divisions, its
// branches blends.
using avx2::Quotient;

template <class O>
void FromRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const __m256i one = _mm256_set1_epi32(1);
    avx2::Steps(s, d, width, [&](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const avx2::Step st = avx2::Load(m, from);
        const __m256i r = st.c[O::r], g = st.c[O::g], b = st.c[O::b];
        const __m256i mx = avx2::Max3(r, g, b), mn = avx2::Min3(r, g, b);
        const __m256i delta = _mm256_sub_epi32(mx, mn);
        // MulDiv(delta, 255, mx), 0 when mx is 0.
        const __m256i scaled = _mm256_sub_epi32(_mm256_slli_epi32(delta, 8), delta);
        const __m256i sat = Quotient(_mm256_add_epi32(scaled, _mm256_srli_epi32(mx, 1)), _mm256_max_epi32(mx, one));
        const auto [isR, isG] = avx2::LargestOf(mx, r, g);
        __m256i num = _mm256_blendv_epi8(_mm256_sub_epi32(r, g), _mm256_sub_epi32(b, r), isG);
        num = _mm256_blendv_epi8(num, _mm256_sub_epi32(g, b), isR);
        __m256i base = _mm256_blendv_epi8(_mm256_set1_epi32(4 * kSextant), _mm256_set1_epi32(2 * kSextant), isG);
        base = _mm256_andnot_si256(isR, base);
        // MulDiv(num, 60, delta) with the sign of num.
        const __m256i mag = _mm256_mullo_epi32(_mm256_abs_epi32(num), _mm256_set1_epi32(kSextant));
        const __m256i part = Quotient(_mm256_add_epi32(mag, _mm256_srli_epi32(delta, 1)), _mm256_max_epi32(delta, one));
        __m256i hue = _mm256_add_epi32(base, _mm256_sign_epi32(part, num));
        hue = _mm256_add_epi32(hue, _mm256_and_si256(_mm256_srai_epi32(hue, 31), _mm256_set1_epi32(kDegrees)));
        const __m256i h = _mm256_srli_epi32(_mm256_mullo_epi32(hue, _mm256_set1_epi32(kToByteMagic)), kToByteShift);
        const __m256i hb = _mm256_andnot_si256(_mm256_cmpeq_epi32(sat, _mm256_setzero_si256()), h);
        avx2::StoreClamped(m, to, st.raw, hb, sat, mx);
    });
}
}  // namespace

const rows::OrderedRows kRgbToHsvAvx2 = KT_ORDERED_ROWS(FromRgbAvx2);
const rows::OrderedRows kHsvToRgbAvx2 = KT_ORDERED_ROWS(ToRgbAvx2);

}  // namespace kt::color::x86
