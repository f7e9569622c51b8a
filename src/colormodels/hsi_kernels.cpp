// HSI: bytes I, H, S. The hue uses acos of an expression without a square
// root and spans half a turn; the inverse works in three unusual sectors.
// Both directions read tables built once from the same double expressions.
#include <cmath>

#include "colormodels/hsi_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
using namespace hsi;
namespace {
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

}  // namespace

hsi::SectorTable::SectorTable() noexcept {
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

namespace {
const SectorTable& Sectors() noexcept {
    static const SectorTable table;
    return table;
}

constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS_WITH(FromRgbRow, HueTable);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS_WITH(ToRgbRow, SectorTable);
constexpr rows::IsaRows kFromRgb{&kFromRgbPlain};
constexpr rows::IsaRows kToRgb{&kToRgbPlain, KT_X86(kHsiToRgbAvx2)};

}  // namespace

KT_KERNEL(RgbToHsi) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kFromRgb, &Hues(), src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(HsiToRgb) {
    (void)black;
    return rows::Run(rows::kRgbToRgb, kToRgb, &Sectors(), src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
