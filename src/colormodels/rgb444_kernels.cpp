// 4-bit RGB: two bytes per pixel, R in the low nibble of the first, G and B
// in the high and low nibbles of the second.
#include "colormodels/kernel_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kFromRgb{rows::kBits24, rows::kBits16};
constexpr rows::Shape kToRgb{rows::kBits16, rows::kBits24};
constexpr unsigned kHighNibble = 0xF0;
constexpr int kNibbleShift = 4;

template <class O>
void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 2) {
        const unsigned r = s[O::r], g = s[O::g], b = s[O::b];
        d[0] = static_cast<std::uint8_t>(r >> kNibbleShift);
        d[1] = static_cast<std::uint8_t>((g & kHighNibble) | (b >> kNibbleShift));
    }
}

template <class O>
void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 2, d += 3) {
        const unsigned b0 = s[0], b1 = s[1];
        d[O::r] = static_cast<std::uint8_t>(b0 << kNibbleShift);
        d[O::g] = static_cast<std::uint8_t>(b1 & kHighNibble);
        d[O::b] = static_cast<std::uint8_t>(b1 << kNibbleShift);
    }
}
constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS(FromRgbRow);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS(ToRgbRow);
constexpr rows::IsaRows kFromRgbRows{&kFromRgbPlain, KT_X86(kRgbToRgb444Avx2), KT_X86(kRgbToRgb444Avx512)};
constexpr rows::IsaRows kToRgbRows{&kToRgbPlain, KT_X86(kRgb444ToRgbAvx2), KT_X86(kRgb444ToRgbAvx512)};

}  // namespace

KT_KERNEL(RgbToRgb444) {
    (void)black;
    return rows::Run(kFromRgb, kFromRgbRows, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(Rgb444ToRgb) {
    (void)black;
    return rows::Run(kToRgb, kToRgbRows, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
