// The YCbCr/RGB tables of the YCCK conversions: a sample range-limit table
// and fixed-point coefficient tables with 16 fractional bits. A handle that
// involves YCCK owns a copy of the constant one built at compile time.
#pragma once

#include <cstdint>

#include "ktclr/convert.h"

namespace kt::color {

constexpr int kYccScaleBits = 16;
constexpr std::int32_t kYccHalf = 1 << (kYccScaleBits - 1);  // 32768
// Index of sample 0 inside rangeLimit: 256 zeros come first.
constexpr std::int32_t kRangeLimitBase = 256;

// Offsets of the eight RGB-to-YCbCr tables inside rgbToYcc (R to Cr shares
// the B to Cb table: both are 0.5 per unit).
enum class YccTab : int { rY = 0, gY = 1, bY = 2, rCb = 3, gCb = 4, bCb = 5, rCr = bCb, gCr = 6, bCr = 7 };
inline constexpr int YccOffset(YccTab t) { return static_cast<int>(t) * 256; }

}  // namespace kt::color

struct YcckTable {
    // 256 zeros, 0..255, 384 x 255, 384 zeros, then 0..127 so that a masked
    // index wraps like the sample range it came from.
    std::uint8_t rangeLimit[1408];
    std::int32_t crToR[256];  // 91881 per unit, centred on 128, rounded
    std::int32_t cbToB[256];  // 116130 per unit, centred, rounded
    std::int32_t crToG[256];  // -46802 per unit, centred (scaled)
    std::int32_t cbToG[256];  // -22554 per unit, centred, plus rounding
    std::int32_t rgbToYcc[8 * 256];
    std::int32_t rangeLimitBase;  // kRangeLimitBase
};
static_assert(sizeof(YcckTable) == 13700, "YcckTable keeps its 13700-byte size");

namespace kt::color {
void FillYcckTable(YcckTable* table) noexcept;
// The constant table every handle's copy starts from.
const YcckTable& GlobalYcbcrTables() noexcept;
}  // namespace kt::color
