// HSI: bytes I, H, S. The hue uses acos of an expression without a square
// root and spans half a turn; the inverse works in three unusual sectors.
// Both directions read tables built once from the same double expressions.
#include <cmath>

#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
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

// Per hue byte: its sector and the two cosines of the chromatic channel.
struct SectorTable {
    std::uint8_t sector[256];  // 1..3, 0 outside every sector
    double cosNum[256];
    double cosDen[256];
    SectorTable() noexcept {
        for (int hb = 0; hb < 256; ++hb) {
            const double h = hb / kFull * kPi;
            sector[hb] = 0;
            cosNum[hb] = cosDen[hb] = 0.0;
            if (h >= 0.0 && h <= kSector1End) {
                sector[hb] = 1;
                cosNum[hb] = std::cos(h);
                cosDen[hb] = std::cos(kSector1End - h);
            } else if (h > kSector1End && h <= kSector2End) {
                sector[hb] = 2;
                cosNum[hb] = std::cos(h - kSector2Shift);
                cosDen[hb] = std::cos(kSector2Base - h);
            } else if (h > kSector2End && h <= kSector3End) {
                sector[hb] = 3;
                cosNum[hb] = std::cos(h - kSector3Shift);
                cosDen[hb] = std::cos(kSector3Base - h);
            }
        }
    }
};

const SectorTable& Sectors() noexcept {
    static const SectorTable table;
    return table;
}

constexpr std::uint8_t Limit(int v) { return static_cast<std::uint8_t>(v > 255 ? 255 : (v < 1 ? 0 : v)); }

template <class O>
void ToRgbRow(O, const SectorTable& t, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const int ib = s[0], hb = s[1], sb = s[2];
        const double sat = sb / kFull;
        const double i = ib;
        int r = 0, g = 0, b = 0;
        const int sector = t.sector[hb];
        if (sector != 0) {
            const int low = rows::Trunc((1.0 - sat) * i);
            const int high = rows::Trunc((1.0 + sat * t.cosNum[hb] / t.cosDen[hb]) * i);
            if (sector == 1) {
                b = low;
                r = high;
                g = rows::Trunc(3.0 * i - (static_cast<std::int16_t>(r) + static_cast<std::int16_t>(b)));
            } else if (sector == 2) {
                r = low;
                g = high;
                b = rows::Trunc(3.0 * i - (g + r));
            } else {
                g = low;
                b = high;
                r = rows::Trunc(3.0 * i - (b + g));
            }
        }
        d[O::r] = Limit(r);
        d[O::g] = Limit(g);
        d[O::b] = Limit(b);
    }
}
}  // namespace

KT_KERNEL(RgbToHsi) {
    (void)black;
    const HueTable& hues = Hues();
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&hues](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, hues, s, d, w); });
}

KT_KERNEL(HsiToRgb) {
    (void)black;
    const SectorTable& sectors = Sectors();
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&sectors](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ToRgbRow(o, sectors, s, d, w);
                      });
}

}  // namespace kt::color
