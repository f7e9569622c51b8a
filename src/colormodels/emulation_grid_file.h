// Reading a custom emulation grid from an uncompressed TIFF image whose
// pixels are the grid's entries.
#pragma once

#include <cstdint>

#include "ktclr/export.h"
#include "ktclr/status.h"

namespace kt::color {

// Smallest accepted pixel counts: one less than the node counts, so a grid
// one pixel short still loads (its last node then reads as zero).
inline constexpr std::uint64_t kMinPixels3 = 35936;  // 33^3 - 1
inline constexpr std::uint64_t kMinPixels4 = 83520;  // 17^4 - 1

// Reads the grid of `path` expecting `samples` (3 or 4) per pixel. On
// STATUS_OK *grid is a block from the library allocator of at least
// `minBytes` bytes, zero beyond what the file supplied. A file that cannot
// be opened or read is ERR_FILE_READ.
KtStatus ReadGridFile(const char16_t* path, std::uint32_t samples, std::uint32_t minBytes,
                      std::uint8_t** grid) noexcept;

}  // namespace kt::color
