// Truncated affine combinations of three bytes (affine_fixed.h), eight
// pixels at a time with AVX2.
#pragma once

#if !defined(__AVX2__)
#error "include only from an AVX2 file (*_avx2.cpp)"
#endif

#include "colormodels/affine_fixed.h"
#include "colormodels/x86/lanes_avx2.h"



namespace kt::color::affine {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

// The broadcast coefficients, kept in memory so that the steps read them as
// operands; the biases, and per stored byte the sign flip and the sign
// threshold of the truncation fix (-128, never reached, where none applies).
struct Vectors {
    __m256i c[3][4];
    __m256i bias[3];
    __m256i flip;
    __m256i negative;
    explicit Vectors(const Fixed3& f) {
        for (int k = 0; k < 3; ++k) {
            for (int j = 0; j < 4; ++j) c[k][j] = _mm256_set1_epi32(f.c[k][j]);
            bias[k] = _mm256_set1_epi32(f.bias[k]);
        }
        alignas(32) std::uint8_t flips[32] = {};
        alignas(32) std::uint8_t signs[32];
        for (int j = 0; j < 32; ++j) {
            const int k = j % 16 < 12 ? j % 16 % 3 : -1;
            flips[j] = k >= 0 && f.bias[k] != 0 ? 0x80 : 0;
            signs[j] = k >= 0 && f.negative[k] ? 0 : 0x80;
        }
        flip = _mm256_load_si256(reinterpret_cast<const __m256i*>(flips));
        negative = _mm256_load_si256(reinterpret_cast<const __m256i*>(signs));
    }
};

// The biased fixed-point sum of one channel of eight pixels.
[[gnu::always_inline]] inline __m256i Sum(const Vectors& v, int k, __m256i r, __m256i g, __m256i b) {
    const __m256i s = _mm256_add_epi32(_mm256_mullo_epi32(r, v.c[k][0]), _mm256_mullo_epi32(g, v.c[k][1]));
    return _mm256_add_epi32(s, _mm256_add_epi32(_mm256_mullo_epi32(b, v.c[k][2]), v.c[k][3]));
}

// Lanes with a sum within the window of a whole number: the least fraction
// of the three falls below twice the window, so less that is negative.
constexpr int kFraction = (1 << kShift) - 1;
[[gnu::always_inline]] inline int Near(__m256i s0, __m256i s1, __m256i s2) {
    const __m256i fraction = _mm256_set1_epi32(kFraction);
    const __m256i f = _mm256_min_epi32(_mm256_min_epi32(_mm256_and_si256(s0, fraction), _mm256_and_si256(s1, fraction)),
                                       _mm256_and_si256(s2, fraction));
    return _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_sub_epi32(f, _mm256_set1_epi32(2 * kNear))));
}

// The stored bytes of eight pixels from their floors: packed, clamped,
// flipped to signed where biased, and one added to the negative ones.
[[gnu::always_inline]] inline __m256i FloorBytes(const Fixed3& f, const Vectors& v, const avx2::Masks& m, __m256i s0,
                                                 __m256i s1, __m256i s2) {
    const __m256i c0 = _mm256_srai_epi32(s0, kShift), c1 = _mm256_srai_epi32(s1, kShift),
                  c2 = _mm256_srai_epi32(s2, kShift);
    const __m256i bytes = _mm256_xor_si256(avx2::PackClamped(m, c0, c1, c2), v.flip);
    if (!(f.negative[0] || f.negative[1] || f.negative[2])) return bytes;
    return _mm256_sub_epi8(bytes, _mm256_cmpgt_epi8(v.negative, bytes));
}

// The stored bytes of four pixels (a step's half, raw) from the double
// formulas: exact(r, g, b, out) truncates the three channels of four pixels.
template <class O, class Exact>
[[gnu::always_inline]] inline __m128i ExactBytes(const Vectors& v, const avx2::Masks& m, __m128i raw, const Exact& exact) {
    __m128i lanes[3], c[3];
    for (int at = 0; at < 3; ++at) lanes[at] = _mm_shuffle_epi8(raw, _mm256_castsi256_si128(m.spread[at]));
    exact(_mm256_cvtepi32_pd(lanes[O::r]), _mm256_cvtepi32_pd(lanes[O::g]), _mm256_cvtepi32_pd(lanes[O::b]), c);
    for (int k = 0; k < 3; ++k) c[k] = _mm_add_epi32(c[k], _mm256_castsi256_si128(v.bias[k]));
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(c[0], c[1]), _mm_packs_epi32(c[2], c[2]));
    return _mm_xor_si128(_mm_shuffle_epi8(bytes, _mm256_castsi256_si128(m.interleave)), _mm256_castsi256_si128(v.flip));
}

