// Helpers shared by the handle functions.
#pragma once

#include <cstddef>

#include "colormodels/space_table.h"
#include "ktclr/convert.h"

namespace kt::convert {

// Sizes a record takes on this build (the probes use the real sizes).
inline constexpr std::size_t kParamsShortBytes = offsetof(ConversionParams, iccFlags);
inline constexpr std::size_t kParamsLongBytes = sizeof(ConversionParams);

inline bool IsRgbSide(int space) { return space == CS_RGB || space == CS_BGR; }
inline bool Either(int src, int dst, int space) { return src == space || dst == space; }

// Every identifier of the space table; the gaps are invalid.
inline bool IsKnownSpace(int space) { return color::FindSpace(space) != nullptr; }

// Copies a caller path (264 units) into a handle field (260 units): at most
// 259 characters and a terminator.
void CopyPath(KtChar16* dst, const KtChar16* src) noexcept;

}  // namespace kt::convert
