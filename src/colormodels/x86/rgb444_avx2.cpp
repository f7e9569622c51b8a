// 4-bit RGB (rgb444_kernels.cpp) in SSSE3 steps of eight pixels.
#include "colormodels/x86/lanes_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {

// Eight pixels a step with SSSE3, the narrow variant (every AVX2 processor
// has SSSE3). Each 16-bit lane is built as the code word
// itself (low byte first): from RGB, lanes holding (R, G) and (0, B) give
// R >> 4, G & 0xF0 and B >> 4 by shifts and masks; to RGB, the shifted word
// holds R and B, the word itself G, and byte shuffles place them. The scalar
// last pixels go through the scratch copy of avx2::StepRow.
constexpr int kStepPixels = 8;
constexpr std::uint8_t kZero = 0x80;  // a shuffle index that yields 0

inline __m128i Load(const std::uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

// Shuffle picking byte 'at' of pixel (first + i / 2) for even or odd lanes.
struct Pick {
    alignas(16) std::uint8_t m[16];
};
constexpr Pick PickBytes(int base, int lowAt, int highAt, int first, int count) {
    Pick p{};
    for (int i = 0; i < 16; ++i) {
        const int pixel = i / 2;
        const int at = i % 2 == 0 ? lowAt : highAt;
        p.m[i] = pixel >= first && pixel < first + count && at >= 0
                     ? static_cast<std::uint8_t>(3 * pixel + at - base)
                     : kZero;
    }
    return p;
}

template <class O>
void FromRgbSteps(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    // Pixels 0-3 from the bytes at s, pixels 4-7 from the bytes at s + 8.
    static constexpr Pick kRgLow = PickBytes(0, O::r, O::g, 0, 4), kRgHigh = PickBytes(8, O::r, O::g, 4, 4);
    static constexpr Pick kBLow = PickBytes(0, -1, O::b, 0, 4), kBHigh = PickBytes(8, -1, O::b, 4, 4);
    const __m128i rgLow = Load(kRgLow.m), rgHigh = Load(kRgHigh.m), bLow = Load(kBLow.m), bHigh = Load(kBHigh.m);
    const __m128i lowNibble = _mm_set1_epi16(0x000F), gMask = _mm_set1_epi16(static_cast<short>(0xF000)),
                  bMask = _mm_set1_epi16(0x0F00);
    avx2::StepRow<kStepPixels, kStepPixels, 3, 2>(s, d, width, [&](const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const __m128i a = Load(from), b = Load(from + 8);
        const __m128i rg = _mm_or_si128(_mm_shuffle_epi8(a, rgLow), _mm_shuffle_epi8(b, rgHigh));
        const __m128i bl = _mm_or_si128(_mm_shuffle_epi8(a, bLow), _mm_shuffle_epi8(b, bHigh));
        const __m128i word = _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi16(rg, 4), lowNibble),
                                                       _mm_and_si128(rg, gMask)),
                                          _mm_and_si128(_mm_srli_epi16(bl, 4), bMask));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), word);
    });
}

// Output byte 'i' (of 24) from lane bytes: R and B from the shifted word,
// G from the word itself.
struct Place {
    alignas(16) std::uint8_t shifted[2][16];
    alignas(16) std::uint8_t plain[2][16];
};
template <class O>
constexpr Place MakePlace() {
    Place p{};
    for (int i = 0; i < 24; ++i) {
        const int pixel = i / 3, at = i % 3;
        const auto lane = static_cast<std::uint8_t>(2 * pixel);
        p.shifted[i / 16][i % 16] = at == O::r ? lane : at == O::b ? static_cast<std::uint8_t>(lane + 1) : kZero;
        p.plain[i / 16][i % 16] = at == O::g ? static_cast<std::uint8_t>(lane + 1) : kZero;
    }
    for (int i = 24; i < 32; ++i) p.shifted[1][i - 16] = p.plain[1][i - 16] = kZero;
    return p;
}

template <class O>
void ToRgbSteps(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    static constexpr Place kPlace = MakePlace<O>();
    const __m128i sh0 = Load(kPlace.shifted[0]), sh1 = Load(kPlace.shifted[1]);
    const __m128i pl0 = Load(kPlace.plain[0]), pl1 = Load(kPlace.plain[1]);
    const __m128i rbMask = _mm_set1_epi16(static_cast<short>(0xF0F0)), gMask = _mm_set1_epi16(static_cast<short>(0xF000));
    avx2::StepRow<kStepPixels, kStepPixels, 2, 3>(s, d, width, [&](const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const __m128i word = Load(from);
        const __m128i rb = _mm_and_si128(_mm_slli_epi16(word, 4), rbMask);
        const __m128i g = _mm_and_si128(word, gMask);
        const __m128i first = _mm_or_si128(_mm_shuffle_epi8(rb, sh0), _mm_shuffle_epi8(g, pl0));
        const __m128i rest = _mm_or_si128(_mm_shuffle_epi8(rb, sh1), _mm_shuffle_epi8(g, pl1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), first);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16), rest);
    });
}
}  // namespace

const rows::OrderedRows kRgbToRgb444Avx2 = KT_ORDERED_ROWS(FromRgbSteps);
const rows::OrderedRows kRgb444ToRgbAvx2 = KT_ORDERED_ROWS(ToRgbSteps);

}  // namespace kt::color::x86
