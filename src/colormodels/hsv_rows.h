// HSV with the hue in 255ths of 360 degrees; integer arithmetic throughout.
// The plain rows, which every instruction set's rows must match.
#pragma once

#include "colormodels/kernel_rows.h"

namespace kt::color::hsv {
constexpr int kDegrees = 360;
constexpr int kSextant = 60;
constexpr int kFullTurnSectors = 6;
constexpr int kSectorScale = 15300;  // 255 x 60

using rows::ExactQuotient;

// MulDiv(a, b, c) for c > 0 and small operands, rounded half away from zero.
KT_ROW_INLINE int MulDivLane(int a, int b, int c) {
    const int p = a * b;
    const int q = ExactQuotient((p < 0 ? -p : p) + c / 2, c);
    return p < 0 ? -q : q;
}

// The branches of the formula become selects; a zero divisor is replaced by
// 1 where its result is discarded anyway.
template <class O>
KT_ROW_INLINE void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
            const int mx = rows::Max3(r, g, b), mn = rows::Min3(r, g, b);
            const int delta = mx - mn;
            const int sat = MulDivLane(delta, 255, mx > 0 ? mx : 1);  // 0 when mx is 0
            const int num = mx == r ? g - b : (mx == g ? b - r : r - g);
            const int base = mx == r ? 0 : (mx == g ? 2 * kSextant : 4 * kSextant);
            int hue = base + MulDivLane(num, kSextant, delta > 0 ? delta : 1);
            hue = hue < 0 ? hue + kDegrees : hue;
            const int h = hue * 255 / kDegrees;
            out[0][i] = sat != 0 ? h : 0;
            out[1][i] = sat;
            out[2][i] = mx;
        }
    });
}

// Without saturation p = q = t = v, so the gray pixel needs no branch of
// its own. Integer divisions by constants only: a select feeding a
// floating-point division would keep the loop from vectorizing.
template <class O>
KT_ROW_INLINE void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int hb = in[0][i], sat = in[1][i], v = in[2][i];
            // H = 255 is a full turn: sector 6 with no fraction, the same
            // pixel as sector 0.
            const int h = hb * kDegrees / 255;
            const int turns = h / kSextant;
            const int frac = h - kSextant * turns;
            const int sector = turns == kFullTurnSectors ? 0 : turns;
            const int sv = sat * v;
            const int p = v - sv / 255;
            const int q = v - sv * frac / kSectorScale;
            const int t = v - sv * (kSextant - frac) / kSectorScale;
            // Each output picks v, p, q or t by sector through masks (a
            // chain of selects on one value is compiled as a jump table).
            const auto is = [sector](int k) { return -static_cast<int>(sector == k); };
            out[O::r][i] = (v & (is(0) | is(5))) | (q & is(1)) | (t & is(4)) | (p & (is(2) | is(3)));
            out[O::g][i] = (v & (is(1) | is(2))) | (t & is(0)) | (q & is(3)) | (p & (is(4) | is(5)));
            out[O::b][i] = (v & (is(3) | is(4))) | (t & is(2)) | (q & is(5)) | (p & (is(0) | is(1)));
        }
    });
}

}  // namespace kt::color::hsv
