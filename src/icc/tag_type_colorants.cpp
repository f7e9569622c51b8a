// The colorant types: 'clrt' (a count, then per colorant a 32-byte name and
// three 16-bit PCS values) and 'clro' (a count, then one index byte per
// colorant). The count word is big-endian in a file-order record.
#include <cstddef>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kFixedBytes = 12;  // head and count
constexpr std::uint32_t kEntryBytes = 38;
constexpr int kPcsValues = 3;

static_assert(sizeof(ICCColorantEntry) == kEntryBytes && offsetof(ICCColorantEntry, pcs) == 32,
              "an entry is laid out as it is encoded");

void WriteHead(const void* record, std::uint8_t* element) { std::memcpy(element, record, kFixedBytes); }

}  // namespace

namespace clrt {

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCColorantTableType in = *static_cast<const ICCColorantTableType*>(host);
    auto* out = static_cast<ICCColorantTableType*>(fileOrder);
    *out = ICCColorantTableType{};
    if (!in.entries) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("clrt"));
    out->count = FileOrder32(in.count);
    out->entries = static_cast<ICCColorantEntry*>(KT_ALLOC(std::size_t{in.count} * kEntryBytes));
    if (!out->entries) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < in.count; ++i) {
        std::memcpy(out->entries[i].name, in.entries[i].name, sizeof out->entries[i].name);
        for (int k = 0; k < kPcsValues; ++k) out->entries[i].pcs[k] = FileOrder16(in.entries[i].pcs[k]);
    }
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return kFixedBytes + std::uint64_t{kEntryBytes} * FileOrder32(static_cast<const ICCColorantTableType*>(fileOrder)->count);
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCColorantTableType*>(fileOrder);
    WriteHead(r, element);
    const std::uint32_t count = FileOrder32(r->count);
    if (count) std::memcpy(element + kFixedBytes, r->entries, std::size_t{count} * kEntryBytes);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCColorantTableType*>(host);
    *out = ICCColorantTableType{};
    TagReader in(element, size);
    const ICCColorantTableType head{in.U32(), in.U32(), in.U32(), nullptr};
    if (!in.Holds(head.count, kEntryBytes)) return in.Status();
    out->signature = head.signature;
    out->reserved = head.reserved;
    out->entries = static_cast<ICCColorantEntry*>(KT_ALLOC(std::size_t{head.count} * kEntryBytes));
    if (!out->entries) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        in.Copy(out->entries[i].name, sizeof out->entries[i].name);
        for (int k = 0; k < kPcsValues; ++k) out->entries[i].pcs[k] = in.U16();
    }
    out->count = head.count;
    return in.Status();
}


}  // namespace clrt

namespace clro {

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCColorantOrderType in = *static_cast<const ICCColorantOrderType*>(host);
    auto* out = static_cast<ICCColorantOrderType*>(fileOrder);
    *out = ICCColorantOrderType{};
    if (!in.indices) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("clro"));
    out->count = FileOrder32(in.count);
    out->indices = static_cast<std::uint8_t*>(KT_ALLOC(in.count));
    if (!out->indices) return ERR_NO_MEMORY;
    if (in.count) std::memcpy(out->indices, in.indices, in.count);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return kFixedBytes + std::uint64_t{FileOrder32(static_cast<const ICCColorantOrderType*>(fileOrder)->count)};
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCColorantOrderType*>(fileOrder);
    WriteHead(r, element);
    const std::uint32_t count = FileOrder32(r->count);
    if (count) std::memcpy(element + kFixedBytes, r->indices, count);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCColorantOrderType*>(host);
    *out = ICCColorantOrderType{};
    TagReader in(element, size);
    const ICCColorantOrderType head{in.U32(), in.U32(), in.U32(), nullptr};
    if (!in.Holds(head.count, 1)) return in.Status();
    out->signature = head.signature;
    out->reserved = head.reserved;
    out->indices = static_cast<std::uint8_t*>(KT_ALLOC(head.count));
    if (!out->indices) return ERR_NO_MEMORY;
    in.Copy(out->indices, head.count);
    out->count = head.count;
    return in.Status();
}


}  // namespace clro

}  // namespace kt::icc
