// Luma and chroma of the packed and planar YUV layouts. The formulas are
// written in doubles with every input byte reduced by 0.5:
//   Y = trunc((263 R + 516 G + 100 B) / 1024 + 16)
//   U = trunc((450 B - 298 G - 152 R) / 1024 + 128)
//   V = trunc((450 R - 377 G - 73 B) / 1024 + 128)
// Every step there is exact in double and every result positive, so they
// are the integer floors below (the halves cancel in U and V).
#pragma once

#include <cstdint>

#include "colormodels/kernel_rows.h"

namespace kt::color::yuv {

constexpr int kLumaBias = 2 * 16 * 1024 - (263 + 516 + 100);  // offset 16 less the halves, doubled
constexpr int kLumaShift = 11;
constexpr int kChromaBias = 128 * 1024;
constexpr int kChromaShift = 10;

constexpr int Luma(int r, int g, int b) { return (2 * (263 * r + 516 * g + 100 * b) + kLumaBias) >> kLumaShift; }
constexpr int ChromaU(int r, int g, int b) { return (450 * b - 298 * g - 152 * r + kChromaBias) >> kChromaShift; }
constexpr int ChromaV(int r, int g, int b) { return (450 * r - 377 * g - 73 * b + kChromaBias) >> kChromaShift; }

struct Sample {
    int y, u, v;
};

template <class O>
constexpr Sample FromRgb(O, const std::uint8_t* p) {
    const int r = p[O::r], g = p[O::g], b = p[O::b];
    return {Luma(r, g, b), ChromaU(r, g, b), ChromaV(r, g, b)};
}

// The inverse, in integers with division truncating toward zero; the
// constants hold the offsets 16 and 128 and a rounding half.
// Every coefficient fits a signed 16-bit word, so vector steps take the
// sums as pairwise word products. Division toward zero and a floor differ
// only below zero, where the clamp makes both 0.
constexpr int kInverseScale = 1024;
constexpr int kInverseShift = 10;
constexpr int kLumaGain = 1192;
constexpr int kRedV = 1634, kGreenU = -400, kGreenV = -833, kBlueU = 2066;
constexpr int kRedBias = -227712, kGreenBias = 139264, kBlueBias = -283008;

constexpr void ToRgbLanes(int y, int u, int v, int& r, int& g, int& b) {
    r = rows::ClampInt((kLumaGain * y + kRedV * v + kRedBias) / kInverseScale, 0, 255);
    g = rows::ClampInt((kLumaGain * y + kGreenU * u + kGreenV * v + kGreenBias) / kInverseScale, 0, 255);
    b = rows::ClampInt((kLumaGain * y + kBlueU * u + kBlueBias) / kInverseScale, 0, 255);
}

template <class O>
constexpr void ToRgb(O, int y, int u, int v, std::uint8_t* p) {
    int r = 0, g = 0, b = 0;
    ToRgbLanes(y, u, v, r, g, b);
    p[O::r] = static_cast<std::uint8_t>(r);
    p[O::g] = static_cast<std::uint8_t>(g);
    p[O::b] = static_cast<std::uint8_t>(b);
}

}  // namespace kt::color::yuv
