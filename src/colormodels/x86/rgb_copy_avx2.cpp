// Byte swaps and complements of 3-byte pixels, five pixels a step with
// SSSE3 shuffles (every AVX2 processor has SSSE3).
#include "colormodels/x86/lanes_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {

// Each step converts five pixels and stores 16 bytes, the 16th being the
// next pixel's first byte written back unchanged (so a row converted in
// place reads it intact).
constexpr int kStepPixels = 5;
constexpr int kStepReach = 6;  // a step reads 16 bytes: pixels x .. x + 5

template <bool Swap, bool Invert>
void ShuffleRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    alignas(16) std::uint8_t order[16], flip[16];
    for (int i = 0; i < 16; ++i) {
        const int pixel = i / 3, at = i % 3;
        order[i] = static_cast<std::uint8_t>(i == 15 || !Swap ? i : 3 * pixel + (2 - at));
        flip[i] = static_cast<std::uint8_t>(i == 15 || !Invert ? 0 : 255);
    }
    const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(order));
    const __m128i complement = _mm_load_si128(reinterpret_cast<const __m128i*>(flip));
    avx2::StepRow<kStepPixels, kStepReach, 3, 3>(s, d, width, [&](const std::uint8_t* from, std::uint8_t* to) KT_STEP_INLINE {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_xor_si128(_mm_shuffle_epi8(v, shuffle), complement));
    });
}

// The swap ignores the order; CMY is RGB complemented in the same order, so
// a BGR side swaps as well.
template <class O>
void Swap(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    ShuffleRow<true, false>(s, d, width);
}
template <class O>
void Invert(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    ShuffleRow<O::r != 0, true>(s, d, width);
}

}  // namespace

const rows::OrderedRows kSwapAvx2 = KT_ORDERED_ROWS(Swap);
const rows::OrderedRows kInvertAvx2 = KT_ORDERED_ROWS(Invert);

}  // namespace kt::color::x86
