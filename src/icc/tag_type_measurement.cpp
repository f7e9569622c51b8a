// The measurement conditions: 'meas' (observer, backing, geometry, flare,
// illuminant) and 'view' (illuminant and surround XYZ, illuminant type).
// Both are 36 bytes of 32-bit numbers; creating accepts only the values
// the format enumerates.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"

namespace kt::icc {
namespace {

constexpr std::uint32_t kElementBytes = 36;
constexpr std::uint32_t kWords = (kElementBytes - kTagTypeHeadBytes) / 4;
constexpr std::uint32_t kLastObserver = 2;
constexpr std::uint32_t kLastGeometry = 2;
constexpr std::uint32_t kFlareNone = 0;
constexpr std::uint32_t kFlareFull = 0x10000;  // 100 % as u16Fixed16
constexpr std::uint32_t kLastIlluminant = 8;

// Both records are the head and seven 32-bit numbers in encoding order.
template <class Record>
std::uint32_t* Words(Record* r) {
    static_assert(sizeof(Record) == kElementBytes, "head and seven numbers");
    return reinterpret_cast<std::uint32_t*>(r) + 2;
}

template <class Record>
KtStatus CreateWords(const Record& in, std::uint32_t type, bool accepted, void* fileOrder) {
    auto* out = static_cast<Record*>(fileOrder);
    *out = Record{};
    if (!accepted) return ERR_INVALID_PARAMETER;
    Record copy = in;
    out->signature = FileOrder32(type);
    for (std::uint32_t i = 0; i < kWords; ++i) Words(out)[i] = FileOrder32(Words(&copy)[i]);
    return STATUS_OK;
}

void WriteWords(const void* fileOrder, std::uint8_t* element) { std::memcpy(element, fileOrder, kElementBytes); }

template <class Record>
KtStatus ParseWords(const std::uint8_t* element, std::uint32_t size, void* host) {
    auto* out = static_cast<Record*>(host);
    *out = Record{};
    TagReader in(element, size);
    Record read{};
    read.signature = in.U32();
    read.reserved = in.U32();
    for (std::uint32_t i = 0; i < kWords; ++i) Words(&read)[i] = in.U32();
    if (in.ok()) *out = read;
    return in.Status();
}

}  // namespace

namespace meas {

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCMeasurementType in = *static_cast<const ICCMeasurementType*>(host);
    const bool accepted = in.observer <= kLastObserver && in.geometry <= kLastGeometry &&
                          (in.flare == kFlareNone || in.flare == kFlareFull) && in.illuminant <= kLastIlluminant;
    return CreateWords(in, Sig("meas"), accepted, fileOrder);
}
std::uint64_t ElementSize(const void*) noexcept { return kElementBytes; }
void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept { WriteWords(fileOrder, element); }
KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    return ParseWords<ICCMeasurementType>(element, size, host);
}

}  // namespace meas

namespace view {

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCViewingConditionsType in = *static_cast<const ICCViewingConditionsType*>(host);
    return CreateWords(in, Sig("view"), in.illuminantType <= kLastIlluminant, fileOrder);
}
std::uint64_t ElementSize(const void*) noexcept { return kElementBytes; }
void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept { WriteWords(fileOrder, element); }
KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    return ParseWords<ICCViewingConditionsType>(element, size, host);
}

}  // namespace view

}  // namespace kt::icc