// Stores the 12 bytes of four pixels.
[[gnu::always_inline]] inline void StoreHalf(std::uint8_t* d, __m128i v) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), v);
    const std::uint32_t last = static_cast<std::uint32_t>(_mm_extract_epi32(v, 2));
    std::memcpy(d + 8, &last, sizeof last);
}

// Converts an RGB row in steps of eight pixels; exact(r, g, b, out) is the
// double formula over four pixels. Every step is stored from the floors
// first; the raw bytes of each half with a pixel near a whole number are
// kept (without a branch, which would mispredict on every such step) and
// redone in a batch that overwrites exactly their 12 bytes, so rows
// converted in place work too.
constexpr int kKept = 32;
template <class O, class Exact>
[[gnu::always_inline]] inline void FromRgb(const Fixed3& f, const Vectors& v, const std::uint8_t* s, std::uint8_t* d,
                                          int width, const Exact& exact) {
    const avx2::Masks& m = avx2::TheMasks();
    __m128i kept[kKept];
    std::uint8_t* keptAt[kKept];
    int n = 0;
    const auto redoKept = [&]() {
        for (int k = 0; k < n; ++k) StoreHalf(keptAt[k], ExactBytes<O>(v, m, kept[k], exact));
        n = 0;
    };
    constexpr int kHalf = avx2::kStepBytes / 2;
    constexpr int kLowHalf = 0xF;
    int x = 0;
    for (; x + avx2::kStepReach <= width; x += avx2::kStep, s += avx2::kStepBytes, d += avx2::kStepBytes) {
        const avx2::Step st = avx2::Load(m, s);
        const __m256i r = st.c[O::r], g = st.c[O::g], b = st.c[O::b];
        const __m256i s0 = Sum(v, 0, r, g, b), s1 = Sum(v, 1, r, g, b), s2 = Sum(v, 2, r, g, b);
        avx2::StorePacked(m, d, st.raw, FloorBytes(f, v, m, s0, s1, s2));
        const int near = Near(s0, s1, s2);
        kept[n] = _mm256_castsi256_si128(st.raw);
        keptAt[n] = d;
        n += (near & kLowHalf) != 0;
        kept[n] = _mm256_extracti128_si256(st.raw, 1);
        keptAt[n] = d + kHalf;
        n += near > kLowHalf;
        if (n >= kKept - 1) [[unlikely]] redoKept();
    }
    redoKept();
    // The last pixels, which a step may not reach, through a zeroed copy.
    for (; x < width; x += avx2::kStep, s += avx2::kStepBytes, d += avx2::kStepBytes) {
        const int count = width - x < avx2::kStep ? width - x : avx2::kStep;
        alignas(32) std::uint8_t scratch[32] = {};
        std::memcpy(scratch, s, static_cast<std::size_t>(3 * count));
        const avx2::Step st = avx2::Load(m, scratch);
        const __m256i s0 = Sum(v, 0, st.c[O::r], st.c[O::g], st.c[O::b]);
        const __m256i s1 = Sum(v, 1, st.c[O::r], st.c[O::g], st.c[O::b]);
        const __m256i s2 = Sum(v, 2, st.c[O::r], st.c[O::g], st.c[O::b]);
        avx2::StorePacked(m, scratch, st.raw, FloorBytes(f, v, m, s0, s1, s2));
        const int near = Near(s0, s1, s2);
        if ((near & kLowHalf) != 0) StoreHalf(scratch, ExactBytes<O>(v, m, _mm256_castsi256_si128(st.raw), exact));
        if (near > kLowHalf)
            StoreHalf(scratch + kHalf, ExactBytes<O>(v, m, _mm256_extracti128_si256(st.raw, 1), exact));
        std::memcpy(d, scratch, static_cast<std::size_t>(3 * count));
    }
}

}  // namespace
}  // namespace kt::color::affine

