#include "icc/tag_directory.h"

#include <cstring>

#include "icc/header_codec.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
}

std::uint8_t* AppendTagElement(ICCProfileRecord* record, std::uint32_t padCount, std::uint32_t tagSignature,
                               std::uint32_t length) noexcept {
    const std::int32_t n = record->tagCount + 1;
    const std::uint32_t pad = padCount == 4 ? 0 : padCount;
    const std::uint32_t oldDataSize = record->tagDataSize;
    if (n == 1) {
        // A record whose last tag was deleted starts over.
        record->tagList = nullptr;
        record->tagData = nullptr;
    }
    auto* rows = static_cast<ICCTagEntry*>(KT_REALLOC(record->tagList, sizeof(ICCTagEntry) * n));
    if (!rows) return nullptr;
    record->tagList = rows;
    auto* data = static_cast<std::uint8_t*>(KT_REALLOC(record->tagData, std::size_t{oldDataSize} + pad + length));
    if (!data) {
        // A longer row list is harmless while tagCount counts the old rows,
        // but a first row would escape the tagCount gate of the release.
        if (n == 1) {
            KT_FREE(rows);
            record->tagList = nullptr;
        }
        return nullptr;
    }
    record->tagData = data;

    // Every element moves behind one more directory row.
    for (std::int32_t i = 0; i < n - 1; ++i) rows[i].offset += kRowBytes;
    rows[n - 1] = ICCTagEntry{tagSignature, kDirectoryStart + kRowBytes * static_cast<std::uint32_t>(n) + oldDataSize,
                              length};
    record->tagCount = n;
    record->tagDataSize = oldDataSize + pad + length;
    record->header->size += pad + kRowBytes + length;
    std::uint8_t* element = data + oldDataSize;
    std::memset(element + length, 0, pad);
    return element;
}

const ICCTagEntry* FindTag(const ICCProfileRecord* record, std::uint32_t tagSignature) noexcept {
    if (record->tagCount < 1 || !record->tagList) return nullptr;
    for (std::int32_t i = 0; i < record->tagCount; ++i)
        if (record->tagList[i].signature == tagSignature) return &record->tagList[i];
    return nullptr;
}

const std::uint8_t* LocateElement(const ICCProfileRecord* record, const ICCTagEntry& row,
                                  std::uint32_t minSize) noexcept {
    if (!record->tagData || record->tagCount < 1) return nullptr;
    const std::int64_t start =
        std::int64_t{row.offset} - (kDirectoryStart + std::int64_t{kRowBytes} * record->tagCount);
    if (start < 0 || row.size < minSize || start + std::int64_t{row.size} > std::int64_t{record->tagDataSize})
        return nullptr;
    return record->tagData + start;
}

}  // namespace kt::icc
