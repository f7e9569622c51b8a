// Photoshop: image resource 1039 of the image-resources section.
#include "storage/readers.h"

namespace kt::storage {
namespace {

constexpr uint16_t kResourceIccProfile = 1039;

uint32_t Be32(const uint8_t* p) { return static_cast<uint32_t>(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]; }

}  // namespace

// Every read that comes up short ends the search with ERR_FILE_READ; every
// size is checked against the bytes the file has left before anything is
// skipped or allocated.
KtStatus ReadPhotoshopProfile(file::File& file, Gather& gather) noexcept {
    const std::int64_t fileSize = file.Size();
    std::int64_t at = 26;
    uint8_t b[6];
    auto read = [&](void* out, std::size_t n) {
        if (!file.ReadExact(out, n)) return false;
        at += static_cast<std::int64_t>(n);
        return true;
    };
    auto skip = [&](std::uint64_t n) {
        if (n > static_cast<std::uint64_t>(fileSize - at)) return false;
        at += static_cast<std::int64_t>(n);
        return file.Seek(at);
    };
    if (fileSize < 34 || !file.Seek(at) || !read(b, 4) || !skip(Be32(b)) || !read(b, 4)) return ERR_FILE_READ;
    const std::int64_t end = at + Be32(b);
    while (at < end) {
        // The signature's first byte must be one of '8', 'B', 'I', 'M'.
        if (!read(b, 6)) return ERR_FILE_READ;
        if (b[0] != '8' && b[0] != 'B' && b[0] != 'I' && b[0] != 'M') return STATUS_OK;
        const uint16_t id = static_cast<uint16_t>(b[4] << 8 | b[5]);
        do {  // the name: 2-byte units up to a zero unit
            if (!read(b, 2)) return ERR_FILE_READ;
        } while (b[0] != 0 || b[1] != 0);
        if (!read(b, 4)) return ERR_FILE_READ;
        const uint32_t size = Be32(b);
        if (id == kResourceIccProfile) {
            if (size > fileSize - at) return ERR_FILE_READ;
            uint8_t* data = gather.Take(size);
            if (!data) return ERR_NO_MEMORY;
            return read(data, size) ? STATUS_OK : ERR_FILE_READ;
        }
        if (!skip(static_cast<std::uint64_t>(size) + (size & 1u))) return ERR_FILE_READ;
    }
    return STATUS_OK;
}

}  // namespace kt::storage

