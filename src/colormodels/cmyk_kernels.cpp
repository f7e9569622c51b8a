// CMYK with black generation (from RGB) and under-color restoration (to RGB).
// The black-generation value p gives f = p / 1000.
#include <cmath>

#include "colormodels/cmyk_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
using namespace cmyk;
constexpr rows::Shape kFromRgbShape{rows::kBits24, rows::kBits32};
constexpr rows::Shape kToRgbShape{rows::kBits32, rows::kBits24};
BlackGeneration MakeBlackGeneration(int p) noexcept {
    BlackGeneration g{};
    g.f = p / kPerMille;
    g.f5 = std::pow(g.f, 5.0);
    // The removal is (s/255)^2 x (k/255) x f^5 x 255 with both fractions at
    // most 1; rounding is monotonic, so when f^5 x 255 is below 1 in size
    // the removal truncates to 0 everywhere.
    g.noRemoval = std::fabs(g.f5 * kFull) < 1.0;
    g.fitsLanes = std::fabs(g.f5 * kFull) < kLaneLimit;
    for (int k = 0; k < 256; ++k) g.black[k] = static_cast<std::uint8_t>(rows::Trunc(k * g.f));
    return g;
}

// w = trunc(f^4 x 256) as a signed 16-bit value, used in unsigned 32-bit
// products.
std::uint32_t RestorationWeight(int p) noexcept {
    const double f = p / kPerMille;
    const auto w16 = static_cast<std::int16_t>(rows::Trunc(std::pow(f, 4.0) * kRampScale));
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(w16));
}

constexpr rows::OrderedRows kFromRgbScalar = KT_ORDERED_ROWS_WITH(FromRgbRow, BlackGeneration);
constexpr rows::OrderedRows kFromRgbPlain = KT_ORDERED_ROWS_WITH(FromRgbLanes, BlackGeneration);
constexpr rows::OrderedRows kToRgbNoKey = KT_ORDERED_ROWS(ToRgbNoKeyRow);
constexpr rows::OrderedRows kToRgbPlain = KT_ORDERED_ROWS_WITH(ToRgbLanes, std::uint32_t);
// The scalar row serves the calls the lanes cannot: no removal at all, or
// removals beyond an int.
constexpr rows::IsaRows kFromRgbSingle{&kFromRgbScalar};
constexpr rows::IsaRows kFromRgb{&kFromRgbPlain, KT_X86(kRgbToCmykAvx2)};
constexpr rows::IsaRows kToRgbCopy{&kToRgbNoKey};
constexpr rows::IsaRows kToRgb{&kToRgbPlain, KT_X86(kCmykToRgbAvx2)};

}  // namespace

KT_KERNEL(RgbToCmyk) {
    const BlackGeneration g = MakeBlackGeneration(black);
    return rows::Run(kFromRgbShape, g.noRemoval || !g.fitsLanes ? kFromRgbSingle : kFromRgb, &g, src, dst, width,
                     height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(CmykToRgb) {
    const std::uint32_t weight = RestorationWeight(black);
    return rows::Run(kToRgbShape, weight == 0 ? kToRgbCopy : kToRgb, &weight, src, dst, width, height, srcPad,
                     dstPad, rgbOrder);
}

}  // namespace kt::color
