// The colorimetric kernels: RGB to and from byte-encoded CIE Lab and XYZ.
// Forward and inverse Lab use different white points, gammas and L
// encodings on purpose; a round trip is not the identity.
#include "colormodels/kernel_rows.h"
#include "colormodels/lab_engine.h"
#include "colormodels/lab_xyz.h"

#include <cmath>

namespace kt::color {
namespace {

constexpr rows::Shape kThreeBytes{rows::kBits24, rows::kBits24};

// Single-precision constants of the Lab formulas, widened to double.
constexpr double kForwardExponent = 2.2222222222222223;  // 1 / 0.45
constexpr double kEncodeExponent = 0.45;
constexpr double kForwardWhite[3] = {static_cast<double>(95.0166f), 100.0, static_cast<double>(108.765f)};
constexpr double kRgbToXyz[9] = {0.412453f, 0.35758f,  0.180423f, 0.212671f, 0.71516f,
                                 0.072169f, 0.019334f, 0.119193f, 0.950227f};
constexpr double kInverseFactor[3] = {0.95, 1.0, 1.088};
constexpr double kXyzToRgb[9] = {3.240479f, -1.53715f, -0.498535f, -0.969256f, 1.875992f,
                                 0.041556f, 0.055648f, -0.204043f, 1.057311f};

struct FormulaLab {
    ForwardLab forward;
    InverseLab inverse;
    GammaEncoder encoder;
    FormulaLab() noexcept {
        BuildForwardLab(&forward, kForwardExponent, kForwardWhite, kRgbToXyz);
        for (int i = 0; i < 9; ++i) inverse.matrix[i] = kXyzToRgb[i];
        for (int i = 0; i < 3; ++i) inverse.factor[i] = kInverseFactor[i];
        BuildGammaEncoder(&encoder, kEncodeExponent);
    }
};

const FormulaLab& Formula() noexcept {
    static const FormulaLab lab;
    return lab;
}

// The XYZ formulas are sums of per-channel products, so a table of each
// product per byte gives the same doubles as the formula; the sums keep the
// written order. Rows of `weight`: output channel; columns: input channel.
struct XyzTables {
    double term[9][256];
    explicit XyzTables(const double (&weight)[9]) noexcept {
        for (int k = 0; k < 9; ++k)
            for (int i = 0; i < 256; ++i) term[k][i] = weight[k] * static_cast<double>(i);
    }
    int Sum(int row, int a, int b, int c) const noexcept {
        return rows::Trunc((term[3 * row][a] + term[3 * row + 1][b]) + term[3 * row + 2][c]);
    }
};

// X = 0.63267 R + 0.228457 G + 0.0 B, Y = 0.204556 R + 0.737352 G +
// 0.00951424 B, Z = 0.126995 R + 0.0341908 G + 0.815696 B: each red weight
// stands in its own row, as the formula is written.
constexpr double kToXyz[9] = {0.63267, 0.228457, 0.0, 0.204556, 0.737352, 0.00951424, 0.126995, 0.0341908, 0.815696};
constexpr double kFromXyz[9] = {1.75526, -0.544134, 0.00634681, -0.483679, 1.50688, -0.0175762,
                                -0.253,  0.0215528, 1.2257};

const XyzTables& ToXyz() noexcept {
    static const XyzTables t(kToXyz);
    return t;
}
const XyzTables& FromXyz() noexcept {
    static const XyzTables t(kFromXyz);
    return t;
}

}  // namespace

void LabPixelToRgb(int a, int b, int L, std::uint8_t* r, std::uint8_t* g, std::uint8_t* bl) noexcept {
    if (!r || !g || !bl) return;
    const FormulaLab& f = Formula();
    const std::uint8_t lab[3] = {static_cast<std::uint8_t>(L), static_cast<std::uint8_t>(a),
                                 static_cast<std::uint8_t>(b)};
    std::uint8_t rgb[3];
    InverseLabRow(f.inverse, f.encoder, lab, rgb, 1, 0);
    *r = rgb[0];
    *g = rgb[1];
    *bl = rgb[2];
}

KT_KERNEL(RgbToLab) {
    (void)black;
    const ForwardLab& f = Formula().forward;
    return rows::Walk(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&f](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          ForwardLabRow(f, s, d, w, decltype(o)::r);
                      });
}

KT_KERNEL(LabToRgb) {
    (void)black;
    const FormulaLab& f = Formula();
    return rows::Walk(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&f](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          InverseLabRow(f.inverse, f.encoder, s, d, w, decltype(o)::r);
                      });
}

KT_KERNEL(RgbToXyz) {
    (void)black;
    const XyzTables& t = ToXyz();
    return rows::Walk(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&t](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          using O = decltype(o);
                          for (int x = 0; x < w; ++x, s += 3, d += 3) {
                              const int R = s[O::r], G = s[O::g], B = s[O::b];
                              d[0] = static_cast<std::uint8_t>(t.Sum(0, R, G, B));
                              d[1] = static_cast<std::uint8_t>(t.Sum(1, R, G, B));
                              d[2] = static_cast<std::uint8_t>(t.Sum(2, R, G, B));
                          }
                      });
}

KT_KERNEL(XyzToRgb) {
    (void)black;
    const XyzTables& t = FromXyz();
    return rows::Walk(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&t](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          using O = decltype(o);
                          for (int x = 0; x < w; ++x, s += 3, d += 3) {
                              const int X = s[0], Y = s[1], Z = s[2];
                              d[O::r] = static_cast<std::uint8_t>(rows::ClampInt(t.Sum(0, X, Y, Z), 0, 255));
                              d[O::g] = static_cast<std::uint8_t>(rows::ClampInt(t.Sum(1, X, Y, Z), 0, 255));
                              d[O::b] = static_cast<std::uint8_t>(rows::ClampInt(t.Sum(2, X, Y, Z), 0, 255));
                          }
                      });
}

}  // namespace kt::color
