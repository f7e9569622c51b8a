// The Lab-to-RGB pixel formula as a routine of its own, for callers that
// convert single pixels.
#pragma once

#include <cstdint>

namespace kt::color {

// L is the stored byte (L* x 2.55), a and b the signed a* and b*. Writes
// nothing when any output pointer is null.
void LabPixelToRgb(int a, int b, int L, std::uint8_t* r, std::uint8_t* g, std::uint8_t* bl) noexcept;

}  // namespace kt::color
