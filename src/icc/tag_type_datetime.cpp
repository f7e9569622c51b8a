// 'dtim': six 16-bit numbers, year to seconds.
#include <cstddef>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"

namespace kt::icc::dtim {
namespace {

constexpr std::uint32_t kElementBytes = 20;
constexpr int kFields = 6;

std::uint16_t* Fields(ICCDateTimeType* r) { return &r->year; }
const std::uint16_t* Fields(const ICCDateTimeType* r) { return &r->year; }

static_assert(offsetof(ICCDateTimeType, seconds) - offsetof(ICCDateTimeType, year) == 2 * (kFields - 1),
              "the six fields are contiguous");

}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCDateTimeType in = *static_cast<const ICCDateTimeType*>(host);
    auto* out = static_cast<ICCDateTimeType*>(fileOrder);
    *out = ICCDateTimeType{};
    out->signature = FileOrder32(Sig("dtim"));
    for (int i = 0; i < kFields; ++i) Fields(out)[i] = FileOrder16(Fields(&in)[i]);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void*) noexcept { return kElementBytes; }

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCDateTimeType*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    std::memcpy(element + kTagTypeHeadBytes, Fields(r), 2 * kFields);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCDateTimeType*>(host);
    *out = ICCDateTimeType{};
    TagReader in(element, size);
    ICCDateTimeType read{};
    read.signature = in.U32();
    read.reserved = in.U32();
    for (int i = 0; i < kFields; ++i) Fields(&read)[i] = in.U16();
    if (in.ok()) *out = read;
    return in.Status();
}


}  // namespace kt::icc::dtim
