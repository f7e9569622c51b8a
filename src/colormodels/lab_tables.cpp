#include "colormodels/lab_tables.h"

#include <cmath>
#include <cstring>

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
    const double exponent = 100.0 / gammaPercent;
    for (int i = 0; i < 256; ++i) t->linear[i] = std::pow(i / 255.0, exponent);
    std::memset(t->body, 0, sizeof t->body);
}

}  // namespace kt::color
