#include "formats/tiff_tags.h"

#include <cstring>

#include "ktclr/status.h"

namespace kt::formats::tiff {
namespace {

struct Order {
    bool little;
    uint64_t Get(const uint8_t* p, int bytes) const {
        uint64_t v = 0;
        for (int i = 0; i < bytes; ++i) v |= static_cast<uint64_t>(p[little ? i : bytes - 1 - i]) << (8 * i);
        return v;
    }
};

uint64_t TypeSize(uint16_t type) {
    switch (type) {
        case 1: case 2: case 6: case 7: return 1;
        case 3: case 8: return 2;
        case 4: case 9: case 11: case 13: return 4;
        case 5: case 10: case 12: case 16: case 17: case 18: return 8;
        default: return 0;
    }
}

}  // namespace

KtStatus ReadTag(file::File& file, uint16_t tag, TagInfo* info, void* dest, std::size_t destSize) noexcept {
    *info = TagInfo{0, 0, 0};
    std::int64_t fileSize = file.Size();
    uint8_t head[16];
    if (fileSize < 8 || !file.Seek(0) || !file.ReadExact(head, fileSize < 16 ? 8 : 16)) return ERR_FILE_READ;
    if ((head[0] != 'I' || head[1] != 'I') && (head[0] != 'M' || head[1] != 'M')) return ERR_FILE_READ;
    Order o{head[0] == 'I'};
    bool big = o.Get(head + 2, 2) == 43;
    if (big && fileSize < 16) return ERR_FILE_READ;
    // Classic: 2-byte entry count, 12-byte entries, 4-byte inline values.
    // BigTIFF: 8-byte count, 20-byte entries, 8-byte inline values.
    const int countBytes = big ? 8 : 2, entryBytes = big ? 20 : 12, valueBytes = big ? 8 : 4;
    const uint64_t size = static_cast<uint64_t>(fileSize);
    uint64_t ifd = big ? o.Get(head + 8, 8) : o.Get(head + 4, 4);
    uint8_t raw[8];
    if (ifd > size - countBytes || !file.Seek(static_cast<std::int64_t>(ifd)) || !file.ReadExact(raw, countBytes))
        return ERR_FILE_READ;
    uint64_t entries = o.Get(raw, countBytes);
    if (entries > (size - ifd - countBytes) / entryBytes) return ERR_FILE_READ;
    uint8_t block[256 * 20];
    for (uint64_t done = 0; done < entries;) {
        uint64_t n = entries - done < 256 ? entries - done : 256;
        if (!file.ReadExact(block, n * entryBytes)) return ERR_FILE_READ;
        for (uint64_t i = 0; i < n; ++i) {
            const uint8_t* e = block + i * entryBytes;
            if (o.Get(e, 2) != tag) continue;
            uint16_t type = static_cast<uint16_t>(o.Get(e + 2, 2));
            uint64_t count = o.Get(e + 4, big ? 8 : 4), unit = TypeSize(type);
            if (unit == 0 || count > size / unit) return unit == 0 ? STATUS_OK : ERR_FILE_READ;
            uint64_t bytes = count * unit;
            const uint8_t* field = e + 4 + (big ? 8 : 4);
            bool inlined = bytes <= static_cast<uint64_t>(valueBytes);
            uint64_t at = inlined ? 0 : o.Get(field, valueBytes);
            if (!inlined && (at > size || bytes > size - at)) return ERR_FILE_READ;
            *info = TagInfo{type, count, bytes};
            if (!dest) return STATUS_OK;
            std::size_t take = bytes < destSize ? static_cast<std::size_t>(bytes) : destSize;
            if (inlined) {
                std::memcpy(dest, field, take);
                return STATUS_OK;
            }
            return file.Seek(static_cast<std::int64_t>(at)) && file.ReadExact(dest, take) ? STATUS_OK : ERR_FILE_READ;
        }
        done += n;
    }
    return STATUS_OK;
}

}  // namespace kt::formats::tiff
