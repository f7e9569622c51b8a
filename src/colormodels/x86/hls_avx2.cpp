// HLS rows in AVX2 steps of eight pixels.
#include "colormodels/hls_rows.h"
#include "colormodels/x86/lanes_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using namespace hls;

// The divisions by constants of the lane steps as products, checked here on
// every operand they meet: L = (sum + 1) x 255 / 510 is (sum + 1) / 2, the
// rounded L x S / 255 and the ramp quotients (below 510 x 85 + 21 in
// magnitude) / 42.
constexpr unsigned kByteMagic = 65794, kByteShift = 24;
constexpr unsigned kSixthMagic = 49933, kSixthShift = 21;
constexpr unsigned kRampReach = kDoubleFull * kThird + kSixth / 2;
constexpr bool MagicHolds() {
    for (int sum = 0; sum <= kDoubleFull; ++sum)
        if ((sum + 1) * 255 / kDoubleFull != (sum + 1) >> 1) return false;
    for (unsigned x = 0; x <= 255 * 255 + 127; ++x)
        if ((x * kByteMagic) >> kByteShift != x / 255) return false;
    for (unsigned x = 0; x <= kRampReach; ++x)
        if ((x * kSixthMagic) >> kSixthShift != x / kSixth) return false;
    return true;
}
static_assert(MagicHolds());

using avx2::Quotient;

// The forward row eight pixels at a time; the branches become blends and a
// gray pixel divides by 1 with its results masked off.
template <class O>
void FromRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const __m256i one = _mm256_set1_epi32(1);
    avx2::Steps(s, d, width, [&](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const avx2::Step st = avx2::Load(m, from);
        const __m256i r = st.c[O::r], g = st.c[O::g], b = st.c[O::b];
        const __m256i mx = avx2::Max3(r, g, b), mn = avx2::Min3(r, g, b);
        const __m256i sum = _mm256_add_epi32(mx, mn);
        const __m256i l = _mm256_srli_epi32(_mm256_add_epi32(sum, one), 1);
        const __m256i delta = _mm256_sub_epi32(mx, mn);
        const __m256i light = _mm256_cmpgt_epi32(l, _mm256_set1_epi32(kLightHalf - 1));
        const __m256i den = _mm256_blendv_epi8(sum, _mm256_sub_epi32(_mm256_set1_epi32(kDoubleFull), sum), light);
        const __m256i scaled = _mm256_sub_epi32(_mm256_slli_epi32(delta, 8), delta);
        const __m256i sat = Quotient(_mm256_add_epi32(scaled, _mm256_srli_epi32(den, 1)), _mm256_max_epi32(den, one));
        const auto [isR, isG] = avx2::LargestOf(mx, r, g);
        const __m256i dr = _mm256_sub_epi32(mx, r), dg = _mm256_sub_epi32(mx, g), db = _mm256_sub_epi32(mx, b);
        const __m256i first = _mm256_blendv_epi8(_mm256_blendv_epi8(dg, dr, isG), db, isR);
        const __m256i second = _mm256_blendv_epi8(_mm256_blendv_epi8(dr, db, isG), dg, isR);
        __m256i base = _mm256_blendv_epi8(_mm256_set1_epi32(kTwoThirds), _mm256_set1_epi32(kThird), isG);
        base = _mm256_andnot_si256(isR, base);
        const __m256i half = _mm256_srli_epi32(delta, 1);
        const __m256i divisor = _mm256_max_epi32(delta, one);
        const __m256i sixth = _mm256_set1_epi32(kSixth);
        const __m256i q1 = Quotient(_mm256_add_epi32(_mm256_mullo_epi32(first, sixth), half), divisor);
        const __m256i q2 = Quotient(_mm256_add_epi32(_mm256_mullo_epi32(second, sixth), half), divisor);
        __m256i h = _mm256_add_epi32(_mm256_sub_epi32(q1, q2), base);
        const __m256i turn = _mm256_set1_epi32(kTurn);
        h = _mm256_add_epi32(h, _mm256_and_si256(_mm256_srai_epi32(h, 31), turn));
        h = _mm256_sub_epi32(h, _mm256_and_si256(_mm256_cmpgt_epi32(h, turn), turn));
        const __m256i gray = _mm256_cmpeq_epi32(delta, _mm256_setzero_si256());
        avx2::Store(m, to, st.raw, _mm256_andnot_si256(gray, h), l, _mm256_andnot_si256(gray, sat));
    });
}

