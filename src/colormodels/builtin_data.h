// The constant data the library carries: four ICC profiles and the three
// emulation grids. The bytes come from tools/gen_builtin.
#pragma once

#include <cstdint>

namespace kt::color::data {

struct Blob {
    const unsigned char* bytes;
    std::uint32_t size;      // bytes handed out
    std::uint32_t declared;  // the header's size field; what lcms2 is given
};

extern const Blob kRgbDisplayProfile;
extern const Blob kLabProfile;
extern const Blob kPressProfile;
extern const Blob kCmyProfile;

// Lab to RGB and RGB to Lab, each in a slot of kGridSlot33 bytes, then
// CMYK to RGB.
extern const std::uint8_t* const kEmulationGrids;
inline constexpr std::uint32_t kGridSlot33 = 108304;

}  // namespace kt::color::data
