// The built-in profiles by selector.
#pragma once

#include <cstdint>

#include "colormodels/builtin_data.h"

namespace kt::color {

inline constexpr std::int32_t kProfileRgbDisplay = 105;
inline constexpr std::int32_t kProfileLab = 106;
inline constexpr std::int32_t kProfileCmykPress = 107;
inline constexpr std::int32_t kProfileCmy = 110;

// Null for an unknown selector (108 and 109 included).
const data::Blob* BuiltinProfile(std::int32_t selector) noexcept;

}  // namespace kt::color
