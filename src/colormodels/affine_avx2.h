// Truncated affine combinations of three bytes, eight pixels at a time, in
// 22-bit fixed point. Each coefficient is the formula's exact decimal
// coefficient (with its scaling) rounded to 2^-22, so a sum of three bytes
// errs by at most 3 x 255 x 2^-23 + 2^-23 < 384 x 2^-22 from the exact value
// of the formula, while the double arithmetic errs by far less than 2^-40.
// Where the fixed-point sum lies more than kNear x 2^-22 from a whole number
// both therefore truncate alike; the pixels with a sum closer to one (sums
// that are whole in exact arithmetic among them) are redone with the double
// formula. The exhaustive tests prove every kernel built on this.
#pragma once

#include "colormodels/lanes_avx2.h"

namespace kt::color::affine {

constexpr int kShift = 22;
constexpr double kScale = 1 << kShift;
constexpr int kNear = 512;

// An output byte: trunc(clamp(cr R + cg G + cb B + offset, lo, hi)).
struct Channel {
    double cr, cg, cb, offset;
    int lo, hi;
};

constexpr int Fixed(double c) { return static_cast<int>(c * kScale + (c < 0 ? -0.5 : 0.5)); }

// The three channels of a pixel as fixed-point integers. Every channel spans
// 256 values, lo to lo + 255, and its sum is biased by -lo so that the
// saturating packs clamp it; the bias is flipped back in the stored byte
// (lo is 0 or -128). The window is added to the offset as well: away from
// whole numbers that changes no floor.
struct Fixed3 {
    int c[3][4];
    int bias[3];        // -lo, in whole numbers
    bool negative[3];   // sums below 0 occur: truncation is the floor plus 1
    bool flip = false;  // some channel is stored as a signed byte
    bool bytes = true;  // every channel spans a byte, unsigned or signed
    constexpr explicit Fixed3(const Channel (&ch)[3]) : c{}, bias{}, negative{} {
        for (int k = 0; k < 3; ++k) {
            const double co[3] = {ch[k].cr, ch[k].cg, ch[k].cb};
            double least = ch[k].offset;
            for (int j = 0; j < 3; ++j) {
                c[k][j] = Fixed(co[j]);
                if (co[j] < 0) least += 255.0 * co[j];
            }
            bias[k] = -ch[k].lo;
            c[k][3] = Fixed(ch[k].offset) + kNear + (bias[k] << kShift);
            negative[k] = least < 0 && ch[k].lo < 0;
            flip = flip || bias[k] != 0;
            bytes = bytes && ch[k].hi - ch[k].lo == 255 && (bias[k] == 0 || bias[k] == 128);
        }
    }
};

}  // namespace kt::color::affine

#pragma GCC push_options
#pragma GCC target("avx2")

namespace kt::color::affine {

// The broadcast coefficients, kept in memory so that the steps read them as
// operands, and the sign flips of the stored bytes.
struct Vectors {
    __m256i c[3][4];
    __m256i zero[3];  // the biased sum of 0
    __m256i flip;
    explicit Vectors(const Fixed3& f) {
        for (int k = 0; k < 3; ++k) {
            for (int j = 0; j < 4; ++j) c[k][j] = _mm256_set1_epi32(f.c[k][j]);
            zero[k] = _mm256_set1_epi32(f.bias[k] << kShift);
        }
        alignas(32) std::uint8_t bytes[32] = {};
        for (int j = 0; j < 12; ++j) bytes[j] = bytes[16 + j] = f.bias[j % 3] != 0 ? 0x80 : 0;
        flip = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes));
    }
};

// The biased fixed-point sum of one channel of eight pixels.
[[gnu::always_inline]] inline __m256i Sum(const Vectors& v, int k, __m256i r, __m256i g, __m256i b) {
    const __m256i s = _mm256_add_epi32(_mm256_mullo_epi32(r, v.c[k][0]), _mm256_mullo_epi32(g, v.c[k][1]));
    return _mm256_add_epi32(s, _mm256_add_epi32(_mm256_mullo_epi32(b, v.c[k][2]), v.c[k][3]));
}

// Its truncation, biased: away from whole numbers the floor, plus one for a
// negative sum.
[[gnu::always_inline]] inline __m256i Truncate(const Fixed3& f, const Vectors& v, int k, __m256i s) {
    const __m256i t = _mm256_srai_epi32(s, kShift);
    return f.negative[k] ? _mm256_sub_epi32(t, _mm256_cmpgt_epi32(v.zero[k], s)) : t;
}

// Lanes with a sum within the window of a whole number: the fraction bits
// moved to the top fall below twice the window.
constexpr int kFractionTop = 32 - kShift;
[[gnu::always_inline]] inline int Near(__m256i s0, __m256i s1, __m256i s2) {
    const __m256i f = _mm256_min_epu32(_mm256_min_epu32(_mm256_slli_epi32(s0, kFractionTop), _mm256_slli_epi32(s1, kFractionTop)),
                                       _mm256_slli_epi32(s2, kFractionTop));
    const __m256i low = _mm256_cmpeq_epi32(_mm256_srli_epi32(f, kFractionTop + 1 + __builtin_ctz(kNear)), _mm256_setzero_si256());
    return _mm256_movemask_ps(_mm256_castsi256_ps(low));
}

// Converts an RGB row in steps of eight pixels; pixel(in, out) converts one
// pixel with the double formula.
template <class O, class Pixel>
[[gnu::always_inline]] inline void FromRgb(const Fixed3& f, const Vectors& v, const std::uint8_t* s, std::uint8_t* d,
                                          int width, const Pixel& pixel) {
    avx2::Steps(s, d, width, [&](const avx2::Masks& m, const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const avx2::Step st = avx2::Load(m, from);
        const __m256i r = st.c[O::r], g = st.c[O::g], b = st.c[O::b];
        const __m256i s0 = Sum(v, 0, r, g, b), s1 = Sum(v, 1, r, g, b), s2 = Sum(v, 2, r, g, b);
        const __m256i c0 = Truncate(f, v, 0, s0), c1 = Truncate(f, v, 1, s1), c2 = Truncate(f, v, 2, s2);
        const int redo = Near(s0, s1, s2);
        const auto store = [&]() KT_STEP_INLINE {
            avx2::StoreClamped(m, to, st.raw, c0, c1, c2, f.flip ? v.flip : _mm256_setzero_si256());
        };
        if (redo == 0) {
            store();
            return;
        }
        std::uint8_t in[avx2::kStepBytes];
        std::memcpy(in, from, sizeof in);
        store();
        for (int k = 0; k < avx2::kStep; ++k)
            if (redo & (1 << k)) pixel(in + 3 * k, to + 3 * k);
    });
}

}  // namespace kt::color::affine

#pragma GCC pop_options
