// Identification of an image file's format by its first bytes, never by its
// name, as format numbers of the reader and writer tables.
//
// What is recognized (first bytes of the file):
//   kFormatJpeg        FF D8 FF (JFIF, Exif and every other JPEG)
//   kFormatTiff        "II" 42 or "MM" 42 (classic TIFF, either byte order)
//   kFormatBigTiff     "II" 43 or "MM" 43 with offset size 8 and 0 (BigTIFF)
//   kFormatEps         "%!PS-Adobe-" with " EPSF-" on the first line
//   kFormatPostScript  "%!" otherwise
//   kFormatEpsBinary   C5 D0 D3 C6 (the binary EPS preview header)
//   kFormatPng         89 "PNG" 0D 0A 1A 0A
//   kFormatPhotoshop   "8BPS" and version 1 (PSD) or 2 (PSB)
//   kFormatWebpLossy   "RIFF" size "WEBP" then "VP8 " or "VP8X"
//   kFormatWebpLossless "RIFF" size "WEBP" then "VP8L"
//   kFormatGif         "GIF87a" or "GIF89a"
//   kFormatMarker56    the 0xE0 marker-segment stream: the file begins with a
//                      segment of the form its profile scan reads, byte 0xE0,
//                      a 16-bit big-endian length of at least 4 and a 32-bit
//                      big-endian segment type 0, 1 or 2. The format is known
//                      only by these mechanics, so the identification asks for
//                      exactly them at the start of the file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/export.h"
#include "ktclr/status.h"

namespace kt::formats {

constexpr int32_t kFormatUnknown = 0;
constexpr int32_t kFormatGif = 2;
constexpr int32_t kFormatTiff = 3;
constexpr int32_t kFormatJpeg = 10;
constexpr int32_t kFormatPostScript = 16;
constexpr int32_t kFormatMarker56 = 56;
constexpr int32_t kFormatEps = 63;
constexpr int32_t kFormatEpsBinary = 64;
constexpr int32_t kFormatPng = 75;
constexpr int32_t kFormatPhotoshop = 76;
constexpr int32_t kFormatBigTiff = 269;
constexpr int32_t kFormatWebpLossy = 404;
constexpr int32_t kFormatWebpLossless = 405;

// Bytes Identify looks at; IdentifyBytes needs no more.
constexpr std::size_t kIdentifyBytes = 64;

// STATUS_OK with *format set (kFormatUnknown for a readable file of no known
// format, an empty file included); ERR_FILE_NOT_FOUND when nothing has that
// name; ERR_FILE_READ when it cannot be opened or read (a folder, say);
// ERR_INVALID_PARAMETER for null arguments; ERR_NO_MEMORY when the name
// cannot be converted.
KtStatus Identify(const char16_t* path, int32_t* format) noexcept;
// The format of a file that begins with these bytes (`size` may be short).
int32_t IdentifyBytes(const uint8_t* head, std::size_t size) noexcept;

// The number sets of the reader table.
bool IsJpegFamily(int32_t format) noexcept;
bool IsTiffFamily(int32_t format) noexcept;
bool IsPostScriptFamily(int32_t format) noexcept;
bool IsWebp(int32_t format) noexcept;
// True when some profile reader takes this format.
bool HasReader(int32_t format) noexcept;

}  // namespace kt::formats
