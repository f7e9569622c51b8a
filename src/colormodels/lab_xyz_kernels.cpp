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

// The XYZ formulas are sums of per-channel products in the written order;
// rows of the weights: output channel, columns: input channel. Each chunk of
// pixels goes through plain loops the compiler vectorizes, with the same
// double products and sums as the formula.
// X = 0.63267 R + 0.228457 G + 0.0 B, Y = 0.204556 R + 0.737352 G +
// 0.00951424 B, Z = 0.126995 R + 0.0341908 G + 0.815696 B: each red weight
// stands in its own row, as the formula is written.
constexpr double kToXyz[9] = {0.63267, 0.228457, 0.0, 0.204556, 0.737352, 0.00951424, 0.126995, 0.0341908, 0.815696};
constexpr double kFromXyz[9] = {1.75526, -0.544134, 0.00634681, -0.483679, 1.50688, -0.0175762,
                                -0.253,  0.0215528, 1.2257};
constexpr int kMaxByte = 255;

// in/out lanes hold the three bytes in memory order of each side.
template <bool ToXyzSide, class O>
KT_ROW_INLINE void XyzRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    constexpr const double* w = ToXyzSide ? kToXyz : kFromXyz;
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        // The input channels in formula order: R, G, B or X, Y, Z.
        constexpr int a = ToXyzSide ? O::r : 0, b = ToXyzSide ? O::g : 1, c = ToXyzSide ? O::b : 2;
        for (int row = 0; row < 3; ++row) {
            const int to = ToXyzSide ? row : (row == 0 ? O::r : row == 1 ? O::g : O::b);
            for (int i = 0; i < rows::kChunk; ++i) {
                const double p = w[3 * row] * static_cast<double>(in[a][i]);
                const double q = w[3 * row + 1] * static_cast<double>(in[b][i]);
                const double r = w[3 * row + 2] * static_cast<double>(in[c][i]);
                const int v = static_cast<int>((p + q) + r);
                out[to][i] = ToXyzSide ? v : (v < 0 ? 0 : (v > kMaxByte ? kMaxByte : v));
            }
        }
    });
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
                          InverseLabLanesWith(lanes::BestLabVariant(), f.inverse, f.encoder, s, d, w, decltype(o)::r);
                      });
}

KT_KERNEL(RgbToXyz) {
    (void)black;
    return rows::WalkFast(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [](auto o, const std::uint8_t* s, std::uint8_t* d, int w)
                              KT_LAMBDA_INLINE { XyzRow<true>(o, s, d, w); });
}

KT_KERNEL(XyzToRgb) {
    (void)black;
    return rows::WalkFast(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [](auto o, const std::uint8_t* s, std::uint8_t* d, int w)
                              KT_LAMBDA_INLINE { XyzRow<false>(o, s, d, w); });
}

}  // namespace kt::color
