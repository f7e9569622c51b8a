// 'ncl2': vendor flags, colour count, device coordinates per colour, a
// 32-byte prefix and suffix, then per colour a 32-byte root name, three
// 16-bit PCS values and the device values. Creating keeps only the upper
// half of the vendor flags and copies the PCS values as they stand (only
// the device values are turned big-endian), so a created colour reads back
// with its PCS bytes swapped; the 'ncl2' sample of tests/icc/tag_samples.h
// pins the bytes. Parsing reads everything big-endian.
#include <cstddef>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::ncl2 {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kVendorFlagsKept = 0xFFFF0000u;
constexpr std::uint32_t kNameBytes = 32;
constexpr std::uint32_t kPcsBytes = 6;
constexpr std::uint32_t kFixedBytes = 84;  // head, flags, count, coordinates, prefix, suffix
constexpr int kPcsValues = 3;

static_assert(offsetof(ICCNamedColor2Type, suffix) + 32 == kFixedBytes, "the fixed fields are laid out as encoded");

std::uint64_t ColourBytes(std::uint32_t deviceCoordinates) {
    return kNameBytes + kPcsBytes + 2 * std::uint64_t{deviceCoordinates};
}

}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCNamedColor2Type in = *static_cast<const ICCNamedColor2Type*>(host);
    auto* out = static_cast<ICCNamedColor2Type*>(fileOrder);
    *out = ICCNamedColor2Type{};
    if (!in.entries) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("ncl2"));
    out->vendorFlags = FileOrder32(in.vendorFlags & kVendorFlagsKept);
    out->count = FileOrder32(in.count);
    out->deviceCoordinates = FileOrder32(in.deviceCoordinates);
    std::memcpy(out->prefix, in.prefix, sizeof out->prefix);
    std::memcpy(out->suffix, in.suffix, sizeof out->suffix);
    auto* entries = static_cast<ICCNamedColor2Entry*>(KT_ALLOC_ZERO(std::size_t{in.count} * sizeof(ICCNamedColor2Entry)));
    if (!entries) return ERR_NO_MEMORY;
    out->entries = entries;
    const std::uint32_t coordinates = in.deviceCoordinates;
    for (std::uint32_t i = 0; i < in.count; ++i) {
        const ICCNamedColor2Entry& from = in.entries[i];
        if (coordinates && !from.device) return ERR_INVALID_PARAMETER;
        std::memcpy(entries[i].rootName, from.rootName, kNameBytes);
        std::memcpy(entries[i].pcs, from.pcs, kPcsBytes);
        entries[i].device = static_cast<std::uint16_t*>(KT_ALLOC(std::size_t{coordinates} * 2));
        if (!entries[i].device) return ERR_NO_MEMORY;
        for (std::uint32_t k = 0; k < coordinates; ++k) entries[i].device[k] = FileOrder16(from.device[k]);
    }
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    const auto& r = *static_cast<const ICCNamedColor2Type*>(fileOrder);
    return kFixedBytes + FileOrder32(r.count) * ColourBytes(FileOrder32(r.deviceCoordinates));
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto& r = *static_cast<const ICCNamedColor2Type*>(fileOrder);
    std::memcpy(element, &r, kFixedBytes);
    const std::uint32_t count = FileOrder32(r.count);
    const std::size_t deviceBytes = 2 * std::size_t{FileOrder32(r.deviceCoordinates)};
    std::uint8_t* p = element + kFixedBytes;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::memcpy(p, r.entries[i].rootName, kNameBytes);
        std::memcpy(p + kNameBytes, r.entries[i].pcs, kPcsBytes);
        if (deviceBytes) std::memcpy(p + kNameBytes + kPcsBytes, r.entries[i].device, deviceBytes);
        p += kNameBytes + kPcsBytes + deviceBytes;
    }
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCNamedColor2Type*>(host);
    *out = ICCNamedColor2Type{};
    TagReader in(element, size);
    ICCNamedColor2Type head{in.U32(), in.U32(), in.U32(), in.U32(), in.U32(), {}, {}, nullptr};
    in.Copy(head.prefix, sizeof head.prefix);
    in.Copy(head.suffix, sizeof head.suffix);
    const std::uint32_t coordinates = head.deviceCoordinates;
    if (!in.Holds(head.count, ColourBytes(coordinates))) return in.Status();
    *out = head;
    out->count = 0;
    out->entries = static_cast<ICCNamedColor2Entry*>(KT_ALLOC_ZERO(std::size_t{head.count} * sizeof(ICCNamedColor2Entry)));
    if (!out->entries) return ERR_NO_MEMORY;
    out->count = head.count;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        ICCNamedColor2Entry& to = out->entries[i];
        in.Copy(to.rootName, kNameBytes);
        for (int k = 0; k < kPcsValues; ++k) to.pcs[k] = in.U16();
        to.device = static_cast<std::uint16_t*>(KT_ALLOC(std::size_t{coordinates} * 2));
        if (!to.device) return ERR_NO_MEMORY;
        for (std::uint32_t k = 0; k < coordinates; ++k) to.device[k] = in.U16();
    }
    return in.Status();
}

}  // namespace kt::icc::ncl2
