// The constant data the library carries: four ICC profiles and the three
// emulation grids. The files under data/builtin (made by tools/gen_builtin)
// are assembled into the library as they stand.
#pragma once

#include <cstdint>

namespace kt::color::data {

struct Blob {
    const unsigned char* bytes;
    std::uint32_t size;      // bytes handed out
    std::uint32_t declared;  // the header's size field; what lcms2 is given
};

Blob RgbDisplayProfile() noexcept;
Blob LabProfile() noexcept;
Blob PressProfile() noexcept;
Blob CmyProfile() noexcept;

// Lab to RGB and RGB to Lab, each in a slot of kGridSlot33 bytes, then
// CMYK to RGB.
const std::uint8_t* EmulationGrids() noexcept;
inline constexpr std::uint32_t kGridSlot33 = 108304;

}  // namespace kt::color::data
