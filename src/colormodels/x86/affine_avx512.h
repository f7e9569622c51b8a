// The truncated affine combinations of affine_avx2.h, sixteen pixels at a
// time with AVX-512: the same 22-bit fixed point, the same window around
// whole numbers. Byte permutes spread the 48 bytes of a step into lanes and
// pack the results back in one go; masked loads and stores take the row's
// last pixels without a scratch copy. A step with a pixel near a whole
// number keeps its raw bytes (without a branch) and is redone whole from
// the double formula in __m512d lanes, in a batch per row, so rows
// converted in place work too. The exhaustive tests run this variant
// against the reference wherever the processor has it.
#pragma once

#include "colormodels/x86/avx512.h"

#include <cstdint>

#include "colormodels/x86/affine_avx2.h"
#include "colormodels/kernel_rows.h"

namespace kt::color::affine512 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

using affine::Fixed3;
using affine::kShift;

constexpr int kStep = 16;        // pixels per step
constexpr int kStepBytes = 48;   // bytes they occupy
constexpr std::uint64_t kStepMask = (std::uint64_t{1} << kStepBytes) - 1;
constexpr std::uint64_t kLowBytes = 0x1111111111111111;  // byte 0 of each 32-bit lane

// A lane is near a whole number when its biased fraction falls below twice
// the window: the fraction's bits from there up are all clear.
constexpr int kWindow = 2 * affine::kNear;
static_assert((kWindow & (kWindow - 1)) == 0);
constexpr int kFarBits = affine::kFraction & ~(kWindow - 1);

// The broadcast coefficients and biases, the permutes, and per stored byte
// the sign flip and the sign threshold of the truncation fix (-128, never
// reached, where none applies).
struct Vectors {
    __m512i c[3][4];
    __m512i bias[3];
    __m512i spread[3];  // byte position 0, 1 or 2 of pixel i to lane i
    __m512i interleave;  // packed c0, c1, c2 of each 128-bit lane to pixel bytes
    __m512i flip;
    __m512i negative;
    explicit Vectors(const Fixed3& f) {
        for (int k = 0; k < 3; ++k) {
            for (int j = 0; j < 4; ++j) c[k][j] = _mm512_set1_epi32(f.c[k][j]);
            bias[k] = _mm512_set1_epi32(f.bias[k]);
        }
        alignas(64) std::uint8_t bytes[6][64] = {};
        for (int i = 0; i < kStep; ++i)
            for (int at = 0; at < 3; ++at) {
                bytes[at][4 * i] = static_cast<std::uint8_t>(3 * i + at);
                // The packs leave lane j's four pixels as c0 x4, c1 x4, c2 x4.
                bytes[3][3 * i + at] = static_cast<std::uint8_t>(16 * (i / 4) + 4 * at + i % 4);
                bytes[4][3 * i + at] = f.bias[at] != 0 ? 0x80 : 0;
            }
        for (int j = 0; j < 64; ++j) bytes[5][j] = j < kStepBytes && f.negative[j % 3] ? 0 : 0x80;
        for (int at = 0; at < 3; ++at) spread[at] = _mm512_load_si512(bytes[at]);
        interleave = _mm512_load_si512(bytes[3]);
        flip = _mm512_load_si512(bytes[4]);
        negative = _mm512_load_si512(bytes[5]);
    }
};

// The lanes of byte position at of sixteen pixels.
[[gnu::always_inline]] inline __m512i Spread(const Vectors& v, __m512i raw, int at) {
    return _mm512_maskz_permutexvar_epi8(kLowBytes, v.spread[at], raw);
}

// The biased fixed-point sum of one channel of sixteen pixels.
[[gnu::always_inline]] inline __m512i Sum(const Vectors& v, int k, __m512i r, __m512i g, __m512i b) {
    const __m512i s = _mm512_add_epi32(_mm512_mullo_epi32(r, v.c[k][0]), _mm512_mullo_epi32(g, v.c[k][1]));
    return _mm512_add_epi32(s, _mm512_add_epi32(_mm512_mullo_epi32(b, v.c[k][2]), v.c[k][3]));
}

// The pixels with a channel near a whole number.
[[gnu::always_inline]] inline __mmask16 Near(__m512i s0, __m512i s1, __m512i s2) {
    const __m512i far = _mm512_set1_epi32(kFarBits);
    return static_cast<__mmask16>(_mm512_testn_epi32_mask(s0, far) | _mm512_testn_epi32_mask(s1, far) |
                                  _mm512_testn_epi32_mask(s2, far));
}

