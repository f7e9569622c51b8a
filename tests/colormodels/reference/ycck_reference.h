// Literal reference of the YCCK conversions: the fixed-point YCbCr/RGB
// transform with 16 fractional bits, computed directly rather than through
// tables. K passes through; C, M, Y are the complements of R, G, B.
#pragma once

#include <cstdint>

namespace ktref {

inline std::uint8_t Sample(int v) { return static_cast<std::uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

struct Ycc {
    std::uint8_t y, cb, cr;
};

inline void YccToRgb(int y, int cb, int cr, std::uint8_t out[3]) {
    const int b = cb - 128, r = cr - 128;
    out[0] = Sample(y + ((91881 * r + 32768) >> 16));
    out[1] = Sample(y + ((-22554 * b + 32768 - 46802 * r) >> 16));
    out[2] = Sample(y + ((116130 * b + 32768) >> 16));
}

inline Ycc RgbToYcc(int r, int g, int b) {
    const int y = (19595 * r + 38470 * g + 7471 * b + 32768) >> 16;
    const int cb = (-11059 * r - 21709 * g + 32768 * b + (128 << 16) + 32767) >> 16;
    const int cr = (32768 * r - 27439 * g - 5329 * b + (128 << 16) + 32767) >> 16;
    return {static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(cb), static_cast<std::uint8_t>(cr)};
}

}  // namespace ktref
