// YCbCr, full range, with Cb and Cr stored as signed bytes centred on 0.
#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
constexpr double kFull = 255.0;
constexpr double kChromaLow = -128.0, kChromaHigh = 127.0;

template <class O>
void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const double r = s[O::r], g = s[O::g], b = s[O::b];
        const double y = 0.299 * r + 0.587 * g + 0.114 * b;
        const double cb = -0.16874 * r - 0.33126 * g + 0.5 * b;
        const double cr = 0.5 * r - 0.41869 * g - 0.08131 * b;
        d[0] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(y, 0.0, kFull)));
        d[1] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(cb, kChromaLow, kChromaHigh)));
        d[2] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(cr, kChromaLow, kChromaHigh)));
    }
}

template <class O>
void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const double y = s[0];
        const double cb = static_cast<std::int8_t>(s[1]);
        const double cr = static_cast<std::int8_t>(s[2]);
        const double r = y + 1.402 * cr;
        const double g = y - 0.3441363 * cb - 0.71413636 * cr;
        const double b = y + 1.772 * cb;
        d[O::r] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(r, 0.0, kFull)));
        d[O::g] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(g, 0.0, kFull)));
        d[O::b] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(b, 0.0, kFull)));
    }
}
}  // namespace

KT_KERNEL(RgbToYcbcr) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, s, d, w); });
}

KT_KERNEL(YcbcrToRgb) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { ToRgbRow(o, s, d, w); });
}

}  // namespace kt::color
