// The profile writers, one per format family. Each builds the new file in
// the temporary of `edit` from the original's bytes; the caller commits it.
// The bytes are those of the format's in-place edit of the original.
#pragma once

#include <cstdint>

#include "ktclr/export.h"
#include "platform/safe_replace.h"

namespace kt::storage {

struct ProfileBytes {
    const uint8_t* data;
    uint32_t size;
};

// APP2 "ICC_PROFILE" segments of at most 65,519 profile bytes each, after
// the leading JFIF/Exif segments; earlier ICC_PROFILE segments are dropped,
// every other segment and the scan data are copied unchanged. Returns 8 (a
// positive value) when the segment buffer cannot be allocated.
KtStatus WriteJpegProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept;

// Tag 34675 (type 7) in a new first directory appended to the file; every
// other tag, value and page is kept. Classic TIFF and BigTIFF, both orders.
KtStatus WriteTiffProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept;

// An "ICCRGBG1" application extension in place of the last byte (the
// trailer), then the trailer again.
KtStatus WriteGifProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept;

// The "ICCP" chunk replaced in place or appended, the RIFF size updated. With
// `containerRules`, the chunk stands right after a VP8X chunk (made for a
// simple file) whose ICC bit is set, padded to even.
KtStatus WriteWebpProfile(file::SafeReplace& edit, ProfileBytes profile, bool containerRules) noexcept;

}  // namespace kt::storage
