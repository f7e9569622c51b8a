// Packed 4:2:2 to RGB, sixteen pixels a step with AVX-512: byte permutes
// spread the 32 packed bytes into word pairs (Y, V) and (Y, U) per pixel,
// pairwise word products give the integer sums of packed_yuv_math.h, an
// arithmetic shift floors them, saturating packs clamp them to bytes and a
// last permute interleaves the 48 RGB bytes. Masked loads and stores take
// the row's last pixels.
#pragma once

#include "colormodels/x86/avx512.h"

#include <cstdint>

#include "colormodels/packed_yuv_math.h"

namespace kt::color::packed512 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

constexpr int kStep = 16;  // pixels per step
constexpr int kInBytes = 32;
constexpr int kOutBytes = 48;
constexpr std::uint64_t kWordLows = 0x5555555555555555;  // bytes 0 and 2 of each 32-bit lane
constexpr std::uint64_t kLaneLows = 0x1111111111111111;  // byte 0 of each 32-bit lane

// Byte positions of Y0, U, Y1, V in a 4-byte group, and of R, G, B in a
// pixel.
struct Positions {
    int y0, u, y1, v;
    int r, g, b;
};

// Two 16-bit coefficients as one 32-bit lane value for the word products.
constexpr int WordPair(int low, int high) {
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint16_t>(low)) |
                            static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16);
}

struct Vectors {
    __m512i yv, yu, v;   // permutes: (Y, V) and (Y, U) word pairs, V alone
    __m512i interleave;  // packed R, G, B of each 128-bit lane to pixel bytes
    explicit Vectors(const Positions& at) {
        alignas(64) std::uint8_t bytes[4][64] = {};
        for (int i = 0; i < kStep; ++i) {
            const int group = 4 * (i / 2), y = group + (i % 2 == 0 ? at.y0 : at.y1);
            bytes[0][4 * i] = bytes[1][4 * i] = static_cast<std::uint8_t>(y);
            bytes[0][4 * i + 2] = bytes[2][4 * i] = static_cast<std::uint8_t>(group + at.v);
            bytes[1][4 * i + 2] = static_cast<std::uint8_t>(group + at.u);
            // The packs leave lane j's four pixels as R x4, G x4, B x4.
            const int channel[3] = {at.r, at.g, at.b};
            for (int c = 0; c < 3; ++c)
                bytes[3][3 * i + channel[c]] = static_cast<std::uint8_t>(16 * (i / 4) + 4 * c + i % 4);
        }
        yv = _mm512_load_si512(bytes[0]);
        yu = _mm512_load_si512(bytes[1]);
        v = _mm512_load_si512(bytes[2]);
        interleave = _mm512_load_si512(bytes[3]);
    }
};

// The 48 RGB bytes of the sixteen pixels in the low 32 bytes of raw.
[[gnu::always_inline]] inline __m512i Pixels(const Vectors& m, __m512i raw) {
    using namespace yuv;
    const __m512i yv = _mm512_maskz_permutexvar_epi8(kWordLows, m.yv, raw);
    const __m512i yu = _mm512_maskz_permutexvar_epi8(kWordLows, m.yu, raw);
    const __m512i v = _mm512_maskz_permutexvar_epi8(kLaneLows, m.v, raw);
    const __m512i r = _mm512_add_epi32(_mm512_madd_epi16(yv, _mm512_set1_epi32(WordPair(kLumaGain, kRedV))),
                                       _mm512_set1_epi32(kRedBias));
    const __m512i g = _mm512_add_epi32(
        _mm512_add_epi32(_mm512_madd_epi16(yu, _mm512_set1_epi32(WordPair(kLumaGain, kGreenU))),
                         _mm512_madd_epi16(v, _mm512_set1_epi32(WordPair(kGreenV, 0)))),
        _mm512_set1_epi32(kGreenBias));
    const __m512i b = _mm512_add_epi32(_mm512_madd_epi16(yu, _mm512_set1_epi32(WordPair(kLumaGain, kBlueU))),
                                       _mm512_set1_epi32(kBlueBias));
    const __m512i rg = _mm512_packs_epi32(_mm512_srai_epi32(r, kInverseShift), _mm512_srai_epi32(g, kInverseShift));
    const __m512i bb = _mm512_packs_epi32(_mm512_srai_epi32(b, kInverseShift), _mm512_srai_epi32(b, kInverseShift));
    return _mm512_permutexvar_epi8(m.interleave, _mm512_packus_epi16(rg, bb));
}

// A row of the 4-byte groups with Y0, U, Y1, V at the given positions to
// pixels in the order O.
template <int Y0, int U, int Y1, int V, class O>
void ToRgbRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const Vectors m(Positions{Y0, U, Y1, V, O::r, O::g, O::b});
    int x = 0;
    for (; x + kStep <= width; x += kStep, s += kInBytes, d += kOutBytes) {
        const __m512i raw = _mm512_zextsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s)));
        avx512::Store48(d, Pixels(m, raw));
    }
    if (x == width) return;
    // The last pixels: the lanes beyond them read zeros and are not stored.
    const int n = width - x;
    const __m512i raw = _mm512_maskz_loadu_epi8(avx512::LowBytes(2 * n), s);
    _mm512_mask_storeu_epi8(d, avx512::LowBytes(3 * n), Pixels(m, raw));
}

}  // namespace
}  // namespace kt::color::packed512

