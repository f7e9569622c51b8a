// CMYK with black generation (from RGB) and under-color restoration (to RGB).
// The black-generation value p gives f = p / 1000.
#include <cmath>

#include "colormodels/kernel_rows.h"
#include "colormodels/squared_ramp.h"

namespace kt::color {
namespace {
constexpr rows::Shape kFromRgb{rows::kBits24, rows::kBits32};
constexpr rows::Shape kToRgb{rows::kBits32, rows::kBits24};
constexpr double kPerMille = 1000.0;
constexpr double kFull = 255.0;
constexpr double kRampScale = 256.0;
constexpr int kRestoreShift = 8;

// Per-call constants of black generation.
struct BlackGeneration {
    double f;        // p / 1000
    double f5;       // f^5, the strength of the under-color removal
    bool noRemoval;  // removal truncates to 0 for every pixel
    std::uint8_t black[256];  // trunc(k x f) as a byte, per gray component k
};

BlackGeneration MakeBlackGeneration(int p) noexcept {
    BlackGeneration g{};
    g.f = p / kPerMille;
    g.f5 = std::pow(g.f, 5.0);
    // The removal is (s/255)^2 x (k/255) x f^5 x 255 with both fractions at
    // most 1; rounding is monotonic, so when f^5 x 255 is below 1 in size
    // the removal truncates to 0 everywhere.
    g.noRemoval = std::fabs(g.f5 * kFull) < 1.0;
    for (int k = 0; k < 256; ++k) g.black[k] = static_cast<std::uint8_t>(rows::Trunc(k * g.f));
    return g;
}

template <class O>
void FromRgbRow(O, const BlackGeneration& g, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 4) {
        const int r = s[O::r], gr = s[O::g], b = s[O::b];
        const int c = 255 - r, m = 255 - gr, y = 255 - b;
        const int k = rows::Min3(c, m, y);
        int u = 0;
        if (!g.noRemoval) {
            const int sum = rows::Min3(r, gr, b) + k;
            const double t = sum / kFull;
            u = rows::Trunc(t * t * (k / kFull) * g.f5 * kFull);
        }
        d[0] = static_cast<std::uint8_t>(c - u);
        d[1] = static_cast<std::uint8_t>(m - u);
        d[2] = static_cast<std::uint8_t>(y - u);
        d[3] = g.black[k];
    }
}

// w = trunc(f^4 x 256) as a signed 16-bit value, used in unsigned 32-bit
// products.
std::uint32_t RestorationWeight(int p) noexcept {
    const double f = p / kPerMille;
    const auto w16 = static_cast<std::int16_t>(rows::Trunc(std::pow(f, 4.0) * kRampScale));
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(w16));
}

template <class O>
void ToRgbRow(O, std::uint32_t w, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const std::uint16_t* ramp = SquaredRamp();
    for (int x = 0; x < width; ++x, s += 4, d += 3) {
        const std::uint32_t c = s[0], m = s[1], y = s[2], k = s[3];
        const std::uint32_t mx = static_cast<std::uint32_t>(rows::Max3(c, m, y));
        const std::uint32_t mn = static_cast<std::uint32_t>(rows::Min3(c, m, y));
        const std::uint32_t t = ramp[255 - (mx - mn)];
        const std::uint32_t u = ((t * k) >> kRestoreShift) * w;
        const std::uint32_t v = u <= 255 - mx ? (u & 255) : 255 - mx;
        const std::uint32_t e = 255 - v;
        d[O::r] = static_cast<std::uint8_t>(e - c);
        d[O::g] = static_cast<std::uint8_t>(e - m);
        d[O::b] = static_cast<std::uint8_t>(e - y);
    }
}

// With w = 0 (every p below about 251) the key is ignored: RGB = 255 - CMY.
template <class O>
void ToRgbNoKeyRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 4, d += 3) {
        const std::uint8_t c = s[0], m = s[1], y = s[2];
        d[O::r] = static_cast<std::uint8_t>(255 - c);
        d[O::g] = static_cast<std::uint8_t>(255 - m);
        d[O::b] = static_cast<std::uint8_t>(255 - y);
    }
}
}  // namespace

KT_KERNEL(RgbToCmyk) {
    const BlackGeneration g = MakeBlackGeneration(black);
    return rows::Walk(kFromRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&g](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { FromRgbRow(o, g, s, d, w); });
}

KT_KERNEL(CmykToRgb) {
    const std::uint32_t weight = RestorationWeight(black);
    if (weight == 0) {
        return rows::Walk(kToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { ToRgbNoKeyRow(o, s, d, w); });
    }
    return rows::Walk(kToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [weight](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ToRgbRow(o, weight, s, d, w);
                      });
}

}  // namespace kt::color
