// The profile readers, one per format family. Each reads the open file and
// appends the profile's bytes to the record through `gather`; STATUS_OK with
// no bytes gathered means the file holds no profile.
#pragma once

#include "platform/file.h"
#include "storage/gather.h"

namespace kt::storage {

KtStatus ReadJpegProfile(file::File& file, Gather& gather) noexcept;
KtStatus ReadTiffProfile(file::File& file, Gather& gather) noexcept;
KtStatus ReadPostScriptProfile(file::File& file, Gather& gather) noexcept;
KtStatus ReadMarker56Profile(file::File& file, Gather& gather) noexcept;
KtStatus ReadPngProfile(file::File& file, Gather& gather) noexcept;
KtStatus ReadPhotoshopProfile(file::File& file, Gather& gather) noexcept;
KtStatus ReadWebpProfile(file::File& file, Gather& gather) noexcept;

}  // namespace kt::storage
