// Byte shuffles between the two RGB orders and CMY.
#include <tmmintrin.h>

#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr std::uint8_t kFull = 255;

// Swaps bytes 0 and 2 of every pixel. Each pixel is read whole before it is
// written, so the rows may be converted in place.
void SwapRow(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const std::uint8_t b0 = s[0], b1 = s[1], b2 = s[2];
        d[0] = b2;
        d[1] = b1;
        d[2] = b0;
    }
}

// CMY is the complement of RGB in the same order, so the RGB order flag
// only decides which CMY byte goes where: complementing and swapping.
template <class O>
void InvertRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const std::uint8_t r = s[O::r], g = s[O::g], b = s[O::b];
        d[0] = static_cast<std::uint8_t>(kFull - r);
        d[1] = static_cast<std::uint8_t>(kFull - g);
        d[2] = static_cast<std::uint8_t>(kFull - b);
    }
}

// Swap and complement 16 bytes at a time with SSSE3: each step converts five
// pixels and stores 16 bytes, the 16th being the next pixel's first byte
// written back unchanged (so a row converted in place reads it intact). The
// remaining pixels go through the scalar rows.
struct Shuffle {
    bool swap;    // exchange bytes 0 and 2 of each pixel
    bool invert;  // complement every byte
};
constexpr int kVectorPixels = 5;
constexpr int kVectorReach = 6;  // a step reads 16 bytes: pixels x .. x + 5

[[gnu::target("ssse3")]] int ShuffleBlocks(Shuffle how, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    alignas(16) std::uint8_t order[16], flip[16];
    for (int i = 0; i < 16; ++i) {
        const int pixel = i / 3, at = i % 3;
        order[i] = static_cast<std::uint8_t>(i == 15 || !how.swap ? i : 3 * pixel + (2 - at));
        flip[i] = static_cast<std::uint8_t>(i == 15 || !how.invert ? 0 : kFull);
    }
    const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(order));
    const __m128i complement = _mm_load_si128(reinterpret_cast<const __m128i*>(flip));
    int x = 0;
    for (; x + kVectorReach <= width; x += kVectorPixels, s += 3 * kVectorPixels, d += 3 * kVectorPixels) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_xor_si128(_mm_shuffle_epi8(v, shuffle), complement));
    }
    return x;
}

bool HasSsse3() noexcept {
    static const bool has = __builtin_cpu_supports("ssse3");
    return has;
}

// Runs the vector steps where the processor has them, then the scalar row
// on what is left.
template <class Tail>
void ShuffleRow(Shuffle how, const std::uint8_t* s, std::uint8_t* d, int width, Tail tail) noexcept {
    const int done = HasSsse3() ? ShuffleBlocks(how, s, d, width) : 0;
    tail(s + 3 * done, d + 3 * done, width - done);
}

template <class O>
void InvertToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const std::uint8_t c = s[0], m = s[1], y = s[2];
        d[O::r] = static_cast<std::uint8_t>(kFull - c);
        d[O::g] = static_cast<std::uint8_t>(kFull - m);
        d[O::b] = static_cast<std::uint8_t>(kFull - y);
    }
}
}  // namespace

// Only ever called between the two different hub orders (equal spaces are
// copied by the callers), so it always swaps, whatever the flag says.
KT_KERNEL(RgbToRgbCopy) {
    (void)black;
    return rows::Walk(rows::kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ShuffleRow({true, false}, s, d, w, SwapRow);
                      });
}

KT_KERNEL(RgbToCmy) {
    (void)black;
    return rows::Walk(rows::kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ShuffleRow({o.r != 0, true}, s, d, w, [o](auto... a) { InvertRow(o, a...); });
                      });
}

KT_KERNEL(CmyToRgb) {
    (void)black;
    return rows::Walk(rows::kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ShuffleRow({o.r != 0, true}, s, d, w, [o](auto... a) { InvertToRgbRow(o, a...); });
                      });
}

}  // namespace kt::color
