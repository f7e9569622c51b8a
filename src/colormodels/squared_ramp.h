// The squared ramp: entry i = trunc((i / 255)^2 * 256), built at compile
// time; the CMYK-to-RGB kernel reads it.
#pragma once

#include <array>
#include <cstdint>

namespace kt::color {

inline constexpr std::array<std::uint16_t, 256> kSquaredRamp = [] {
    std::array<std::uint16_t, 256> ramp{};
    for (int i = 0; i < 256; ++i) {
        const double t = i / 255.0;
        ramp[i] = static_cast<std::uint16_t>(t * t * 256.0);
    }
    return ramp;
}();

inline const std::uint16_t* SquaredRamp() noexcept { return kSquaredRamp.data(); }

}  // namespace kt::color
