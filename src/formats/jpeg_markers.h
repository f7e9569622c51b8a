// JPEG marker lists: the marker segments of a file from its start of image up
// to its first start of scan, each with its own copy of the bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/export.h"
#include "ktclr/status.h"
#include "platform/alloc.h"
#include "platform/file.h"

namespace kt::formats::jpeg {

constexpr uint8_t kApp2 = 0xE2;
constexpr uint8_t kSos = 0xDA;
constexpr uint8_t kEoi = 0xD9;
// Most bytes a segment carries after its 2-byte length field.
constexpr uint32_t kMaxSegmentData = 65533;

struct Marker {
    uint8_t code;      // the byte after 0xFF (0xE2 for APP2)
    bool standalone;   // TEM or RSTn: no length field, no data
    uint32_t length;   // bytes after the length field (the field's value - 2)
    uint8_t* data;     // `length` bytes, owned by the list
};

struct MarkerList;

// An empty list whose blocks are counted under `module`. Null when out of
// memory.
MarkerList* Create(mem::Module module) noexcept;
void Free(MarkerList* list) noexcept;

// Inserts a copy of `length` bytes as a segment with `code` before position
// `position` (-1 or the count: at the end). ERR_INVALID_PARAMETER for a
// position out of range or a length above kMaxSegmentData; ERR_NO_MEMORY.
KtStatus Insert(MarkerList* list, int position, uint8_t code, uint32_t length, const uint8_t* bytes) noexcept;

// Reads the segments of the JPEG in `file` (from offset 0) up to the first
// start of scan or end of image; that marker's offset becomes ScanOffset. Fill
// bytes (extra 0xFF) are dropped. STATUS_OK with a new list in *out, or
// ERR_FILE_READ when the file does not begin with a start of image, a segment
// runs past the end of the file, or a marker is expected and something else
// stands; ERR_NO_MEMORY. Reads segment heads and data only, never the scan.
KtStatus Read(file::File& file, mem::Module module, MarkerList** out) noexcept;

std::size_t Count(const MarkerList* list) noexcept;
const Marker* At(const MarkerList* list, std::size_t index) noexcept;
// Offset of the marker (its 0xFF) that ended Read; -1 for a created list.
std::int64_t ScanOffset(const MarkerList* list) noexcept;

// Calls `callback` for every marker in order (data null for standalone ones).
// A result below 1 stops the walk and is returned; otherwise STATUS_OK.
using Callback = int (*)(uint8_t code, uint32_t length, const uint8_t* data, void* context);
KtStatus Enumerate(const MarkerList* list, Callback callback, void* context) noexcept;

// Writes every marker as it stands in a file (0xFF, code, big-endian length
// + 2, data). Not the start of image. False when a write fails.
bool Write(const MarkerList* list, file::File& out) noexcept;

}  // namespace kt::formats::jpeg