// Lanes c0, c1, c2 clamped to 0..255 by the saturating packs, as the bytes
// of sixteen pixels (bytes 48 to 63 are spare), flipped to signed where
// biased.
[[gnu::always_inline]] inline __m512i Pack(const Vectors& v, __m512i c0, __m512i c1, __m512i c2) {
    const __m512i bytes = _mm512_packus_epi16(_mm512_packs_epi32(c0, c1), _mm512_packs_epi32(c2, c2));
    return _mm512_xor_si512(_mm512_permutexvar_epi8(v.interleave, bytes), v.flip);
}

// The stored bytes from the floors, one added to the negative ones.
[[gnu::always_inline]] inline __m512i FloorBytes(const Fixed3& f, const Vectors& v, __m512i s0, __m512i s1,
                                                 __m512i s2) {
    const __m512i bytes =
        Pack(v, _mm512_srai_epi32(s0, kShift), _mm512_srai_epi32(s1, kShift), _mm512_srai_epi32(s2, kShift));
    if (!(f.negative[0] || f.negative[1] || f.negative[2])) return bytes;
    return _mm512_mask_sub_epi8(bytes, _mm512_cmpgt_epi8_mask(v.negative, bytes), bytes, _mm512_set1_epi8(-1));
}

// The stored bytes of a step from the double formulas: exact(r, g, b, out)
// truncates the three channels of eight pixels.
template <class O, class Exact>
[[gnu::always_inline]] inline __m512i ExactBytes(const Vectors& v, __m512i raw, const Exact& exact) {
    const __m512i r = Spread(v, raw, O::r), g = Spread(v, raw, O::g), b = Spread(v, raw, O::b);
    __m256i lo[3], hi[3];
    exact(_mm512_cvtepi32_pd(_mm512_castsi512_si256(r)), _mm512_cvtepi32_pd(_mm512_castsi512_si256(g)),
          _mm512_cvtepi32_pd(_mm512_castsi512_si256(b)), lo);
    exact(_mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(r, 1)), _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(g, 1)),
          _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(b, 1)), hi);
    __m512i c[3];
    for (int k = 0; k < 3; ++k)
        c[k] = _mm512_add_epi32(_mm512_inserti64x4(_mm512_castsi256_si512(lo[k]), hi[k], 1), v.bias[k]);
    return Pack(v, c[0], c[1], c[2]);
}

// trunc(clamp(x, lo, hi)) of eight doubles, as the scalar clamp and
// conversion do it (no not-a-number reaches here).
[[gnu::always_inline]] inline __m256i TruncateClamped(__m512d x, double lo, double hi) {
    return _mm512_cvttpd_epi32(_mm512_min_pd(_mm512_max_pd(x, _mm512_set1_pd(lo)), _mm512_set1_pd(hi)));
}

// Converts an RGB row; exact(r, g, b, out) is the double formula over eight
// pixels. Kept steps are redone when the store fills and at the row's end.
constexpr int kKept = 32;
template <class O, class Exact>
[[gnu::always_inline]] inline void FromRgb(const Fixed3& f, const Vectors& v, const std::uint8_t* s, std::uint8_t* d,
                                          int width, const Exact& exact) {
    __m512i kept[kKept];
    std::uint8_t* keptAt[kKept];
    int n = 0;
    const auto redoKept = [&]() {
        for (int k = 0; k < n; ++k) avx512::Store48(keptAt[k], ExactBytes<O>(v, kept[k], exact));
        n = 0;
    };
    int x = 0;
    for (; x + kStep <= width; x += kStep, s += kStepBytes, d += kStepBytes) {
        const __m512i raw = _mm512_maskz_loadu_epi8(kStepMask, s);
        const __m512i r = Spread(v, raw, O::r), g = Spread(v, raw, O::g), b = Spread(v, raw, O::b);
        const __m512i s0 = Sum(v, 0, r, g, b), s1 = Sum(v, 1, r, g, b), s2 = Sum(v, 2, r, g, b);
        avx512::Store48(d, FloorBytes(f, v, s0, s1, s2));
        kept[n] = raw;
        keptAt[n] = d;
        n += Near(s0, s1, s2) != 0;
        if (n == kKept) [[unlikely]] redoKept();
    }
    redoKept();
    if (x == width) return;
    // The last pixels: the lanes beyond them read zeros and are not stored.
    const std::uint64_t bytes = avx512::LowBytes(3 * (width - x));
    const __m512i raw = _mm512_maskz_loadu_epi8(bytes, s);
    const __m512i r = Spread(v, raw, O::r), g = Spread(v, raw, O::g), b = Spread(v, raw, O::b);
    const __m512i s0 = Sum(v, 0, r, g, b), s1 = Sum(v, 1, r, g, b), s2 = Sum(v, 2, r, g, b);
    const __m512i out = Near(s0, s1, s2) != 0 ? ExactBytes<O>(v, raw, exact) : FloorBytes(f, v, s0, s1, s2);
    _mm512_mask_storeu_epi8(d, bytes, out);
}

}  // namespace
}  // namespace kt::color::affine512


