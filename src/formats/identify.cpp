#include "formats/identify.h"

#include <cerrno>
#include <cstring>

#include "ktclr/status.h"
#include "platform/file.h"

namespace kt::formats {
namespace {

bool Starts(const uint8_t* head, std::size_t size, const char* magic, std::size_t offset = 0) {
    std::size_t n = std::strlen(magic);
    return size >= offset + n && std::memcmp(head + offset, magic, n) == 0;
}

int32_t IdentifyTiff(const uint8_t* h, std::size_t size) {
    if (size < 8) return kFormatUnknown;
    bool ii = h[0] == 'I' && h[1] == 'I', mm = h[0] == 'M' && h[1] == 'M';
    if (!ii && !mm) return kFormatUnknown;
    auto u16 = [&](std::size_t at) { return ii ? h[at] | h[at + 1] << 8 : h[at] << 8 | h[at + 1]; };
    if (u16(2) == 42) return kFormatTiff;
    if (u16(2) == 43 && u16(4) == 8 && u16(6) == 0) return kFormatBigTiff;
    return kFormatUnknown;
}

int32_t IdentifyPostScript(const uint8_t* h, std::size_t size) {
    if (!Starts(h, size, "%!")) return kFormatUnknown;
    if (!Starts(h, size, "%!PS-Adobe-")) return kFormatPostScript;
    for (std::size_t i = 11; i + 6 <= size && h[i] != '\r' && h[i] != '\n'; ++i)
        if (std::memcmp(h + i, " EPSF-", 6) == 0) return kFormatEps;
    return kFormatPostScript;
}

}  // namespace

int32_t IdentifyBytes(const uint8_t* h, std::size_t size) noexcept {
    if (!h) return kFormatUnknown;
    if (size >= 3 && h[0] == 0xFF && h[1] == 0xD8 && h[2] == 0xFF) return kFormatJpeg;
    if (int32_t tiff = IdentifyTiff(h, size)) return tiff;
    if (int32_t ps = IdentifyPostScript(h, size)) return ps;
    if (size >= 4 && h[0] == 0xC5 && h[1] == 0xD0 && h[2] == 0xD3 && h[3] == 0xC6) return kFormatEpsBinary;
    if (Starts(h, size, "\x89PNG\r\n\x1a\n")) return kFormatPng;
    if (Starts(h, size, "8BPS") && size >= 6 && h[4] == 0 && (h[5] == 1 || h[5] == 2)) return kFormatPhotoshop;
    if (Starts(h, size, "RIFF") && Starts(h, size, "WEBP", 8)) {
        if (Starts(h, size, "VP8L", 12)) return kFormatWebpLossless;
        if (Starts(h, size, "VP8 ", 12) || Starts(h, size, "VP8X", 12)) return kFormatWebpLossy;
        return kFormatUnknown;
    }
    if (Starts(h, size, "GIF87a") || Starts(h, size, "GIF89a")) return kFormatGif;
    if (size >= 7 && h[0] == 0xE0 && (h[1] << 8 | h[2]) >= 4 && h[3] == 0 && h[4] == 0 && h[5] == 0 && h[6] <= 2)
        return kFormatMarker56;
    return kFormatUnknown;
}

KtStatus Identify(const char16_t* path, int32_t* format) noexcept {
    if (!path || !format) return ERR_INVALID_PARAMETER;
    *format = kFormatUnknown;
    file::File f;
    if (!f.Open(path, file::Mode::read, mem::Module::iccload)) {
        if (errno == ENOMEM) return ERR_NO_MEMORY;
        return errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG ? ERR_FILE_NOT_FOUND : ERR_FILE_READ;
    }
    uint8_t head[kIdentifyBytes];
    std::int64_t got = f.Read(head, sizeof head);
    if (got < 0) return ERR_FILE_READ;
    *format = IdentifyBytes(head, static_cast<std::size_t>(got));
    return STATUS_OK;
}

bool IsJpegFamily(int32_t f) noexcept {
    switch (f) {
        case 10: case 21: case 23: case 98: case 101: case 171: case 172: case 173: return true;
        default: return false;
    }
}

bool IsTiffFamily(int32_t f) noexcept {
    if (f >= 269 && f <= 276) return true;
    switch (f) {
        case 3: case 17: case 22: case 24: case 85: case 86: case 87: case 88: case 93: case 94: case 95:
        case 96: case 97: case 138: case 139: case 140: case 141: case 155: case 166: case 167: case 174:
        case 175: case 176: case 177: case 315:
            return true;
        default: return false;
    }
}

bool IsPostScriptFamily(int32_t f) noexcept { return f == 16 || f == 63 || f == 64 || f == 300; }
bool IsWebp(int32_t f) noexcept { return f == kFormatWebpLossy || f == kFormatWebpLossless; }

bool HasReader(int32_t f) noexcept {
    return IsJpegFamily(f) || IsTiffFamily(f) || IsPostScriptFamily(f) || IsWebp(f) || f == kFormatMarker56 ||
           f == kFormatPng || f == kFormatPhotoshop;
}

}  // namespace kt::formats
