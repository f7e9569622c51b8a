// YCbCr, full range, with Cb and Cr stored as signed bytes centred on 0.
#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
constexpr double kFull = 255.0;
constexpr double kChromaLow = -128.0, kChromaHigh = 127.0;

// The double formulas, lane by lane; the vector arithmetic rounds exactly as
// the scalar one does.
template <class O>
KT_ROW_INLINE void FromRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const double r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
            const double y = 0.299 * r + 0.587 * g + 0.114 * b;
            const double cb = -0.16874 * r - 0.33126 * g + 0.5 * b;
            const double cr = 0.5 * r - 0.41869 * g - 0.08131 * b;
            out[0][i] = static_cast<int>(rows::Clamp(y, 0.0, kFull));
            out[1][i] = static_cast<int>(rows::Clamp(cb, kChromaLow, kChromaHigh));
            out[2][i] = static_cast<int>(rows::Clamp(cr, kChromaLow, kChromaHigh));
        }
    });
}

// The inverse in integers. Every double sum Y + c x Cb (+ c' x Cr) truncates
// after clamping to Y plus the floor of the chroma terms alone, and with
// the coefficients rounded to 22 fractional bits the arithmetic shift gives
// that floor for every Cb and Cr: the exhaustive tests prove both steps.
constexpr int kInverseShift = 22;
constexpr double kInverseScale = 1 << kInverseShift;
constexpr int Fixed(double c) { return static_cast<int>(c * kInverseScale + 0.5); }
constexpr int kRedCr = Fixed(1.402);
constexpr int kGreenCb = Fixed(0.3441363);
constexpr int kGreenCr = Fixed(0.71413636);
constexpr int kBlueCb = Fixed(1.772);

template <class O>
KT_ROW_INLINE void ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int y = in[0][i];
            const int cb = static_cast<std::int8_t>(in[1][i]);
            const int cr = static_cast<std::int8_t>(in[2][i]);
            out[O::r][i] = rows::ClampInt(y + ((kRedCr * cr) >> kInverseShift), 0, 255);
            out[O::g][i] = rows::ClampInt(y + ((-kGreenCb * cb - kGreenCr * cr) >> kInverseShift), 0, 255);
            out[O::b][i] = rows::ClampInt(y + ((kBlueCb * cb) >> kInverseShift), 0, 255);
        }
    });
}
}  // namespace

KT_KERNEL(RgbToYcbcr) {
    (void)black;
    return rows::WalkFast(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE {
                              FromRgbRow(o, s, d, w);
                          });
}

KT_KERNEL(YcbcrToRgb) {
    (void)black;
    return rows::WalkFast(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                          [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE {
                              ToRgbRow(o, s, d, w);
                          });
}

}  // namespace kt::color
