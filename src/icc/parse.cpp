// Reading profile bytes into a record (Vx_FillICCProfileStructure) and a
// checked profile file (Vx_FillICCProfileFromICCFile).
#include <cerrno>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/header_codec.h"
#include "ktclr/icc.h"
#include "platform/alloc.h"
#include "platform/file.h"

namespace {

constexpr auto kModule = kt::mem::Module::iccprofile;

using namespace kt::icc;

// What Fill allocated, released again when the bytes are refused.
struct FillState {
    ICCProfileRecord* record;
    bool ownImage;     // profileData was allocated here
    bool ownHeader;    // header was allocated here

    KtStatus Refuse() {
        if (ownImage) {
            KT_FREE_LARGE(record->profileData);
            record->profileData = nullptr;
        }
        if (ownHeader) {
            KT_FREE(record->header);
            record->header = nullptr;
        }
        return ERR_ICC_INVALID_PROFILE;
    }
};

// Rows are taken as they stand; only the directory itself has to fit inside
// the profile, so the allocations below stay bounded by its size.
KtStatus ReadDirectory(ICCProfileRecord* record, const std::uint8_t* bytes, std::int32_t count) {
    auto* rows = static_cast<ICCTagEntry*>(KT_ALLOC(sizeof(ICCTagEntry) * static_cast<std::size_t>(count)));
    if (!rows) return ERR_NO_MEMORY;
    const std::uint8_t* in = bytes + kDirectoryStart;
    for (std::int32_t i = 0; i < count; ++i, in += kRowBytes)
        rows[i] = ICCTagEntry{Load32(in), Load32(in + 4), Load32(in + 8)};
    record->tagList = rows;
    record->tagCount = count;

    const std::uint64_t dataStart = kDirectoryStart + std::uint64_t{kRowBytes} * static_cast<std::uint32_t>(count);
    const auto dataSize = static_cast<std::uint32_t>(record->header->size - dataStart);
    auto* data = static_cast<std::uint8_t*>(KT_ALLOC(dataSize));
    if (!data) return ERR_NO_MEMORY;
    if (dataSize) std::memcpy(data, bytes + dataStart, dataSize);
    record->tagData = data;
    record->tagDataSize = dataSize;
    return STATUS_OK;
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_FillICCProfileStructure(ICCProfileRecord* record, const unsigned char* bytes,
                                                         uint32_t length) {
    if (!record || !bytes || length == 0) return ERR_INVALID_PARAMETER;
    // The record's own image is parsed in place. A different buffer is
    // copied; the previous image is not released here (the caller does that
    // with Vx_ClrIntFreeICCData before refilling a record).
    FillState state{record, bytes != record->profileData, false};
    std::uint8_t* image = nullptr;
    if (state.ownImage) {
        record->profileSize = length;
        image = static_cast<std::uint8_t*>(KT_ALLOC_LARGE(length));
        if (!image) return ERR_NO_MEMORY;
    }
    if (!record->header) {
        record->header = static_cast<ICCHeader*>(KT_ALLOC(sizeof(ICCHeader)));
        if (!record->header) {
            if (image) KT_FREE_LARGE(image);
            return ERR_NO_MEMORY;
        }
        state.ownHeader = true;
    }
    if (image) {
        record->profileData = image;
        std::memcpy(image, bytes, length);
    }

    // Only the size is checked, and that the header and tag count are there
    // at all.
    ICCHeader* header = record->header;
    header->size = length >= 4 ? Load32(bytes) : UINT32_MAX;
    if (header->size > length || length < kDirectoryStart) return state.Refuse();
    DecodeICCHeader(bytes, header);

    const auto count = static_cast<std::int32_t>(Load32(bytes + kTagCountOffset));
    if (count < 1) {
        record->tagCount = count;
        return STATUS_OK;
    }
    if (kDirectoryStart + std::uint64_t{kRowBytes} * static_cast<std::uint32_t>(count) > header->size)
        return state.Refuse();
    return ReadDirectory(record, bytes, count);
}

extern "C" KTCLR_API KtStatus Vx_FillICCProfileFromICCFile(const KtChar16* fileName, ICCProfileRecord* record) {
    constexpr std::uint32_t kMagicOffset = 36;
    constexpr std::uint32_t kVersionOffset = 8;
    constexpr std::uint8_t kMaxMajor = 4;
    constexpr std::uint8_t kMaxMinor = 8;
    if (!fileName || !record) return ERR_INVALID_PARAMETER;
    kt::file::File file;
    if (!file.Open(fileName, kt::file::Mode::read, kt::mem::Module::ktclasses_))
        return errno == ENOMEM ? ERR_NO_MEMORY : ERR_FILE_CREATE;
    std::uint8_t head[kHeaderBytes];
    if (!file.ReadExact(head, sizeof head)) return ERR_FILE_READ;

    // A minor version above 8 passes as long as the two low version bytes
    // are zero.
    const std::uint32_t size = Load32(head);
    const std::int64_t fileSize = file.Size();
    const std::uint8_t* version = head + kVersionOffset;
    if (Load32(head + kMagicOffset) != Sig("acsp") || fileSize < 0 || size == 0 ||
        std::int64_t{size} > fileSize || version[0] < 1 || version[0] > kMaxMajor ||
        ((version[1] >> 4) > kMaxMinor && (version[2] || version[3])))
        return ERR_ICC_SIZE_MISMATCH;

    if (!file.Seek(0)) return ERR_FILE_READ;
    constexpr auto kBufferModule = kt::mem::Module::ktclasses_;
    auto* buffer = static_cast<std::uint8_t*>(kt::mem::Alloc(size, kBufferModule, __LINE__));
    if (!buffer) return ERR_NO_MEMORY;
    KtStatus status = ERR_FILE_READ;
    if (file.ReadExact(buffer, size)) status = Vx_FillICCProfileStructure(record, buffer, size);
    kt::mem::Free(buffer, kBufferModule, __LINE__);
    return status;
}
