// Vx_DeleteICCTag: removes the first row with a signature and its element.
#include <cstring>

#include "icc/header_codec.h"
#include "icc/tag_directory.h"
#include "ktclr/icc.h"
#include "platform/alloc.h"

namespace {

constexpr auto kModule = kt::mem::Module::iccprofile;

using namespace kt::icc;

// Closes the gap of `removed` bytes at `at` in tagData (whose size already
// excludes them). Only the element goes, not its pad, so later elements may
// lose their 4-byte alignment; rows are fixed up by the caller.
KtStatus CloseGap(ICCProfileRecord* record, std::uint32_t at, std::uint32_t removed) {
    const std::uint32_t tail = record->tagDataSize - at;
    auto* moved = static_cast<std::uint8_t*>(KT_ALLOC(tail));
    if (!moved) return ERR_NO_MEMORY;
    std::memcpy(moved, record->tagData + at + removed, tail);
    std::memcpy(record->tagData + at, moved, tail);
    KT_FREE(moved);
    auto* data = static_cast<std::uint8_t*>(KT_REALLOC(record->tagData, record->tagDataSize));
    if (!data) return ERR_NO_MEMORY;
    record->tagData = data;
    return STATUS_OK;
}

KtStatus RemoveElement(ICCProfileRecord* record, std::uint32_t offset, std::uint32_t size, std::int32_t oldCount) {
    auto* rows = static_cast<ICCTagEntry*>(KT_REALLOC(record->tagList, sizeof(ICCTagEntry) * record->tagCount));
    if (!rows) return ERR_NO_MEMORY;
    record->tagList = rows;
    record->tagDataSize -= size;
    record->header->size -= kRowBytes + size;
    const std::uint32_t at = offset - (kDirectoryStart + kRowBytes * static_cast<std::uint32_t>(oldCount));
    const KtStatus closed = CloseGap(record, at, size);
    if (closed != STATUS_OK) return closed;
    // A row that shared the removed element now points at the next one.
    for (std::int32_t i = 0; i < record->tagCount; ++i) {
        if (rows[i].offset >= offset) rows[i].offset -= size;
        rows[i].offset -= kRowBytes;
    }
    return STATUS_OK;
}

// The last tag: the record goes back to a bare header, a 132-byte image.
void RemoveAll(ICCProfileRecord* record) {
    KT_FREE(record->tagList);
    KT_FREE(record->tagData);
    record->tagList = nullptr;
    record->tagData = nullptr;
    record->tagDataSize = 0;
    record->header->size = kDirectoryStart;
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_DeleteICCTag(ICCProfileRecord* record, uint32_t tagSignature, void* typedOut) {
    if (!record || record->tagCount == 0 || !record->header) return ERR_INVALID_PARAMETER;
    const ICCTagEntry* row = FindTag(record, tagSignature);
    if (!row) return ERR_INVALID_TAG;
    if (!LocateElement(record, *row, 0)) return ERR_INVALID_TAG;
    const std::uint32_t offset = row->offset;
    const std::uint32_t size = row->size;
    const std::int32_t oldCount = record->tagCount;
    const std::int32_t index = static_cast<std::int32_t>(row - record->tagList);

    // The decoded tag is handed out before anything changes; any warning
    // stops the deletion.
    if (typedOut) {
        const KtStatus got = Vx_GetICCTagData(record, typedOut, tagSignature);
        if (got != STATUS_OK) return got;
    }

    record->tagCount = oldCount - 1;
    std::memmove(record->tagList + index, record->tagList + index + 1,
                 sizeof(ICCTagEntry) * static_cast<std::size_t>(oldCount - 1 - index));
    if (record->tagCount > 0) {
        const KtStatus removed = RemoveElement(record, offset, size, oldCount);
        if (removed != STATUS_OK) return removed;
    } else {
        RemoveAll(record);
    }

    std::memset(record->header->profileId, 0, sizeof record->header->profileId);
    const KtStatus rebuilt = RebuildProfileImage(record);
    return rebuilt == STATUS_OK ? RebuildProfileImage(record) : rebuilt;
}
