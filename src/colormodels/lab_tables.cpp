#include "colormodels/lab_tables.h"

#include <cmath>
#include <cstring>

#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {

std::int32_t RoundFixed(double v, int fractionBits) {
    // Half away from zero.
    return static_cast<std::int32_t>(std::llround(std::ldexp(v, fractionBits)));
}

}  // namespace

void SetLabTableHeader(LabTable* t, const double white[3], const std::int32_t ranges[6],
                       const double matrix[9]) noexcept {
    std::memcpy(t->whitePoint, white, sizeof t->whitePoint);
    std::memcpy(t->ranges, ranges, sizeof t->ranges);
    std::memcpy(t->matrix, matrix, sizeof t->matrix);
}

void SetRgbToLabTableHeader(RgbToLabTable* t, const double white[3], const std::int32_t ranges[6],
                            const double matrix[9]) noexcept {
    std::memcpy(t->whitePoint, white, sizeof t->whitePoint);
    std::memcpy(t->ranges, ranges, sizeof t->ranges);
    std::memcpy(t->matrix, matrix, sizeof t->matrix);
}

void FillLabTable(LabTable* t, int gammaPercent) noexcept {
    const double exponent = 100.0 / gammaPercent;
    for (int i = 0; i < 255; ++i) t->gammaThresholds[i] = RoundFixed(std::pow((i + 0.5) / 255.0, exponent), kQ28);
    for (int i = 0; i < 9; ++i) t->matrixFixed[i] = RoundFixed(t->matrix[i], kQ16);
    t->gammaPercent = gammaPercent;
    std::memset(t->reserved, 0, sizeof t->reserved);
}

void FillRgbToLabTable(RgbToLabTable* t, int gammaPercent) noexcept {
    BuildForwardLab(&t->engine, 100.0 / gammaPercent, t->whitePoint, t->matrix);
    t->gammaPercent = gammaPercent;
    std::memset(t->reserved, 0, sizeof t->reserved);
}

namespace {

constexpr rows::Shape kThreeBytes{rows::kBits24, rows::kBits24};
constexpr double kQ28Scale = 268435456.0;  // 2^28
constexpr int kCodes = 255;

// Encodes a linear value with the Q28 decision thresholds. The thresholds
// are rounded to 2^-29, so a value within 2^-28 of one is decided by the
// power itself, which keeps the result equal to the formula's.
struct Q28Encoder {
    const std::int32_t* threshold;
    double exponent;
    int Encode(double v) const noexcept {
        if (v < 0.0) v = 0.0;
        if (v > 1.0) v = 1.0;
        const double q = v * kQ28Scale;
        int c = 0;
        for (int step = 128; step > 0; step >>= 1)
            if (c + step <= kCodes && threshold[c + step - 1] <= q) c += step;
        if ((c < kCodes && threshold[c] - q < 1.0) || (c > 0 && q - threshold[c - 1] < 1.0))
            return EncodeGammaExact(v, exponent);
        return c;
    }
};

}  // namespace

KtStatus RgbToLabThroughTable(const RgbToLabTable* t, const std::uint8_t* src, std::uint8_t* dst, int width,
                              int height, int srcPad, int dstPad, int rgbOrder) noexcept {
    return rows::Run(kThreeBytes, ForwardLabRows(), &t->engine, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KtStatus LabToRgbThroughTable(const LabTable* t, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                              int srcPad, int dstPad, int rgbOrder) noexcept {
    InverseLab inv;
    for (int i = 0; i < 9; ++i) inv.matrix[i] = t->matrix[i];
    for (int i = 0; i < 3; ++i) inv.factor[i] = t->whitePoint[i] / 100.0;
    const Q28Encoder enc{t->gammaThresholds, t->gammaPercent / 100.0};
    return rows::Walk(kThreeBytes, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          InverseLabRow(inv, enc, s, d, w, decltype(o)::r);
                      });
}

}  // namespace kt::color
