// File names that callers pass in fixed-size UTF-16 fields.
#pragma once

#include <cstddef>

namespace kt::convert {

// Longest name a handle keeps (its fields hold 260 units).
inline constexpr std::size_t kMaxPathChars = 259;
// Units of a caller's path field; a name is read no further.
inline constexpr std::size_t kCallerPathUnits = 264;

enum class PathState { missing, exists, noMemory };

// Whether the name (at most `units` units, up to its terminator) names
// something that exists; its length goes to *length either way.
PathState LookUpPath(const char16_t* path, std::size_t units, std::size_t* length) noexcept;

}  // namespace kt::convert
