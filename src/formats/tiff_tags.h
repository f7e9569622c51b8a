// Reading one tag of a TIFF's first directory, classic or BigTIFF, either
// byte order. Reads the file head, the directory and the tag's bytes only;
// every offset and count is checked against the real file size.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/export.h"
#include "ktclr/status.h"
#include "platform/file.h"

namespace kt::formats::tiff {

constexpr uint16_t kTagIccProfile = 34675;
constexpr uint16_t kTypeUndefined = 7;

struct TagInfo {
    uint16_t type;       // 0 when the tag is absent
    uint64_t count;      // values
    uint64_t byteCount;  // count times the type's size
};

// Finds `tag` in the first directory. STATUS_OK with *info (type 0 and
// counts 0 when absent; a type this reader does not size counts as absent);
// ERR_FILE_READ when the head or directory cannot be read or lies outside the
// file, or the tag's bytes run past its end. With `dest` non-null, also
// reads min(byteCount, destSize) bytes of the tag into it.
KtStatus ReadTag(file::File& file, uint16_t tag, TagInfo* info, void* dest, std::size_t destSize) noexcept;

}  // namespace kt::formats::tiff
