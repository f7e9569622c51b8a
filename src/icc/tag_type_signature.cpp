// 'sig ': one signature after the head. A value shorter than four bytes is
// left-justified and filled with spaces, so 0x41 is stored as "A   ".
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"

namespace kt::icc::sig {
namespace {

constexpr std::uint32_t kElementBytes = 12;

// [below] -> value * scale + spaces, for values of 1, 2 and 3 bytes.
struct Justify {
    std::uint32_t below;
    std::uint32_t scale;
    std::uint32_t spaces;
};
constexpr Justify kJustify[] = {
    {0x100u, 0x1000000u, 0x202020u},
    {0x10000u, 0x10000u, 0x2020u},
    {0x1000000u, 0x100u, 0x20u},
};

std::uint32_t LeftJustified(std::uint32_t value) {
    for (const Justify& j : kJustify)
        if (value < j.below) return value * j.scale + j.spaces;
    return value;
}

}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const std::uint32_t value = static_cast<const ICCSignatureType*>(host)->value;
    auto* out = static_cast<ICCSignatureType*>(fileOrder);
    *out = ICCSignatureType{};
    out->signature = FileOrder32(Sig("sig "));
    out->value = FileOrder32(LeftJustified(value));
    return STATUS_OK;
}

std::uint64_t ElementSize(const void*) noexcept { return kElementBytes; }

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCSignatureType*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    std::memcpy(element + 8, &r->value, 4);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCSignatureType*>(host);
    *out = ICCSignatureType{};
    TagReader in(element, size);
    const ICCSignatureType read{in.U32(), in.U32(), in.U32()};
    if (in.ok()) *out = read;
    return in.Status();
}


}  // namespace kt::icc::sig
