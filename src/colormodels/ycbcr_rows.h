// YCbCr, full range, with Cb and Cr stored as signed bytes centred on 0.
// The plain rows, which every instruction set's rows must match.
#pragma once

#include "colormodels/affine_fixed.h"
#include "colormodels/kernel_rows.h"

namespace kt::color::ycbcr {
constexpr double kFull = 255.0;
constexpr double kChromaLow = -128.0, kChromaHigh = 127.0;

// The double formulas. The sums are written once for doubles and for the
// vector lanes that redo the steps near a whole number, so that both round
// alike (by reference: no vector crosses a baseline call).
template <class T>
KT_ROW_INLINE void LumaSum(const T& r, const T& g, const T& b, T& sum) {
    sum = 0.299 * r + 0.587 * g + 0.114 * b;
}
template <class T>
KT_ROW_INLINE void BlueChromaSum(const T& r, const T& g, const T& b, T& sum) {
    sum = -0.16874 * r - 0.33126 * g + 0.5 * b;
}
template <class T>
KT_ROW_INLINE void RedChromaSum(const T& r, const T& g, const T& b, T& sum) {
    sum = 0.5 * r - 0.41869 * g - 0.08131 * b;
}
template <void (*Sum)(const double&, const double&, const double&, double&)>
KT_ROW_INLINE int Truncated(double r, double g, double b, double lo, double hi) {
    double sum;
    Sum(r, g, b, sum);
    return static_cast<int>(rows::Clamp(sum, lo, hi));
}
KT_ROW_INLINE int Luma(double r, double g, double b) { return Truncated<LumaSum>(r, g, b, 0.0, kFull); }
KT_ROW_INLINE int BlueChroma(double r, double g, double b) {
    return Truncated<BlueChromaSum>(r, g, b, kChromaLow, kChromaHigh);
}
KT_ROW_INLINE int RedChroma(double r, double g, double b) {
    return Truncated<RedChromaSum>(r, g, b, kChromaLow, kChromaHigh);
}

template <class O>
KT_ROW_INLINE void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const double r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
            out[0][i] = Luma(r, g, b);
            out[1][i] = BlueChroma(r, g, b);
            out[2][i] = RedChroma(r, g, b);
        }
    });
}

constexpr affine::Channel kChannels[3] = {
    {0.299, 0.587, 0.114, 0.0, 0, 255},
    {-0.16874, -0.33126, 0.5, 0.0, -128, 127},
    {0.5, -0.41869, -0.08131, 0.0, -128, 127},
};
constexpr affine::Fixed3 kFromRgbFixed{kChannels};
static_assert(kFromRgbFixed.bytes);

// The inverse in integers. Every double sum Y + c x Cb (+ c' x Cr) truncates
// after clamping to Y plus the floor of the chroma terms alone, and with
// the coefficients rounded to 22 fractional bits the arithmetic shift gives
// that floor for every Cb and Cr: the exhaustive tests prove both steps.
constexpr int kInverseShift = 22;
constexpr double kInverseScale = 1 << kInverseShift;
constexpr int Fixed(double c) { return static_cast<int>(c * kInverseScale + 0.5); }
constexpr int kRedCr = Fixed(1.402);
constexpr int kGreenCb = Fixed(0.3441363);
constexpr int kGreenCr = Fixed(0.71413636);
constexpr int kBlueCb = Fixed(1.772);

template <class O>
KT_ROW_INLINE void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int y = in[0][i];
            const int cb = static_cast<std::int8_t>(in[1][i]);
            const int cr = static_cast<std::int8_t>(in[2][i]);
            out[O::r][i] = rows::ClampInt(y + ((kRedCr * cr) >> kInverseShift), 0, 255);
            out[O::g][i] = rows::ClampInt(y + ((-kGreenCb * cb - kGreenCr * cr) >> kInverseShift), 0, 255);
            out[O::b][i] = rows::ClampInt(y + ((kBlueCb * cb) >> kInverseShift), 0, 255);
        }
    });
}

}  // namespace kt::color::ycbcr
