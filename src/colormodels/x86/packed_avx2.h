// Packed 4:2:2 to RGB, eight pixels a step with AVX2: the 16 packed bytes
// go to both 128-bit halves, byte shuffles spread four pixels per half into
// word pairs (Y, V) and (Y, U), pairwise word products give the integer sums
// of packed_yuv_math.h, an arithmetic shift floors them, saturating packs
// clamp them to bytes and a last shuffle interleaves twelve RGB bytes per
// half. Each half is stored as 16 bytes, the last four overwritten by what
// follows, so the steps stop two pixels short of the row's end and the
// scratch copy of avx2::StepRow takes the rest.
#pragma once

#include <cstdint>

#include "colormodels/packed_yuv_math.h"
#include "colormodels/x86/lanes_avx2.h"  // also the AVX2-only guard and the intrinsics

namespace kt::color::packed256 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

// Eight pixels a step, like the 3-byte steps, and the same reach: the
// second half's store ends four bytes past the step.
using avx2::kStep;
using avx2::kStepReach;
constexpr int kHalfOut = 12;
constexpr std::int8_t kZero = -1;  // a shuffle index that yields 0

struct Vectors {
    __m256i yv, yu, v;   // shuffles: (Y, V) and (Y, U) word pairs, V alone
    __m256i interleave;  // packed R, G, B of each half to pixel bytes
    Vectors(int y0, int u, int y1, int v0, int r, int g, int b) {
        alignas(32) std::int8_t bytes[4][32];
        for (auto& row : bytes)
            for (auto& x : row) x = kZero;
        for (int i = 0; i < kStep; ++i) {
            const int half = i / 4, k = i % 4, at = 16 * half + 4 * k;
            const int group = 4 * (i / 2), y = group + (i % 2 == 0 ? y0 : y1);
            bytes[0][at] = bytes[1][at] = static_cast<std::int8_t>(y);
            bytes[0][at + 2] = bytes[2][at] = static_cast<std::int8_t>(group + v0);
            bytes[1][at + 2] = static_cast<std::int8_t>(group + u);
            // The packs leave each half's four pixels as R x4, G x4, B x4.
            const int channel[3] = {r, g, b};
            for (int c = 0; c < 3; ++c)
                bytes[3][16 * half + 3 * k + channel[c]] = static_cast<std::int8_t>(4 * c + k);
        }
        yv = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[0]));
        yu = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[1]));
        v = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[2]));
        interleave = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[3]));
    }
};

// Two 16-bit coefficients as one 32-bit lane value for the word products.
constexpr int WordPair(int low, int high) {
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint16_t>(low)) |
                            static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16);
}

// A row of 4-byte groups with Y0, U, Y1, V at the given positions to pixels
// in the order O.
template <int Y0, int U, int Y1, int V, class O>
void ToRgbRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    using namespace yuv;
    static const Vectors m(Y0, U, Y1, V, O::r, O::g, O::b);
    const __m256i cR = _mm256_set1_epi32(WordPair(kLumaGain, kRedV));
    const __m256i cGyu = _mm256_set1_epi32(WordPair(kLumaGain, kGreenU)), cGv = _mm256_set1_epi32(WordPair(kGreenV, 0));
    const __m256i cB = _mm256_set1_epi32(WordPair(kLumaGain, kBlueU));
    const __m256i bR = _mm256_set1_epi32(kRedBias), bG = _mm256_set1_epi32(kGreenBias),
                  bB = _mm256_set1_epi32(kBlueBias);
    avx2::StepRow<kStep, kStepReach, 2, 3>(s, d, width, [&](const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const __m256i raw = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        const __m256i yv = _mm256_shuffle_epi8(raw, m.yv), yu = _mm256_shuffle_epi8(raw, m.yu),
                      v = _mm256_shuffle_epi8(raw, m.v);
        const __m256i r = _mm256_add_epi32(_mm256_madd_epi16(yv, cR), bR);
        const __m256i g =
            _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(yu, cGyu), _mm256_madd_epi16(v, cGv)), bG);
        const __m256i b = _mm256_add_epi32(_mm256_madd_epi16(yu, cB), bB);
        const __m256i rg = _mm256_packs_epi32(_mm256_srai_epi32(r, kInverseShift), _mm256_srai_epi32(g, kInverseShift));
        const __m256i bs = _mm256_srai_epi32(b, kInverseShift);
        const __m256i out = _mm256_shuffle_epi8(_mm256_packus_epi16(rg, _mm256_packs_epi32(bs, bs)), m.interleave);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(out));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + kHalfOut), _mm256_extracti128_si256(out, 1));
    });
}

}  // namespace
}  // namespace kt::color::packed256

