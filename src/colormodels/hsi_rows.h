// HSI: bytes I, H, S. The plain rows of the inverse, which every
// instruction set's rows must match.
#pragma once

#include "colormodels/kernel_rows.h"

namespace kt::color::hsi {
constexpr int kDiffs = 511;  // channel differences -255..255
constexpr double kFull = 255.0;
constexpr double kPi = 3.1415926535;
constexpr double kSector1End = 1.0471975511666667;
constexpr double kSector2End = 2.0943951023333334;
constexpr double kSector3End = 6.283185307;
constexpr double kSector2Base = 3.1415926535;       // denominator angle
constexpr double kSector3Base = 2.6179938779166667;  // denominator angle
// Numerator angles of the second and third sectors: h less these, so that
// each denominator is cos(pi/3 - numerator angle).
constexpr double kSector2Shift = 2.0943951023333334;
constexpr double kSector3Shift = 1.57079632675;

// Per hue byte its sector, and per hue and saturation byte the chromatic
// term s x cos(numerator angle) / cos(denominator angle), formed in that
// order from the same doubles.
struct SectorTable {
    std::uint8_t sector[256];  // 1..3, 0 outside every sector
    double term[256 * 256];    // by hue byte, then saturation byte
    SectorTable() noexcept;
};

// Lets the compiler evaluate both sides of the selects in the lane loops of
// the inverse (they cannot trap) instead of keeping them as branches.
// Rounding is unaffected. The forward row above runs faster without it.
#pragma GCC push_options
#pragma GCC optimize("no-trapping-math")

KT_ROW_INLINE int Limit(int v) { return v > 255 ? 255 : (v < 1 ? 0 : v); }

// The table lookups fill lanes; the double arithmetic then runs lane by
// lane, each sector's channels chosen by selects.
template <class O>
KT_ROW_INLINE void ToRgbRow(O, const SectorTable& t, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [&t](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        alignas(32) double term[rows::kChunk];
        alignas(32) std::int32_t sector[rows::kChunk];
        for (int k = 0; k < rows::kChunk; ++k) {
            term[k] = t.term[in[1][k] * 256 + in[2][k]];
            sector[k] = t.sector[in[1][k]];
        }
        for (int k = 0; k < rows::kChunk; ++k) {
            const double i = in[0][k];
            const double sat = in[2][k] / kFull;
            const int low = static_cast<int>((1.0 - sat) * i);
            // Every value fits an int: the smallest denominator cosine, near
            // a quarter turn, is about 0.006.
            const int high = static_cast<int>((1.0 + term[k]) * i);
            const int sec = sector[k];
            // Sector 1 sums the two as 16-bit values.
            const int pair = sec == 1 ? static_cast<std::int16_t>(high) + static_cast<std::int16_t>(low) : high + low;
            const int third = static_cast<int>(3.0 * i - pair);
            const int r = sec == 1 ? high : (sec == 2 ? low : third);
            const int g = sec == 1 ? third : (sec == 2 ? high : low);
            const int b = sec == 1 ? low : (sec == 2 ? third : high);
            out[O::r][k] = sec == 0 ? 0 : Limit(r);
            out[O::g][k] = sec == 0 ? 0 : Limit(g);
            out[O::b][k] = sec == 0 ? 0 : Limit(b);
        }
    });
}
#pragma GCC pop_options

}  // namespace kt::color::hsi
