#include "colormodels/ycck_table.h"


namespace kt::color {
namespace {

constexpr std::int32_t kCrToR = 91881;   // 1.40200
constexpr std::int32_t kCbToB = 116130;  // 1.77200
constexpr std::int32_t kCrToG = 46802;   // 0.71414
constexpr std::int32_t kCbToG = 22554;   // 0.34414
constexpr std::int32_t kRY = 19595, kGY = 38470, kBY = 7471;
constexpr std::int32_t kRCb = 11059, kGCb = 21709, kBCb = 32768;
constexpr std::int32_t kGCr = 27439, kBCr = 5329;
constexpr std::int32_t kCentre = 128 << kYccScaleBits;

constexpr YcckTable Make() {
    YcckTable table{};
    YcckTable* t = &table;
    std::uint8_t* r = t->rangeLimit;
    for (int i = 0; i < 256; ++i) r[256 + i] = static_cast<std::uint8_t>(i);
    for (int i = 512; i < 896; ++i) r[i] = 255;
    for (int i = 0; i < 128; ++i) r[1280 + i] = static_cast<std::uint8_t>(i);

    for (int i = 0; i < 256; ++i) {
        const std::int32_t x = i - 128;
        t->crToR[i] = (kCrToR * x + kYccHalf) >> kYccScaleBits;
        t->cbToB[i] = (kCbToB * x + kYccHalf) >> kYccScaleBits;
        t->crToG[i] = -kCrToG * x;
        t->cbToG[i] = -kCbToG * x + kYccHalf;
    }
    std::int32_t* y = t->rgbToYcc;
    for (int i = 0; i < 256; ++i) {
        y[YccOffset(YccTab::rY) + i] = kRY * i;
        y[YccOffset(YccTab::gY) + i] = kGY * i;
        y[YccOffset(YccTab::bY) + i] = kBY * i + kYccHalf;
        y[YccOffset(YccTab::rCb) + i] = -kRCb * i;
        y[YccOffset(YccTab::gCb) + i] = -kGCb * i;
        // 0.5 per unit plus centring; one short of half so that the largest
        // value still maps to 255.
        y[YccOffset(YccTab::bCb) + i] = kBCb * i + kCentre + kYccHalf - 1;
        y[YccOffset(YccTab::gCr) + i] = -kGCr * i;
        y[YccOffset(YccTab::bCr) + i] = -kBCr * i;
    }
    t->rangeLimitBase = kRangeLimitBase;
    return table;
}

constexpr YcckTable kGlobal = Make();

}  // namespace

void FillYcckTable(YcckTable* t) noexcept { *t = kGlobal; }
const YcckTable& GlobalYcbcrTables() noexcept { return kGlobal; }

}  // namespace kt::color
