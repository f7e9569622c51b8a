// 4-bit RGB both ways, thirty-two pixels a step with AVX-512: byte permutes
// over two registers gather the 96 RGB bytes into code words or spread the
// 64 code bytes into RGB bytes, and word shifts and masks do the nibbles.
// Masked loads and stores take the row's last pixels.
#pragma once

#include "colormodels/x86/avx512.h"

#include <cstdint>

namespace kt::color::rgb444_512 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

constexpr int kStep = 32;        // pixels per step
constexpr int kRgbBytes = 96;    // their RGB bytes
constexpr int kCodeBytes = 64;   // their code bytes
constexpr int kRegister = avx512::kRegisterBytes;  // permute indices from here pick the second register
constexpr std::uint64_t kHighBytes = 0xAAAAAAAAAAAAAAAA;  // byte 1 of each 16-bit lane
constexpr int kBitSelect = 0xCA;  // ternary logic: a ? b : c, bit by bit

struct Vectors {
    __m512i rb;          // from RGB: (R, B) per code word
    __m512i g;           // from RGB: G in the high byte
    __m512i spread[2];   // to RGB: output bytes 0-63 and 64-95 from (shifted word, word)
    Vectors(int r, int g0, int b) {
        alignas(64) std::uint8_t bytes[4][64] = {};
        for (int i = 0; i < kStep; ++i) {
            bytes[0][2 * i] = static_cast<std::uint8_t>(3 * i + r);
            bytes[0][2 * i + 1] = static_cast<std::uint8_t>(3 * i + b);
            bytes[1][2 * i + 1] = static_cast<std::uint8_t>(3 * i + g0);
        }
        // The shifted word holds R in its low byte and B in its high one;
        // the word itself holds G in its high byte.
        for (int k = 0; k < kRgbBytes; ++k) {
            const int pixel = k / 3, at = k % 3;
            const int from = at == r ? 2 * pixel : at == b ? 2 * pixel + 1 : kRegister + 2 * pixel + 1;
            bytes[2 + k / kRegister][k % kRegister] = static_cast<std::uint8_t>(from);
        }
        rb = _mm512_load_si512(bytes[0]);
        g = _mm512_load_si512(bytes[1]);
        spread[0] = _mm512_load_si512(bytes[2]);
        spread[1] = _mm512_load_si512(bytes[3]);
    }
};

// The 64 code bytes of 32 pixels whose RGB bytes are lo (0-63) and hi (64-95).
[[gnu::always_inline]] inline __m512i Codes(const Vectors& m, __m512i lo, __m512i hi) {
    const __m512i rb = _mm512_permutex2var_epi8(lo, m.rb, hi);
    const __m512i g = _mm512_maskz_permutex2var_epi8(kHighBytes, lo, m.g, hi);
    // Low nibbles from R >> 4 and B >> 4, high nibbles from G & 0xF0 (or 0).
    return _mm512_ternarylogic_epi32(_mm512_set1_epi16(0x0F0F), _mm512_srli_epi16(rb, 4), g, kBitSelect);
}

template <class O>
void FromRgbRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const Vectors m(O::r, O::g, O::b);
    int x = 0;
    for (; x + kStep <= width; x += kStep, s += kRgbBytes, d += kCodeBytes) {
        const __m512i lo = _mm512_loadu_si512(s);
        const __m512i hi = _mm512_zextsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + kRegister)));
        _mm512_storeu_si512(d, Codes(m, lo, hi));
    }
    if (x == width) return;
    // The last pixels: the bytes beyond them read as zeros and are not stored.
    const int n = 3 * (width - x);
    const __m512i lo = _mm512_maskz_loadu_epi8(avx512::UpToAllBytes(n), s);
    const __m512i hi = n > kRegister ? _mm512_maskz_loadu_epi8(avx512::UpToAllBytes(n - kRegister), s + kRegister)
                                     : _mm512_setzero_si512();
    _mm512_mask_storeu_epi8(d, avx512::UpToAllBytes(2 * (width - x)), Codes(m, lo, hi));
}

// R = code byte 0 << 4, G = code byte 1 & 0xF0, B = code byte 1 << 4: the
// word shifted left by four holds R and B in its high nibbles.
[[gnu::always_inline]] inline void Spread(const Vectors& m, __m512i word, __m512i* out) {
    const __m512i high = _mm512_set1_epi8(static_cast<char>(0xF0));
    const __m512i shifted = _mm512_slli_epi16(word, 4);
    out[0] = _mm512_and_si512(_mm512_permutex2var_epi8(shifted, m.spread[0], word), high);
    out[1] = _mm512_and_si512(_mm512_permutex2var_epi8(shifted, m.spread[1], word), high);
}

template <class O>
void ToRgbRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static const Vectors m(O::r, O::g, O::b);
    __m512i out[2];
    int x = 0;
    for (; x + kStep <= width; x += kStep, s += kCodeBytes, d += kRgbBytes) {
        Spread(m, _mm512_loadu_si512(s), out);
        _mm512_storeu_si512(d, out[0]);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + kRegister), _mm512_castsi512_si256(out[1]));
    }
    if (x == width) return;
    // The last pixels: the bytes beyond them read as zeros and are not stored.
    const int n = 3 * (width - x);
    Spread(m, _mm512_maskz_loadu_epi8(avx512::UpToAllBytes(2 * (width - x)), s), out);
    _mm512_mask_storeu_epi8(d, avx512::UpToAllBytes(n), out[0]);
    if (n > kRegister) _mm512_mask_storeu_epi8(d + kRegister, avx512::UpToAllBytes(n - kRegister), out[1]);
}

}  // namespace
}  // namespace kt::color::rgb444_512

