// The squared ramp: entry i = trunc((i / 255)^2 * 256). Filled once at load,
// read-only afterwards; the CMYK-to-RGB kernel reads it.
#pragma once

#include <cstdint>

namespace kt::color {
void FillSquaredRamp() noexcept;
const std::uint16_t* SquaredRamp() noexcept;
}  // namespace kt::color
