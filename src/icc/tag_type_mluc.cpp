// 'mluc': a count, the name-record size (12), the name records (language,
// country, string length in bytes, string offset from the start of the
// tag) and the UTF-16 strings. Records keep all strings in one pool, one
// after another in record order; the encoding places that pool right after
// the name records. Parsing copies each record's string into the pool and
// gives the record the offset it has in that layout.
#include "icc/tag_type_mluc.h"

#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::mluc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kFixedBytes = 16;  // head, count, record size
constexpr std::uint32_t kRecordBytes = KTCLR_ICC_MLUC_RECORD_BYTES;
static_assert(sizeof(ICCMlucNameRecord) == kRecordBytes, "a name record is laid out as it is encoded");

std::uint64_t PoolBytes(const ICCMultiLocalizedUnicodeType& r, bool fileOrder) {
    const std::uint32_t count = fileOrder ? FileOrder32(r.count) : r.count;
    std::uint64_t sum = 0;
    for (std::uint32_t i = 0; i < count; ++i) sum += fileOrder ? FileOrder32(r.records[i].length) : r.records[i].length;
    return sum / 2 * 2;
}

std::uint64_t FileOrderCount(const ICCMultiLocalizedUnicodeType& r) {
    return r.records ? FileOrder32(r.count) : 0;
}

}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCMultiLocalizedUnicodeType in = *static_cast<const ICCMultiLocalizedUnicodeType*>(host);
    auto* out = static_cast<ICCMultiLocalizedUnicodeType*>(fileOrder);
    *out = ICCMultiLocalizedUnicodeType{};
    out->signature = FileOrder32(Sig("mluc"));
    out->count = FileOrder32(in.count);
    out->recordSize = FileOrder32(in.recordSize);
    if (in.count == 0) return STATUS_OK;
    if (!in.records || !in.strings) return ERR_INVALID_PARAMETER;
    const std::uint64_t poolBytes = PoolBytes(in, false);
    if (kFixedBytes + std::uint64_t{kRecordBytes} * in.count + poolBytes > UINT32_MAX) return ERR_INVALID_PARAMETER;
    auto* records = static_cast<ICCMlucNameRecord*>(KT_ALLOC(std::size_t{in.count} * kRecordBytes));
    if (!records) return ERR_NO_MEMORY;
    out->records = records;
    for (std::uint32_t i = 0; i < in.count; ++i) {
        const ICCMlucNameRecord& r = in.records[i];
        records[i] = {FileOrder16(r.language), FileOrder16(r.country), FileOrder32(r.length), FileOrder32(r.offset)};
    }
    const std::size_t units = poolBytes / 2;
    out->strings = static_cast<KtChar16*>(KT_ALLOC(units * sizeof(KtChar16)));
    if (!out->strings) return ERR_NO_MEMORY;
    for (std::size_t i = 0; i < units; ++i) out->strings[i] = FileOrder16(in.strings[i]);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    const auto& r = *static_cast<const ICCMultiLocalizedUnicodeType*>(fileOrder);
    const std::uint64_t count = FileOrderCount(r);
    return kFixedBytes + kRecordBytes * count + (count ? PoolBytes(r, true) : 0);
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto& r = *static_cast<const ICCMultiLocalizedUnicodeType*>(fileOrder);
    std::memcpy(element, &r, kFixedBytes);
    const std::uint64_t count = FileOrderCount(r);
    if (!count) return;
    std::memcpy(element + kFixedBytes, r.records, count * kRecordBytes);
    const std::uint64_t poolBytes = PoolBytes(r, true);
    if (poolBytes) std::memcpy(element + kFixedBytes + count * kRecordBytes, r.strings, poolBytes);
}

KtStatus ParseEmbedded(TagReader in, ICCMultiLocalizedUnicodeType* out, std::uint32_t* used) noexcept {
    *out = ICCMultiLocalizedUnicodeType{};
    const ICCMultiLocalizedUnicodeType head{in.U32(), in.U32(), in.U32(), in.U32(), nullptr, nullptr};
    if (!in.ok() || head.recordSize != kRecordBytes || !in.Holds(head.count, kRecordBytes)) return ERR_INVALID_TAG;
    // Strings lie behind the name records, on 16-bit units.
    const std::uint32_t stringsStart = kFixedBytes + kRecordBytes * head.count;
    const TagReader records = in;
    std::uint64_t poolBytes = 0;
    std::uint64_t end = stringsStart;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        in.Skip(4);
        const std::uint32_t length = in.U32();
        const std::uint32_t offset = in.U32();
        TagReader string = in;
        string.Seek(offset);
        string.Skip(length);
        if (length % 2 || offset % 2 || offset < stringsStart || !string.ok()) return ERR_INVALID_TAG;
        poolBytes += length;
        if (string.Position() > end) end = string.Position();
    }
    // Strings that share bytes in the element get a copy each.
    if (stringsStart + poolBytes > UINT32_MAX) return ERR_INVALID_TAG;

    *out = head;
    out->records = nullptr;
    out->strings = nullptr;
    *used = static_cast<std::uint32_t>(end);
    if (head.count == 0) return STATUS_OK;
    out->records = static_cast<ICCMlucNameRecord*>(KT_ALLOC(std::size_t{head.count} * kRecordBytes));
    if (!out->records) return ERR_NO_MEMORY;
    out->strings = static_cast<KtChar16*>(KT_ALLOC(poolBytes));
    if (!out->strings) return ERR_NO_MEMORY;
    std::uint32_t position = stringsStart;
    KtChar16* unit = out->strings;
    in = records;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        const ICCMlucNameRecord r{in.U16(), in.U16(), in.U32(), in.U32()};
        out->records[i] = {r.language, r.country, r.length, position};
        TagReader string = in;
        string.Seek(r.offset);
        for (std::uint32_t k = 0; k < r.length; k += 2) *unit++ = string.U16();
        position += r.length;
    }
    return STATUS_OK;
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    std::uint32_t used = 0;
    return ParseEmbedded(TagReader(element, size), static_cast<ICCMultiLocalizedUnicodeType*>(host), &used);
}

}  // namespace kt::icc::mluc
