// AVX2 steps over 3-byte pixels, eight at a time: the bytes of each position
// spread into 32-bit lanes and packed back with byte shuffles. Everything
// here is compiled for AVX2 only (files named *_avx2.cpp), which the
// dispatcher runs only on processors that have it.
#pragma once

#if !defined(__AVX2__)
#error "include only from an AVX2 file (*_avx2.cpp)"
#endif

#include <immintrin.h>

#include <cstdint>
#include <cstring>


namespace kt::color::avx2 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

constexpr int kStep = 8;          // pixels per step
constexpr int kStepBytes = 24;    // bytes they occupy
// A step reads and writes 28 bytes (the last four written back unchanged),
// so it may only run while 10 whole pixels are left in the row.
constexpr int kStepReach = 10;

// Pixels x .. x + 7 with the 32-bit lanes of byte positions 0, 1 and 2, and
// the raw bytes (each 128-bit half holds four pixels and four spare bytes).
struct Step {
    __m256i raw;
    __m256i c[3];
};

inline __m256i Spread(int at) {
    alignas(32) std::int8_t m[32];
    for (int half = 0; half < 2; ++half)
        for (int k = 0; k < 4; ++k) {
            std::int8_t* lane = m + 16 * half + 4 * k;
            lane[0] = static_cast<std::int8_t>(3 * k + at);
            lane[1] = lane[2] = lane[3] = -1;
        }
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(m));
}

inline __m256i Pack(int at) {
    alignas(32) std::int8_t m[32];
    for (int half = 0; half < 2; ++half)
        for (int j = 0; j < 16; ++j) m[16 * half + j] = static_cast<std::int8_t>(j < 12 && j % 3 == at ? 4 * (j / 3) : -1);
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(m));
}

// Interleaves the bytes c0 0-3, c1 0-3, c2 0-3 of each half.
inline __m256i Interleave() {
    alignas(32) std::int8_t m[32];
    for (int half = 0; half < 2; ++half)
        for (int j = 0; j < 16; ++j) m[16 * half + j] = static_cast<std::int8_t>(j < 12 ? 4 * (j % 3) + j / 3 : -1);
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(m));
}

// The shuffle masks, built once per process.
struct Masks {
    __m256i spread[3], pack[3], interleave, spare;
    Masks() {
        for (int at = 0; at < 3; ++at) {
            spread[at] = Spread(at);
            pack[at] = Pack(at);
        }
        interleave = Interleave();
        spare = _mm256_setr_epi32(0, 0, 0, -1, 0, 0, 0, -1);
    }
};

inline const Masks& TheMasks() {
    static const Masks masks;
    return masks;
}

[[gnu::always_inline]] inline Step Load(const Masks& m, const std::uint8_t* s) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 12));
    Step st;
    st.raw = _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
    for (int at = 0; at < 3; ++at) st.c[at] = _mm256_shuffle_epi8(st.raw, m.spread[at]);
    return st;
}

// Stores the low bytes of the lanes c0, c1, c2 as byte positions 0, 1, 2.
// The four bytes after the eighth pixel get back what Load read there, so a
// row converted in place keeps the next pixel intact.
[[gnu::always_inline]] inline void Store(const Masks& m, std::uint8_t* d, const __m256i raw, __m256i c0, __m256i c1,
                                         __m256i c2) {
    __m256i v = _mm256_or_si256(_mm256_shuffle_epi8(c0, m.pack[0]), _mm256_shuffle_epi8(c1, m.pack[1]));
    v = _mm256_or_si256(v, _mm256_shuffle_epi8(c2, m.pack[2]));
    v = _mm256_or_si256(v, _mm256_and_si256(raw, m.spare));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 12), _mm256_extracti128_si256(v, 1));
}

// Store for lanes that are clamped to 0..255 on the way: the saturating
// packs do the clamping. The stored bytes are xor-ed with flip.
[[gnu::always_inline]] inline void StoreClamped(const Masks& m, std::uint8_t* d, const __m256i raw, __m256i c0,
                                                __m256i c1, __m256i c2, __m256i flip = _mm256_setzero_si256()) {
    const __m256i words = _mm256_packs_epi32(c0, c1);
    __m256i v = _mm256_packus_epi16(words, _mm256_packs_epi32(c2, c2));
    v = _mm256_xor_si256(_mm256_shuffle_epi8(v, m.interleave), flip);
    v = _mm256_or_si256(v, _mm256_and_si256(raw, m.spare));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 12), _mm256_extracti128_si256(v, 1));
}

