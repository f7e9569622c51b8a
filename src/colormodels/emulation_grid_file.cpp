// The custom grid reader. It trusts nothing in the file: every offset and
// size is checked against the file's real size before it is used, and the
// directory is read in little-endian order whatever the byte-order mark
// says (a grid file marked "MM" is read the same way; the grid file tests
// pin it).
#include "colormodels/emulation_grid_file.h"

#include "platform/alloc.h"
#include "platform/file.h"

namespace kt::color {
namespace {

constexpr auto kModule = mem::Module::ktclr;

constexpr std::uint16_t kMarkIntel = 0x4949;     // "II"
constexpr std::uint16_t kMarkMotorola = 0x4D4D;  // "MM"
constexpr std::uint32_t kDirectoryOffsetAt = 4;
constexpr std::uint32_t kMaxEntries = 999;
constexpr std::uint32_t kEntryBytes = 12;

enum : std::uint16_t {
    kTagWidth = 256,
    kTagLength = 257,
    kTagPhotometric = 262,
    kTagStripOffsets = 273,
    kTagSamples = 277,
};

std::uint32_t Le16(const std::uint8_t* p) { return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8); }
std::uint32_t Le32(const std::uint8_t* p) { return Le16(p) | (Le16(p + 2) << 16); }

struct Fields {
    std::uint32_t width = 0, length = 0, stripOffset = 0, samples = 0, photometric = 0;
};

void Keep(Fields& f, std::uint32_t tag, std::uint32_t value) {
    switch (tag) {
        case kTagWidth: f.width = value; break;
        case kTagLength: f.length = value; break;
        case kTagStripOffsets: f.stripOffset = value; break;
        case kTagSamples: f.samples = value; break;
        case kTagPhotometric: f.photometric = value; break;
        default: break;
    }
}

// Reads `size` bytes at `offset`, refusing anything past the end.
bool ReadAt(file::File& f, std::uint64_t fileSize, std::uint64_t offset, void* out, std::uint64_t size) {
    if (offset > fileSize || size > fileSize - offset) return false;
    return f.Seek(static_cast<std::int64_t>(offset)) && f.ReadExact(out, static_cast<std::size_t>(size));
}

KtStatus ReadDirectory(file::File& f, std::uint64_t size, Fields& fields) {
    std::uint8_t head[8];
    if (!ReadAt(f, size, 0, head, 2)) return ERR_FILE_READ;
    const std::uint32_t mark = Le16(head);
    if (mark != kMarkIntel && mark != kMarkMotorola) return ERR_TIFF_NOT_TIFF;
    if (!ReadAt(f, size, kDirectoryOffsetAt, head, 4)) return ERR_FILE_READ;
    const std::uint64_t directory = Le32(head);
    if (!ReadAt(f, size, directory, head, 2)) return ERR_FILE_READ;
    const std::uint32_t count = Le16(head);
    if (count < 1 || count > kMaxEntries) return ERR_TIFF_DIRECTORY_COUNT;
    std::uint8_t entries[kMaxEntries * kEntryBytes];
    if (!ReadAt(f, size, directory + 2, entries, std::uint64_t(count) * kEntryBytes)) return ERR_FILE_READ;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = entries + i * kEntryBytes;
        Keep(fields, Le16(entry), Le32(entry + 8));
    }
    return STATUS_OK;
}

}  // namespace

KtStatus ReadGridFile(const char16_t* path, std::uint32_t samples, std::uint32_t minBytes,
                      std::uint8_t** grid) noexcept {
    *grid = nullptr;
    file::File f;
    if (!f.Open(path, file::Mode::read, kModule)) return ERR_FILE_READ;
    const std::int64_t fileSize = f.Size();
    if (fileSize < 0) return ERR_FILE_READ;
    const auto size = static_cast<std::uint64_t>(fileSize);

    Fields fields;
    KtStatus status = ReadDirectory(f, size, fields);
    if (status != STATUS_OK) return status;
    if (fields.samples == 0 || fields.samples != samples) return ERR_TIFF_SAMPLES;
    const std::uint64_t pixels = std::uint64_t(fields.width) * fields.length;
    if (pixels == 0 || pixels < (samples == 4 ? kMinPixels4 : kMinPixels3)) return ERR_BAD_SIZE;

    const std::uint64_t bytes = pixels * samples;
    if (fields.stripOffset > size || bytes > size - fields.stripOffset) return ERR_FILE_READ;
    const std::uint64_t blockBytes = bytes < minBytes ? minBytes : bytes;
    auto* block = static_cast<std::uint8_t*>(KT_ALLOC_ZERO(static_cast<std::size_t>(blockBytes)));
    if (!block) return ERR_ALLOC;
    if (!ReadAt(f, size, fields.stripOffset, block, bytes)) {
        KT_FREE(block);
        return ERR_FILE_READ;
    }
    *grid = block;
    return STATUS_OK;
}

}  // namespace kt::color
