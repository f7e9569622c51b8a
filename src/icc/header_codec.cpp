#include "icc/header_codec.h"

#include <cstddef>
#include <cstring>

#include "icc/big_endian.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;

static_assert(sizeof(ICCHeader) == kHeaderBytes, "the header mirrors the file layout");

// The 32-bit numbers of the header, at their file offsets (which are their
// offsets in ICCHeader too).
constexpr std::size_t kWords[] = {
    offsetof(ICCHeader, size),         offsetof(ICCHeader, cmmType),
    offsetof(ICCHeader, version),      offsetof(ICCHeader, deviceClass),
    offsetof(ICCHeader, colorSpace),   offsetof(ICCHeader, connectionSpace),
    offsetof(ICCHeader, magic),        offsetof(ICCHeader, platform),
    offsetof(ICCHeader, flags),        offsetof(ICCHeader, manufacturer),
    offsetof(ICCHeader, model),        offsetof(ICCHeader, renderingIntent),
    offsetof(ICCHeader, illuminant.X), offsetof(ICCHeader, illuminant.Y),
    offsetof(ICCHeader, illuminant.Z), offsetof(ICCHeader, creator),
};
static_assert(offsetof(ICCHeader, dateTime) == 24 && offsetof(ICCHeader, magic) == 36 &&
              offsetof(ICCHeader, attributes) == 56 && offsetof(ICCHeader, renderingIntent) == 64 &&
              offsetof(ICCHeader, illuminant) == 68 && offsetof(ICCHeader, creator) == 80 &&
              offsetof(ICCHeader, profileId) == 84 && offsetof(ICCHeader, reserved) == 100);

constexpr std::size_t kDateFields = 6;
constexpr std::size_t kAttributesLowOffset = offsetof(ICCHeader, attributes) + 4;

std::uint32_t& WordAt(ICCHeader* h, std::size_t offset) {
    return *reinterpret_cast<std::uint32_t*>(reinterpret_cast<unsigned char*>(h) + offset);
}
std::uint32_t WordAt(const ICCHeader* h, std::size_t offset) {
    std::uint32_t v;
    std::memcpy(&v, reinterpret_cast<const unsigned char*>(h) + offset, sizeof v);
    return v;
}

}  // namespace

KtStatus EncodeICCHeader(const ICCProfileRecord* record, std::uint8_t* out) noexcept {
    if (!record || !out || !record->header) return ERR_INVALID_PARAMETER;
    const ICCHeader* h = record->header;
    std::memset(out, 0, kHeaderBytes);
    for (std::size_t offset : kWords) Store32(out + offset, WordAt(h, offset));
    for (std::size_t i = 0; i < kDateFields; ++i)
        Store16(out + offsetof(ICCHeader, dateTime) + 2 * i, h->dateTime[i]);
    Store64(out + offsetof(ICCHeader, attributes), h->attributes);
    std::memcpy(out + offsetof(ICCHeader, profileId), h->profileId, sizeof h->profileId);
    return STATUS_OK;
}

void DecodeICCHeader(const std::uint8_t* in, ICCHeader* h) noexcept {
    for (std::size_t offset : kWords) WordAt(h, offset) = Load32(in + offset);
    for (std::size_t i = 0; i < kDateFields; ++i)
        h->dateTime[i] = Load16(in + offsetof(ICCHeader, dateTime) + 2 * i);
    h->attributes = Load32(in + kAttributesLowOffset);
    std::memcpy(h->profileId, in + offsetof(ICCHeader, profileId), sizeof h->profileId);
    std::memcpy(h->reserved, in + offsetof(ICCHeader, reserved), sizeof h->reserved);
}

std::uint64_t ImageBytesNeeded(const ICCProfileRecord* record) noexcept {
    const std::uint64_t rows = record->tagCount > 0 ? static_cast<std::uint64_t>(record->tagCount) : 0;
    return kDirectoryStart + kRowBytes * rows + record->tagDataSize;
}

void WriteDirectoryAndTags(const ICCProfileRecord* record, std::uint8_t* image) noexcept {
    Store32(image + kTagCountOffset, static_cast<std::uint32_t>(record->tagCount));
    const std::int32_t rows = record->tagCount > 0 ? record->tagCount : 0;
    std::uint8_t* row = image + kDirectoryStart;
    for (std::int32_t i = 0; i < rows; ++i, row += kRowBytes) {
        const ICCTagEntry& e = record->tagList[i];
        Store32(row, e.signature);
        Store32(row + 4, e.offset);
        Store32(row + 8, e.size);
    }
    if (record->tagDataSize && record->tagData) std::memcpy(row, record->tagData, record->tagDataSize);
}

KtStatus RebuildProfileImage(ICCProfileRecord* record) noexcept {
    if (!record || !record->header) return ERR_INVALID_PARAMETER;
    const std::uint32_t size = record->header->size;
    // A size field that no longer counts the parts (a header re-initialized
    // under existing tags) must not make the copy run past the image.
    if (size < ImageBytesNeeded(record) || (record->tagCount > 0 && !record->tagList)) return ERR_ICC_SIZE_MISMATCH;
    auto* image = static_cast<std::uint8_t*>(KT_ALLOC_LARGE(size));
    if (!image) return ERR_NO_MEMORY;
    std::memset(image, 0, size);
    EncodeICCHeader(record, image);
    WriteDirectoryAndTags(record, image);
    if (record->profileData) KT_FREE_LARGE(record->profileData);
    record->profileSize = size;
    record->profileData = image;
    return STATUS_OK;
}

}  // namespace kt::icc
