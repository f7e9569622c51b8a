// Writing a record out: the checked image (Vx_GenerateICCPointer) and the
// image as a file (Vx_GenerateICCFile).
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

// A scratch block of the profile code, released on every path.
struct Scratch {
    explicit Scratch(std::size_t size) : bytes(static_cast<std::uint8_t*>(KT_ALLOC(size))) {}
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        if (bytes) KT_FREE(bytes);
    }
    std::uint8_t* bytes;
};

void WriteRows(const ICCProfileRecord* record, std::uint8_t* out) {
    for (std::int32_t i = 0; i < record->tagCount; ++i, out += kRowBytes) {
        Store32(out, record->tagList[i].signature);
        Store32(out + 4, record->tagList[i].offset);
        Store32(out + 8, record->tagList[i].size);
    }
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_GenerateICCPointer(ICCProfileRecord* record) {
    constexpr std::uint32_t kFixedRows = 11;  // 132 bytes of header and count, in rows
    if (!record) return ERR_INVALID_PARAMETER;
    if (!record->header) return ERR_NULL_ARGUMENT;
    const std::uint32_t total =
        record->tagDataSize + kRowBytes * (static_cast<std::uint32_t>(record->tagCount) + kFixedRows);
    record->profileSize = total;
    // The second test catches what 32 bits cannot: a negative count or a sum
    // that wrapped.
    if (record->header->size != total || ImageBytesNeeded(record) != total || record->tagCount < 0)
        return ERR_ICC_SIZE_MISMATCH;
    if (record->tagCount > 0 && !record->tagList) return ERR_ICC_SIZE_MISMATCH;

    Vx_ClrIntFreeICCData(record);
    auto* image = static_cast<std::uint8_t*>(KT_ALLOC_LARGE(total));
    if (!image) return ERR_NO_MEMORY;
    record->profileData = image;

    {
        Scratch header(kHeaderBytes);
        if (!header.bytes) return ERR_NO_MEMORY;
        EncodeICCHeader(record, header.bytes);
        std::memcpy(image, header.bytes, kHeaderBytes);
    }
    {
        const std::size_t rowBytes = std::size_t{kRowBytes} * static_cast<std::uint32_t>(record->tagCount);
        Scratch rows(rowBytes);
        if (!rows.bytes) return ERR_NO_MEMORY;
        WriteRows(record, rows.bytes);
        Store32(image + kTagCountOffset, static_cast<std::uint32_t>(record->tagCount));
        if (rowBytes) std::memcpy(image + kDirectoryStart, rows.bytes, rowBytes);
    }
    std::uint8_t* tags = image + kDirectoryStart + std::size_t{kRowBytes} * record->tagCount;
    if (record->tagDataSize) {
        if (record->tagData)
            std::memcpy(tags, record->tagData, record->tagDataSize);
        else
            std::memset(tags, 0, record->tagDataSize);
    }
    return STATUS_OK;
}

// The image is written as it stands, without a rebuild or a check.
extern "C" KTCLR_API KtStatus Vx_GenerateICCFile(ICCProfileRecord* record, const KtChar16* fileName) {
    if (!record || !fileName) return ERR_INVALID_PARAMETER;
    kt::file::File file;
    if (!file.Open(fileName, kt::file::Mode::write, kt::mem::Module::ktclasses_))
        return errno == ENOMEM ? ERR_NO_MEMORY : ERR_FILE_CREATE;
    const bool written = record->profileSize == 0 ||
                         (record->profileData && file.WriteAll(record->profileData, record->profileSize));
    file.Close();
    return written ? STATUS_OK : ERR_FILE_WRITE;
}
