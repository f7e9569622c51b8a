#include "formats/riff_chunks.h"

#include <cstring>

#include "ktclr/status.h"

namespace kt::formats::riff {
namespace {
uint32_t Le32(const uint8_t* p) { return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24; }
}  // namespace

bool Walker::Begin(const char form[4]) noexcept {
    uint8_t head[12];
    fileSize_ = file_.Size();
    if (fileSize_ < 12 || !file_.Seek(0) || !file_.ReadExact(head, sizeof head)) return false;
    riffSize_ = Le32(head + 4);
    position_ = 12;
    end_ = 8 + static_cast<std::int64_t>(riffSize_);
    return std::memcmp(head, "RIFF", 4) == 0 && riffSize_ > 19 && std::memcmp(head + 8, form, 4) == 0;
}

KtStatus Walker::Next(ChunkHead* head) noexcept {
    if (end_ - position_ <= 8) return 0;
    uint8_t raw[8];
    if (!file_.Seek(position_) || !file_.ReadExact(raw, sizeof raw)) return ERR_RIFF_SHORT_READ;
    std::memcpy(head->id, raw, 4);
    head->size = Le32(raw + 4);
    head->offset = position_;
    std::int64_t need = static_cast<std::int64_t>(head->size) + 8;
    if (need > end_ - position_ || need > fileSize_ - position_) return ERR_CHUNK_TOO_LARGE;
    position_ += 8;
    return 1;
}

bool Walker::Skip(const ChunkHead& head) noexcept {
    position_ = head.offset + 8 + static_cast<std::int64_t>(Padded(head.size));
    return file_.Seek(position_ < fileSize_ ? position_ : fileSize_);
}

}  // namespace kt::formats::riff
