// HLS with the hue in 255ths of a turn: a sixth is 42 (42.5 rounded down),
// a third 85 and two thirds 170. Integer arithmetic throughout.
// The plain rows, which every instruction set's rows must match.
#pragma once

#include "colormodels/kernel_rows.h"

// Divisions that cannot trap may be evaluated for every lane: without this
// the compiler keeps the selects around them as branches and the loops stay
// scalar. Rounding is unaffected.
#pragma GCC push_options
#pragma GCC optimize("no-trapping-math")

namespace kt::color::hls {
constexpr int kSixth = 42;
constexpr int kThird = 85;
constexpr int kTwoThirds = 170;
constexpr int kHalfTurn = 127;
constexpr int kTurn = 255;
constexpr int kDoubleFull = 510;
constexpr int kLightHalf = 128;

using rows::ExactQuotient;

// The branches become selects so that whole chunks vectorize; a gray pixel
// divides by 1 and its results are discarded. Of the three hue distances
// only the two the hue formula uses for the largest channel are divided.
template <class O>
KT_ROW_INLINE void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
            const int mx = rows::Max3(r, g, b), mn = rows::Min3(r, g, b);
            const int sum = mx + mn;
            const int l = (sum + 1) * 255 / kDoubleFull;
            const int delta = mx - mn;
            const int den = l >= kLightHalf ? kDoubleFull - sum : sum;
            const int sat = ExactQuotient(delta * 255 + den / 2, den > 0 ? den : 1);
            const int half = delta / 2;
            const int divisor = delta > 0 ? delta : 1;
            // r largest: db - dg; g largest: dr - db + a third; else dg - dr
            // + two thirds.
            const int first = r == mx ? mx - b : (g == mx ? mx - r : mx - g);
            const int second = r == mx ? mx - g : (g == mx ? mx - b : mx - r);
            const int base = r == mx ? 0 : (g == mx ? kThird : kTwoThirds);
            int h = ExactQuotient(first * kSixth + half, divisor) - ExactQuotient(second * kSixth + half, divisor) + base;
            h = h < 0 ? h + kTurn : h;
            h = h > kTurn ? h - kTurn : h;
            const bool gray = mx == mn;
            out[0][i] = gray ? 0 : h;
            out[1][i] = l;
            out[2][i] = gray ? 0 : sat;
        }
    });
}

// One channel from its hue; only hues of a turn or more are wrapped, so the
// blue hue H - 85 stays negative below 85 and takes the first ramp. Both
// ramps are computed and the hue picks one.
KT_ROW_INLINE int Channel(int m1, int m2, int h) {
    h = h >= kTurn + 1 ? h - kTurn : h;
    const int rise = m1 + ExactQuotient((m2 - m1) * h + kSixth / 2, kSixth);
    const int fall = m1 + ExactQuotient((m2 - m1) * (kTwoThirds - h) + kSixth / 2, kSixth);
    const int x = h < kSixth ? rise : (h < kHalfTurn ? m2 : (h >= kTwoThirds ? m1 : fall));
    return x + (x < 0);  // (x x 255 + 127) / 255, which truncates toward zero
}

// A gray pixel needs no branch: with S = 0, m1 = m2 = L and every channel
// is L.
template <class O>
KT_ROW_INLINE void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int h = in[0][i], l = in[1][i], sat = in[2][i];
            const int m2 = l < kLightHalf ? ((sat + 255) * l + 127) / 255 : l - (l * sat + 127) / 255 + sat;
            const int m1 = 2 * l - m2;
            out[O::r][i] = Channel(m1, m2, h + kThird);
            out[O::g][i] = Channel(m1, m2, h);
            out[O::b][i] = Channel(m1, m2, h - kThird);
        }
    });
}

// An achromatic pixel with a hue ends the conversion with ERR_INVALID_TAG;
// the pixels before it are converted, the rest left as they are.
template <class O>
KT_ROW_INLINE KtStatus ToRgbChecked(O o, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    int valid = 0;
    while (valid < width && !(s[3 * valid + 2] == 0 && s[3 * valid] != 0)) ++valid;
    ToRgbRow(o, s, d, valid);
    return valid == width ? STATUS_OK : ERR_INVALID_TAG;
}

}  // namespace kt::color::hls

#pragma GCC pop_options
