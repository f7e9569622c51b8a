// Color space to lcms2 pixel-format word (8 bits per channel).
#pragma once

#include <cstdint>

namespace kt::convert {

inline constexpr std::uint32_t kTypeRgb8 = 262169;
inline constexpr std::uint32_t kTypeBgr8 = 263193;
inline constexpr std::uint32_t kTypeCmyk8 = 393249;
inline constexpr std::uint32_t kTypeCmy8 = 327705;
inline constexpr std::uint32_t kTypeLab8 = 655385;

// False for a space without an ICC format.
bool IccFormatFor(int space, std::uint32_t* format) noexcept;

}  // namespace kt::convert
