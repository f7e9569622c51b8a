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
constexpr int kInverseScale = 1024;

constexpr void ToRgbLanes(int y, int u, int v, int& r, int& g, int& b) {
    r = rows::ClampInt((1192 * y + 1634 * v - 227712) / kInverseScale, 0, 255);
    g = rows::ClampInt((1192 * y - 400 * u - 833 * v + 139264) / kInverseScale, 0, 255);
    b = rows::ClampInt((1192 * y + 2066 * u - 283008) / kInverseScale, 0, 255);
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
