// A checked walk over the chunks of a RIFF file: chunk heads only, every size
// checked against what the RIFF size leaves and against the real file size.
#pragma once

#include <cstdint>

#include "ktclr/export.h"
#include "ktclr/status.h"
#include "platform/file.h"

namespace kt::formats::riff {

struct ChunkHead {
    char id[4];
    uint32_t size;        // data bytes, without the pad byte of an odd size
    std::int64_t offset;  // of the chunk head in the file
};

// Data bytes with the pad byte of an odd size.
constexpr std::uint64_t Padded(uint32_t size) { return size + (size & 1u); }

class Walker {
public:
    explicit Walker(file::File& file) noexcept : file_(file) {}

    // Reads the 12-byte head from offset 0. True when it is "RIFF", a
    // little-endian size above 19 and `form` (e.g. "WEBP"); false otherwise,
    // a short file included.
    bool Begin(const char form[4]) noexcept;

    // The next chunk head: 1 with *head; 0 when 8 bytes or fewer of the RIFF
    // size remain; ERR_RIFF_SHORT_READ when the head is cut short by the end
    // of the file; ERR_CHUNK_TOO_LARGE when the chunk's size + 8 exceeds what
    // the RIFF size leaves or what the file holds. The file stands at the
    // chunk's data afterwards.
    KtStatus Next(ChunkHead* head) noexcept;

    // Moves behind the current chunk (its size rounded up to even). False
    // when the seek fails.
    bool Skip(const ChunkHead& head) noexcept;

    uint32_t riffSize() const noexcept { return riffSize_; }
    std::int64_t fileSize() const noexcept { return fileSize_; }

private:
    file::File& file_;
    uint32_t riffSize_ = 0;
    std::int64_t fileSize_ = 0;
    std::int64_t position_ = 0;
    std::int64_t end_ = 0;  // 8 + the RIFF size
};

}  // namespace kt::formats::riff
