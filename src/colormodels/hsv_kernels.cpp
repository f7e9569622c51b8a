// HSV with the hue in 255ths of 360 degrees; integer arithmetic throughout.
#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
constexpr int kDegrees = 360;
constexpr int kSextant = 60;
constexpr int kHueCeiling = 91800;  // 255 x 360: H = 255 wraps to 0 degrees
constexpr int kSectorScale = 15300;  // 255 x 60

template <class O>
void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int r = s[O::r], g = s[O::g], b = s[O::b];
        const int mx = rows::Max3(r, g, b);
        const int delta = mx - rows::Min3(r, g, b);
        int h = 0, sat = 0;
        if (mx != 0) {
            sat = rows::MulDivSmall(delta, 255, mx);
            if (sat != 0) {
                int hue;
                if (mx == r) {
                    hue = rows::MulDivSmall(g - b, kSextant, delta);
                } else if (mx == g) {
                    hue = 2 * kSextant + rows::MulDivSmall(b - r, kSextant, delta);
                } else {
                    hue = 4 * kSextant + rows::MulDivSmall(r - g, kSextant, delta);
                }
                if (hue < 0) hue += kDegrees;
                h = hue * 255 / kDegrees;
            }
        }
        d[0] = static_cast<std::uint8_t>(h);
        d[1] = static_cast<std::uint8_t>(sat);
        d[2] = static_cast<std::uint8_t>(mx);
    }
}

template <class O>
void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int hb = s[0], sat = s[1], v = s[2];
        int r = v, g = v, b = v;
        if (sat != 0) {
            const int h = hb * kDegrees < kHueCeiling ? hb * kDegrees / 255 : 0;
            const int sector = h / kSextant;
            const int frac = h - kSextant * sector;
            const int sv = sat * v;
            const int p = v - sv / 255;
            const int q = v - sv * frac / kSectorScale;
            const int t = v - sv * (kSextant - frac) / kSectorScale;
            switch (sector) {
                case 0: r = v, g = t, b = p; break;
                case 1: r = q, g = v, b = p; break;
                case 2: r = p, g = v, b = t; break;
                case 3: r = p, g = q, b = v; break;
                case 4: r = t, g = p, b = v; break;
                case 5: r = v, g = p, b = q; break;
                default: r = g = b = 0; break;
            }
        }
        d[O::r] = static_cast<std::uint8_t>(r);
        d[O::g] = static_cast<std::uint8_t>(g);
        d[O::b] = static_cast<std::uint8_t>(b);
    }
}
}  // namespace

KT_KERNEL(RgbToHsv) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, s, d, w); });
}

KT_KERNEL(HsvToRgb) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { ToRgbRow(o, s, d, w); });
}

}  // namespace kt::color
