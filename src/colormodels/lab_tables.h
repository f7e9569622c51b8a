// Lab lookup tables a handle builds from the caller's Lab options. Their
// sizes and first fields (white point, six range values, matrix) are fixed;
// the rest serves the table-driven Lab conversions.
#pragma once

#include <cstdint>

#include "colormodels/lab_engine.h"
#include "ktclr/convert.h"

struct LabTable {
    double whitePoint[3];
    std::int32_t ranges[6];
    double matrix[9];  // XYZ to linear RGB, rows R, G, B
    // Decision thresholds of the encoding: entry i is ((i + 0.5) / 255)
    // raised to 100 / gammaPercent, Q28, rounded half away from zero. A
    // linear value between entries i - 1 and i encodes as code value i.
    std::int32_t gammaThresholds[255];
    std::int32_t gammaPercent;
    std::int32_t reserved[16];
};
static_assert(sizeof(LabTable) == 1208, "LabTable keeps its 1208-byte size");

struct RgbToLabTable {
    double whitePoint[3];
    std::int32_t ranges[6];
    double matrix[9];  // linear RGB to XYZ, rows X, Y, Z
    // Linearisation ((i / 255) raised to 100 / gammaPercent), the matrix and
    // the white point in the form the row conversion reads.
    kt::color::ForwardLab engine;
    std::int32_t gammaPercent;
    std::uint8_t reserved[17560 - 120 - sizeof(kt::color::ForwardLab) - 4];
};
static_assert(sizeof(RgbToLabTable) == 17560, "RgbToLabTable keeps its 17560-byte size");

namespace kt::color {

constexpr int kQ28 = 28;

// The white point and matrices Vx_ClrInit gives a handle's tables.
inline constexpr double kInitWhitePoint[3] = {95.0166015625, 100.0, 108.76499938964844};
inline constexpr double kXyzToRgbMatrix[9] = {
    3.240478992462158,    -1.5371500253677368,  -0.49853500723838806,
    -0.9692559838294983,  1.875991940498352,    0.04155600070953369,
    0.05564799904823303,  -0.20404300093650818, 1.0573110580444336};
inline constexpr double kRgbToXyzMatrix[9] = {
    0.4124529957771301,   0.3575800061225891,  0.18042300641536713,
    0.21267099678516388,  0.7151600122451782,  0.0721689984202385,
    0.01933399960398674,  0.11919300258159637, 0.9502270221710205};

// The second set, used only for a labTable first made by
// Vx_ClrSetConversionParams.
inline constexpr double kSetParamsWhitePoint[3] = {96.421, 99.997, 82.524};
inline constexpr std::int32_t kDefaultLabRanges[6] = {0, 100, 128, 170, 96, 200};
inline constexpr double kSetParamsMatrix[9] = {
    2.830880641937256,   -1.0300474166870117, -0.5604600310325623,
    -1.5802161693572998, 2.7214279174804688,  0.026361215859651566,
    0.2055138498544693,  -0.5249314904212952, 1.7662780284881592};

void SetLabTableHeader(LabTable* t, const double white[3], const std::int32_t ranges[6], const double matrix[9]) noexcept;
void SetRgbToLabTableHeader(RgbToLabTable* t, const double white[3], const std::int32_t ranges[6],
                            const double matrix[9]) noexcept;

// Fill the derived contents from the header and gammaPercent.
void FillLabTable(LabTable* t, int gammaPercent) noexcept;
void FillRgbToLabTable(RgbToLabTable* t, int gammaPercent) noexcept;

// Row conversions through a handle's tables, with the kernel contract (probes,
// paddings, RGB-order flag). They agree with the Lab formulas for the
// table's white point and matrix: RGB to Lab exactly as the formula kernel
// computes it; Lab to RGB with X = t(fx) x white / 100 (likewise Y and Z),
// RGB = matrix . XYZ, each encoded with the power gammaPercent / 100.
KtStatus RgbToLabThroughTable(const RgbToLabTable* t, const std::uint8_t* src, std::uint8_t* dst, int width,
                              int height, int srcPad, int dstPad, int rgbOrder) noexcept;
KtStatus LabToRgbThroughTable(const LabTable* t, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                              int srcPad, int dstPad, int rgbOrder) noexcept;

}  // namespace kt::color