// Channel for eight lanes: the one ramp the hue needs, its quotient by 42
// truncated toward zero through the magnitude.
[[gnu::always_inline]] inline __m256i ChannelAvx2(__m256i m1, __m256i m2, __m256i span, __m256i h) {
    h = _mm256_sub_epi32(h, _mm256_and_si256(_mm256_cmpgt_epi32(h, _mm256_set1_epi32(kTurn)), _mm256_set1_epi32(kTurn)));
    const __m256i rising = _mm256_cmpgt_epi32(_mm256_set1_epi32(kSixth), h);
    const __m256i t = _mm256_blendv_epi8(_mm256_sub_epi32(_mm256_set1_epi32(kTwoThirds), h), h, rising);
    const __m256i num = _mm256_add_epi32(_mm256_mullo_epi32(span, t), _mm256_set1_epi32(kSixth / 2));
    const __m256i mag = _mm256_srli_epi32(_mm256_mullo_epi32(_mm256_abs_epi32(num), _mm256_set1_epi32(kSixthMagic)),
                                          kSixthShift);
    const __m256i ramp = _mm256_add_epi32(m1, _mm256_sign_epi32(mag, num));
    const __m256i top = _mm256_cmpgt_epi32(_mm256_set1_epi32(kHalfTurn), h);
    const __m256i bottom = _mm256_cmpgt_epi32(h, _mm256_set1_epi32(kTwoThirds - 1));
    __m256i x = _mm256_blendv_epi8(_mm256_blendv_epi8(ramp, m1, bottom), m2, top);
    x = _mm256_blendv_epi8(x, ramp, rising);
    return _mm256_sub_epi32(x, _mm256_cmpgt_epi32(_mm256_setzero_si256(), x));
}

// One step of the inverse; false (nothing written) when a pixel of it is
// achromatic with a hue.
template <class O>
[[gnu::always_inline]] inline bool ToRgbStep(const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) {
    const avx2::Step st = avx2::Load(m, from);
    const __m256i h = st.c[0], l = st.c[1], sat = st.c[2];
    const __m256i zero = _mm256_setzero_si256();
    const __m256i bad = _mm256_andnot_si256(_mm256_cmpeq_epi32(h, zero), _mm256_cmpeq_epi32(sat, zero));
    if (!_mm256_testz_si256(bad, bad)) return false;
    // ((S + 255) x L + 127) / 255 is L + (L x S + 127) / 255: one quotient
    // serves both halves of the lightness.
    const __m256i ls = _mm256_add_epi32(_mm256_mullo_epi32(l, sat), _mm256_set1_epi32(127));
    const __m256i q = _mm256_srli_epi32(_mm256_mullo_epi32(ls, _mm256_set1_epi32(static_cast<int>(kByteMagic))), kByteShift);
    const __m256i dark = _mm256_cmpgt_epi32(_mm256_set1_epi32(kLightHalf), l);
    const __m256i m2 = _mm256_blendv_epi8(_mm256_add_epi32(_mm256_sub_epi32(l, q), sat), _mm256_add_epi32(l, q), dark);
    const __m256i m1 = _mm256_sub_epi32(_mm256_add_epi32(l, l), m2);
    const __m256i span = _mm256_sub_epi32(m2, m1);
    const __m256i third = _mm256_set1_epi32(kThird);
    __m256i out[3];
    out[O::r] = ChannelAvx2(m1, m2, span, _mm256_add_epi32(h, third));
    out[O::g] = ChannelAvx2(m1, m2, span, h);
    out[O::b] = ChannelAvx2(m1, m2, span, _mm256_sub_epi32(h, third));
    // Exactly the eight pixels' bytes: a rejected pixel right after them
    // must keep what the destination held.
    const __m256i v = _mm256_or_si256(
        _mm256_or_si256(_mm256_shuffle_epi8(out[0], m.pack[0]), _mm256_shuffle_epi8(out[1], m.pack[1])),
        _mm256_shuffle_epi8(out[2], m.pack[2]));
    const __m128i hi = _mm256_extracti128_si256(v, 1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(v));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 12), hi);
    _mm_storeu_si32(to + 20, _mm_srli_si128(hi, 8));
    return true;
}

// The inverse row eight pixels at a time. A step that meets a rejected
// pixel writes nothing; the pixels before it then go through the scratch
// copy like the row's last ones.
template <class O>
KtStatus ToRgbAvx2(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const avx2::Masks& m = avx2::TheMasks();
    int x = 0;
    for (; x + avx2::kStepReach <= width; x += avx2::kStep, s += avx2::kStepBytes, d += avx2::kStepBytes)
        if (!ToRgbStep<O>(m, s, d)) break;
    int valid = x;
    while (valid < width && !(s[3 * (valid - x) + 2] == 0 && s[3 * (valid - x)] != 0)) ++valid;
    for (; x < valid; x += avx2::kStep, s += avx2::kStepBytes, d += avx2::kStepBytes) {
        const int n = valid - x < avx2::kStep ? valid - x : avx2::kStep;
        alignas(32) std::uint8_t scratch[32] = {};
        std::memcpy(scratch, s, static_cast<std::size_t>(3 * n));
        ToRgbStep<O>(m, scratch, scratch);
        std::memcpy(d, scratch, static_cast<std::size_t>(3 * n));
    }
    return valid == width ? STATUS_OK : ERR_INVALID_TAG;
}
}  // namespace

const rows::OrderedRows kRgbToHlsAvx2 = KT_ORDERED_ROWS(FromRgbAvx2);
const rows::OrderedRows kHlsToRgbAvx2 = KT_ORDERED_ROWS(ToRgbAvx2);

}  // namespace kt::color::x86
