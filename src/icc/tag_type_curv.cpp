// 'curv': a sampled curve, a gamma or the identity.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/curve_encoding.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "ktclr/icc_curves.h"
#include "platform/alloc.h"

namespace kt::icc::curv {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
// Entries that keep an element's size within 32 bits.
constexpr std::uint64_t kMaxEntries = (UINT32_MAX - kCurveHeadBytes) / kCurveEntryBytes;
}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const auto* in = static_cast<const ICCCurveType*>(host);
    const std::uint16_t* entries = in->entries;
    const std::uint32_t count = in->count;
    auto* out = static_cast<ICCCurveType*>(fileOrder);
    *out = ICCCurveType{};
    if (!entries || count > kMaxEntries) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("curv"));
    out->count = FileOrder32(count);
    out->entries = static_cast<std::uint16_t*>(KT_ALLOC(std::size_t{count} * kCurveEntryBytes));
    if (!out->entries) return ERR_NO_MEMORY;
    auto* bytes = reinterpret_cast<std::uint8_t*>(out->entries);
    for (std::uint32_t i = 0; i < count; ++i) Store16(bytes + kCurveEntryBytes * i, entries[i]);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return kCurveHeadBytes + std::uint64_t{FileOrder32(static_cast<const ICCCurveType*>(fileOrder)->count)} * kCurveEntryBytes;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCCurveType*>(fileOrder);
    std::memcpy(element, r, kCurveHeadBytes);
    const std::size_t bytes = static_cast<std::size_t>(ElementSize(r) - kCurveHeadBytes);
    if (bytes) std::memcpy(element + kCurveHeadBytes, r->entries, bytes);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCCurveType*>(host);
    *out = ICCCurveType{};
    TagReader in(element, size);
    const ICCCurveType head{in.U32(), in.U32(), in.U32(), nullptr};
    if (!in.ok()) return in.Status();
    *out = head;
    if (!in.Holds(head.count, kCurveEntryBytes)) return in.Status();
    out->entries = static_cast<std::uint16_t*>(KT_ALLOC(std::size_t{head.count} * kCurveEntryBytes));
    if (!out->entries) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < head.count; ++i) out->entries[i] = in.U16();
    return in.Status();
}


}  // namespace kt::icc::curv
