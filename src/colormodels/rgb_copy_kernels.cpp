// Byte shuffles between the two RGB orders and CMY.
#include "colormodels/kernel_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr std::uint8_t kFull = 255;

// Swaps bytes 0 and 2 of every pixel. Each pixel is read whole before it is
// written, so the rows may be converted in place.
template <class O>
void SwapRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
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

template <class O>
void InvertToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const std::uint8_t c = s[0], m = s[1], y = s[2];
        d[O::r] = static_cast<std::uint8_t>(kFull - c);
        d[O::g] = static_cast<std::uint8_t>(kFull - m);
        d[O::b] = static_cast<std::uint8_t>(kFull - y);
    }
}
constexpr rows::OrderedRows kSwapPlain = KT_ORDERED_ROWS(SwapRow);
constexpr rows::OrderedRows kInvertPlain = KT_ORDERED_ROWS(InvertRow);
constexpr rows::OrderedRows kInvertToRgbPlain = KT_ORDERED_ROWS(InvertToRgbRow);
constexpr rows::IsaRows kSwap{&kSwapPlain, KT_X86(kSwapAvx2)};
constexpr rows::IsaRows kInvert{&kInvertPlain, KT_X86(kInvertAvx2)};
constexpr rows::IsaRows kInvertToRgb{&kInvertToRgbPlain, KT_X86(kInvertAvx2)};

}  // namespace

// Only ever called between the two different hub orders (equal spaces are
// copied by the callers), so it always swaps, whatever the flag says.
KT_KERNEL(RgbToRgbCopy) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kSwap, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(RgbToCmy) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kInvert, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(CmyToRgb) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kInvertToRgb, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
