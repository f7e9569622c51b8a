#include "colormodels/squared_ramp.h"

namespace kt::color {
namespace {
std::uint16_t g_ramp[256];
}

void FillSquaredRamp() noexcept {
    for (int i = 0; i < 256; ++i) {
        const double t = i / 255.0;
        g_ramp[i] = static_cast<std::uint16_t>(t * t * 256.0);
    }
}

const std::uint16_t* SquaredRamp() noexcept { return g_ramp; }
}  // namespace kt::color
