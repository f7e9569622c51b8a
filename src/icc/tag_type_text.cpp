// 'text'. Creating counts the caller's UTF-16 units but copies that many
// bytes plus one, so "AB" is stored as 41 00 42 and only Latin text of one
// character survives a round trip (TagQuirks.TextCopiesBytesNotUnits).
// Parsing reads the stored bytes as the ASCII string the format describes,
// up to its terminator, and widens them to UTF-16.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::text {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
}

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const auto* source = static_cast<const KtChar16*>(static_cast<const ICCTextType*>(host)->text);
    auto* out = static_cast<ICCTextType*>(fileOrder);
    *out = ICCTextType{};
    if (!source) return ERR_INVALID_PARAMETER;
    std::size_t units = 0;
    while (source[units] != 0) ++units;
    if (units >= UINT32_MAX) return ERR_INVALID_PARAMETER;
    const std::size_t bytes = units + 1;
    out->signature = FileOrder32(Sig("text"));
    out->text = KT_ALLOC(bytes);
    if (!out->text) return ERR_NO_MEMORY;
    std::memcpy(out->text, source, bytes);
    out->count = static_cast<std::uint32_t>(bytes);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return std::uint64_t{kTagTypeHeadBytes} + static_cast<const ICCTextType*>(fileOrder)->count;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCTextType*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    if (r->count) std::memcpy(element + kTagTypeHeadBytes, r->text, r->count);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCTextType*>(host);
    *out = ICCTextType{};
    TagReader in(element, size);
    out->signature = in.U32();
    out->reserved = in.U32();
    const auto available = static_cast<std::uint32_t>(in.Remaining());
    const std::uint8_t* chars = in.Take(available);
    std::uint32_t length = 0;
    while (length < available && chars[length] != 0) ++length;
    auto* units = static_cast<KtChar16*>(KT_ALLOC((std::size_t{length} + 1) * sizeof(KtChar16)));
    if (!units) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < length; ++i) units[i] = chars[i];
    units[length] = 0;
    out->text = units;
    out->count = length;
    return in.Status();
}


}  // namespace kt::icc::text
