// 'chrm': a channel count, the phosphor or colorant type, then an x, y pair
// of u16Fixed16 numbers per channel.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::chrm {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kFixedBytes = 12;  // head, channels, type
constexpr std::uint32_t kPairBytes = 8;
static_assert(sizeof(ICCChromaticityCoordinate) == kPairBytes, "a pair is laid out as it is encoded");
}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCChromaticityType in = *static_cast<const ICCChromaticityType*>(host);
    auto* out = static_cast<ICCChromaticityType*>(fileOrder);
    *out = ICCChromaticityType{};
    if (!in.coordinates) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("chrm"));
    out->channels = FileOrder16(in.channels);
    out->colorantType = FileOrder16(in.colorantType);
    out->coordinates = static_cast<ICCChromaticityCoordinate*>(KT_ALLOC(std::size_t{in.channels} * kPairBytes));
    if (!out->coordinates) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < in.channels; ++i)
        out->coordinates[i] = {FileOrder32(in.coordinates[i].x), FileOrder32(in.coordinates[i].y)};
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return kFixedBytes + std::uint64_t{kPairBytes} * FileOrder16(static_cast<const ICCChromaticityType*>(fileOrder)->channels);
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCChromaticityType*>(fileOrder);
    std::memcpy(element, r, kFixedBytes);
    const std::uint32_t channels = FileOrder16(r->channels);
    if (channels) std::memcpy(element + kFixedBytes, r->coordinates, std::size_t{channels} * kPairBytes);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCChromaticityType*>(host);
    *out = ICCChromaticityType{};
    TagReader in(element, size);
    const ICCChromaticityType head{in.U32(), in.U32(), in.U16(), in.U16(), nullptr};
    if (!in.Holds(head.channels, kPairBytes)) return in.Status();
    *out = head;
    out->channels = 0;
    out->coordinates = static_cast<ICCChromaticityCoordinate*>(KT_ALLOC(std::size_t{head.channels} * kPairBytes));
    if (!out->coordinates) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < head.channels; ++i) out->coordinates[i] = {in.U32(), in.U32()};
    out->channels = head.channels;
    return in.Status();
}


}  // namespace kt::icc::chrm
