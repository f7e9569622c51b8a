// HSI: bytes I, H, S. The hue uses acos of an expression without a square
// root and spans half a turn; the inverse works in three unusual sectors.
// Both directions read tables built once from the same double expressions.
#include <cmath>

#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
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

// Hue byte before the complement, for R - G = a and R - B = c.
double HueValue(int a, int c) noexcept {
    const double n = 0.5 * a + c;
    const double den = static_cast<double>(c - a) * c + static_cast<double>(a) * a;
    return std::acos(n / den) * kFull * 0.5;
}

struct HueTable {
    std::uint8_t h[kDiffs * kDiffs];
    HueTable() noexcept {
        for (int a = -255; a <= 255; ++a)
            for (int c = -255; c <= 255; ++c)
                h[(a + 255) * kDiffs + (c + 255)] = static_cast<std::uint8_t>(rows::Trunc(HueValue(a, c)));
    }
};

const HueTable& Hues() noexcept {
    static const HueTable table;
    return table;
}

template <class O>
void FromRgbRow(O, const HueTable& hues, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int r = s[O::r], g = s[O::g], b = s[O::b];
        const int i = (r + g + b) / 3;  // the double quotient truncates the same way
        std::uint8_t h = hues.h[(r - g + 255) * kDiffs + (r - b + 255)];
        if (b >= g) h = static_cast<std::uint8_t>(~h);
        const int mn = rows::Min3(r, g, b);
        const int sat = rows::Trunc((1.0 - static_cast<double>(mn) / i) * kFull);
        d[0] = static_cast<std::uint8_t>(i);
        d[1] = h;
        d[2] = static_cast<std::uint8_t>(sat);
    }
}

// Lets the compiler evaluate both sides of the selects in the lane loops of
// the inverse (they cannot trap) instead of keeping them as branches.
// Rounding is unaffected. The forward row above runs faster without it.
#pragma GCC optimize("no-trapping-math")

// Per hue byte its sector, and per hue and saturation byte the chromatic
// term s x cos(numerator angle) / cos(denominator angle), formed in that
// order from the same doubles.
struct SectorTable {
    std::uint8_t sector[256];  // 1..3, 0 outside every sector
    double term[256 * 256];    // by hue byte, then saturation byte
    SectorTable() noexcept {
        for (int hb = 0; hb < 256; ++hb) {
            const double h = hb / kFull * kPi;
            double cosNum = 0.0, cosDen = 0.0;
            sector[hb] = 0;
            if (h >= 0.0 && h <= kSector1End) {
                sector[hb] = 1;
                cosNum = std::cos(h);
                cosDen = std::cos(kSector1End - h);
            } else if (h > kSector1End && h <= kSector2End) {
                sector[hb] = 2;
                cosNum = std::cos(h - kSector2Shift);
                cosDen = std::cos(kSector2Base - h);
            } else if (h > kSector2End && h <= kSector3End) {
                sector[hb] = 3;
                cosNum = std::cos(h - kSector3Shift);
                cosDen = std::cos(kSector3Base - h);
            }
            for (int sb = 0; sb < 256; ++sb)
                term[hb * 256 + sb] = sector[hb] == 0 ? 0.0 : sb / kFull * cosNum / cosDen;
        }
    }
};

const SectorTable& Sectors() noexcept {
    static const SectorTable table;
    return table;
}

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
}  // namespace

KT_KERNEL(RgbToHsi) {
    (void)black;
    const HueTable& hues = Hues();
    return rows::Walk(rows::kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&hues](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, hues, s, d, w); });
}

KT_KERNEL(HsiToRgb) {
    (void)black;
    const SectorTable& sectors = Sectors();
    return rows::WalkFast(rows::kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [&sectors](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE {
                              ToRgbRow(o, sectors, s, d, w);
                          });
}

}  // namespace kt::color
