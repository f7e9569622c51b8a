// 'XYZ ': an array of XYZNumbers, three s15Fixed16 values each.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::xyz {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kNumberBytes = 12;
}

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const auto* in = static_cast<const ICCXYZType*>(host);
    const ICCXYZNumber* values = in->values;
    const std::uint32_t count = in->count;
    auto* out = static_cast<ICCXYZType*>(fileOrder);
    *out = ICCXYZType{};
    if (!values) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("XYZ "));
    out->values = static_cast<ICCXYZNumber*>(KT_ALLOC(std::size_t{count} * kNumberBytes));
    if (!out->values) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < count; ++i) {
        auto* bytes = reinterpret_cast<std::uint8_t*>(out->values + i);
        Store32(bytes, static_cast<std::uint32_t>(values[i].X));
        Store32(bytes + 4, static_cast<std::uint32_t>(values[i].Y));
        Store32(bytes + 8, static_cast<std::uint32_t>(values[i].Z));
    }
    out->count = count;
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return kTagTypeHeadBytes + std::uint64_t{kNumberBytes} * static_cast<const ICCXYZType*>(fileOrder)->count;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCXYZType*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    if (r->count) std::memcpy(element + kTagTypeHeadBytes, r->values, std::size_t{r->count} * kNumberBytes);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCXYZType*>(host);
    TagReader in(element, size);
    out->signature = in.U32();
    out->reserved = in.U32();
    const auto count = static_cast<std::uint32_t>(in.Remaining() / kNumberBytes);
    out->count = count;
    out->values = static_cast<ICCXYZNumber*>(KT_ALLOC(std::size_t{count} * kNumberBytes));
    if (!out->values) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < count; ++i) out->values[i] = {in.S32(), in.S32(), in.S32()};
    return in.Status();
}


}  // namespace kt::icc::xyz
