// HLS with the hue in 255ths of a turn: a sixth is 42 (42.5 rounded down),
// a third 85 and two thirds 170. Integer arithmetic throughout.
#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
constexpr int kSixth = 42;
constexpr int kThird = 85;
constexpr int kTwoThirds = 170;
constexpr int kHalfTurn = 127;
constexpr int kTurn = 255;
constexpr int kDoubleFull = 510;
constexpr int kLightHalf = 128;

template <class O>
void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int r = s[O::r], g = s[O::g], b = s[O::b];
        const int mx = rows::Max3(r, g, b), mn = rows::Min3(r, g, b);
        const int sum = mx + mn;
        const int l = (sum + 1) * 255 / kDoubleFull;
        int h = 0, sat = 0;
        if (mx != mn) {
            const int delta = mx - mn;
            sat = l >= kLightHalf ? (delta * 255 + (kDoubleFull - sum) / 2) / (kDoubleFull - sum)
                                  : (delta * 255 + sum / 2) / sum;
            const int half = delta / 2;
            const int dr = ((mx - r) * kSixth + half) / delta;
            const int dg = ((mx - g) * kSixth + half) / delta;
            const int db = ((mx - b) * kSixth + half) / delta;
            if (r == mx) {
                h = db - dg;
            } else if (g == mx) {
                h = dr - db + kThird;
            } else {
                h = dg - dr + kTwoThirds;
            }
            if (h < 0) h += kTurn;
            if (h > kTurn) h -= kTurn;
        }
        d[0] = static_cast<std::uint8_t>(h);
        d[1] = static_cast<std::uint8_t>(l);
        d[2] = static_cast<std::uint8_t>(sat);
    }
}

// One channel from its hue; only hues of a turn or more are wrapped, so the
// blue hue H - 85 stays negative below 85 and takes the first ramp.
constexpr int Channel(int m1, int m2, int h) {
    if (h >= kTurn + 1) h -= kTurn;
    int x;
    if (h < kSixth) {
        x = m1 + ((m2 - m1) * h + kSixth / 2) / kSixth;
    } else if (h < kHalfTurn) {
        x = m2;
    } else if (h >= kTwoThirds) {
        x = m1;
    } else {
        x = m1 + ((m2 - m1) * (kTwoThirds - h) + kSixth / 2) / kSixth;
    }
    return (x * 255 + 127) / 255;
}

// An achromatic pixel with a hue ends the conversion with ERR_INVALID_TAG;
// the pixels before it stay converted.
template <class O>
KtStatus ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int h = s[0], l = s[1], sat = s[2];
        int r = l, g = l, b = l;
        if (sat == 0) {
            if (h != 0) return ERR_INVALID_TAG;
        } else {
            const int m2 = l < kLightHalf ? ((sat + 255) * l + 127) / 255 : l - (l * sat + 127) / 255 + sat;
            const int m1 = 2 * l - m2;
            r = Channel(m1, m2, h + kThird);
            g = Channel(m1, m2, h);
            b = Channel(m1, m2, h - kThird);
        }
        d[O::r] = static_cast<std::uint8_t>(r);
        d[O::g] = static_cast<std::uint8_t>(g);
        d[O::b] = static_cast<std::uint8_t>(b);
    }
    return STATUS_OK;
}
}  // namespace

KT_KERNEL(RgbToHls) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, s, d, w); });
}

KT_KERNEL(HlsToRgb) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { return ToRgbRow(o, s, d, w); });
}

}  // namespace kt::color
