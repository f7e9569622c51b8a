// The colorimetric kernels: RGB to and from byte-encoded CIE Lab and XYZ.
// Forward and inverse Lab use different white points, gammas and L
// encodings on purpose; a round trip is not the identity.
#include "colormodels/lab_engine.h"
#include "colormodels/x86/rows.h"
#include "colormodels/xyz_rows.h"

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

constexpr rows::OrderedRows kToXyzPlain = KT_ORDERED_ROWS(xyz::ToXyzRow);
constexpr rows::OrderedRows kFromXyzPlain = KT_ORDERED_ROWS(xyz::FromXyzRow);
constexpr rows::IsaRows kToXyz{&kToXyzPlain, KT_X86(kRgbToXyzAvx2)};
constexpr rows::IsaRows kFromXyz{&kFromXyzPlain, KT_X86(kXyzToRgbAvx2)};

}  // namespace

KT_KERNEL(RgbToLab) {
    (void)black;
    return rows::Run(kThreeBytes, ForwardLabRows(), &Formula().forward, src, dst, width, height, srcPad, dstPad,
                     rgbOrder);
}

KT_KERNEL(LabToRgb) {
    (void)black;
    const FormulaLab& f = Formula();
    const InverseLanes lanes{&f.inverse, &f.encoder};
    return rows::Run(kThreeBytes, InverseLabRows(), &lanes, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(RgbToXyz) {
    (void)black;
    return rows::Run(kThreeBytes, kToXyz, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(XyzToRgb) {
    (void)black;
    return rows::Run(kThreeBytes, kFromXyz, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

}  // namespace kt::color