// The lanes c0, c1, c2 packed with saturation to bytes 0..255 and
// interleaved as byte positions 0, 1, 2 of each half's four pixels.
[[gnu::always_inline]] inline __m256i PackClamped(const Masks& m, __m256i c0, __m256i c1, __m256i c2) {
    const __m256i words = _mm256_packs_epi32(c0, c1);
    return _mm256_shuffle_epi8(_mm256_packus_epi16(words, _mm256_packs_epi32(c2, c2)), m.interleave);
}

// Stores packed pixel bytes; the four bytes after the eighth pixel get back
// what Load read there.
[[gnu::always_inline]] inline void StorePacked(const Masks& m, std::uint8_t* d, const __m256i raw, __m256i v) {
    v = _mm256_or_si256(v, _mm256_and_si256(raw, m.spare));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 12), _mm256_extracti128_si256(v, 1));
}

// trunc(clamp(x, lo, hi)) of four doubles, as the scalar clamp and
// conversion do it (no not-a-number reaches here).
[[gnu::always_inline]] inline __m128i TruncateClamped(__m256d x, double lo, double hi) {
    return _mm256_cvttpd_epi32(_mm256_min_pd(_mm256_max_pd(x, _mm256_set1_pd(lo)), _mm256_set1_pd(hi)));
}

// The one way an instruction set's row ends: steps of Pixels pixels
// (InBytes and OutBytes a pixel) run while Reach pixels are left, since a
// step may read or write past its own pixels; the last pixels go through a
// zeroed scratch copy, one step at a time.
template <int Pixels, int Reach, int InBytes, int OutBytes, class F>
[[gnu::always_inline]] inline void StepRow(const std::uint8_t* s, std::uint8_t* d, int width, const F& step) {
    int x = 0;
    for (; x + Reach <= width; x += Pixels, s += InBytes * Pixels, d += OutBytes * Pixels) step(s, d);
    for (; x < width; x += Pixels, s += InBytes * Pixels, d += OutBytes * Pixels) {
        const int n = width - x < Pixels ? width - x : Pixels;
        alignas(64) std::uint8_t scratch[64] = {};
        static_assert(InBytes * Reach <= 64 && OutBytes * Reach <= 64);
        std::memcpy(scratch, s, static_cast<std::size_t>(InBytes * n));
        step(scratch, scratch);
        std::memcpy(d, scratch, static_cast<std::size_t>(OutBytes * n));
    }
}

// Runs step(masks, s, d) over a row of 3-byte pixels, eight at a time. The
// step must be inlined (KT_STEP_INLINE) so that the masks and constants stay
// in registers.
#define KT_STEP_INLINE __attribute__((always_inline))
template <class F>
[[gnu::always_inline]] inline void Steps(const std::uint8_t* s, std::uint8_t* d, int width, const F& step) {
    const Masks& m = TheMasks();
    StepRow<kStep, kStepReach, 3, 3>(s, d, width,
                                     [&](const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE { step(m, from, to); });
}

// rows::ExactQuotient for eight lanes: one exact single-precision division.
[[gnu::always_inline]] inline __m256i Quotient(__m256i a, __m256i c) {
    return _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(a), _mm256_cvtepi32_ps(c)));
}

// rows::Max3 and rows::Min3 for eight lanes.
[[gnu::always_inline]] inline __m256i Max3(__m256i a, __m256i b, __m256i c) {
    return _mm256_max_epi32(a, _mm256_max_epi32(b, c));
}
[[gnu::always_inline]] inline __m256i Min3(__m256i a, __m256i b, __m256i c) {
    return _mm256_min_epi32(a, _mm256_min_epi32(b, c));
}

// Which channel is the largest, mx: red, else green (the hue formulas'
// order of preference), as lane masks.
struct Largest {
    __m256i isR, isG;
};
[[gnu::always_inline]] inline Largest LargestOf(__m256i mx, __m256i r, __m256i g) {
    const __m256i isR = _mm256_cmpeq_epi32(mx, r);
    return {isR, _mm256_andnot_si256(isR, _mm256_cmpeq_epi32(mx, g))};
}

// The lane-wise clamp.
[[gnu::always_inline]] inline __m256i Clamp(__m256i v, int lo, int hi) {
    return _mm256_min_epi32(_mm256_max_epi32(v, _mm256_set1_epi32(lo)), _mm256_set1_epi32(hi));
}

}  // namespace
}  // namespace kt::color::avx2

