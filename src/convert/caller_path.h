// File names that callers pass in fixed-size UTF-16 fields.
#pragma once

#include <cstddef>

#include "ktclr/convert.h"

namespace kt::convert {

// Longest name a handle keeps (its fields hold 260 units).
inline constexpr std::size_t kMaxPathChars = 259;
// Units of a caller's path field; a name is read no further.
inline constexpr std::size_t kCallerPathUnits = 264;

enum class PathState { missing, exists, noMemory };

// Whether the name (at most `units` units, up to its terminator) names
// something that exists; its length goes to *length either way.
PathState LookUpPath(const char16_t* path, std::size_t units, std::size_t* length) noexcept;

// Copies a caller's name (kCallerPathUnits at most) into a handle's field
// when it names something that exists; *found says whether it did, and a
// missing or empty name copies nothing and answers STATUS_OK. An existing
// name longer than kMaxPathChars answers ERR_FILE_NOT_FOUND.
KtStatus TakeExistingPath(const char16_t* path, KtChar16* kept, bool* found) noexcept;

}  // namespace kt::convert
