// Replacing a region of an open file by bytes of another length, moving the
// rest of the file down or up through a work buffer.
#pragma once

#include <cstdint>

#include "ktclr/export.h"
#include "platform/file.h"

namespace kt::storage {

// Replaces the `oldSize` bytes at `at` by the `newSize` bytes of `bytes`; the
// file grows or shrinks by the difference. A region reaching past the end of
// the file ends there. ERR_FILE_SEEK when a position cannot be reached,
// ERR_FILE_READ, ERR_FILE_WRITE for a failed or short write, ERR_NO_MEMORY.
KtStatus ReplaceRegion(file::File& f, std::int64_t at, std::uint64_t oldSize, const std::uint8_t* bytes,
                       std::uint64_t newSize) noexcept;

}  // namespace kt::storage
