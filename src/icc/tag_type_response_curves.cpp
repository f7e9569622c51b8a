// 'rcs2' (responseCurveSet16Type): a channel count, a count of measurement
// types and an offset per measurement type (from the start of the tag) to
// its curve structure: the measurement unit, the number of measurements
// per channel, the XYZ of each channel at its maximum colorant, then the
// measurements of each channel in turn (device value, reserved, s15Fixed16
// measurement). The structures are written one after another behind the
// offsets.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::rcs2 {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kFixedBytes = 12;  // head, channels, count
constexpr std::uint32_t kOffsetBytes = 4;
constexpr std::uint32_t kUnitBytes = 4;
constexpr std::uint32_t kPerChannelBytes = 4 + 12;  // measurement count and XYZ
constexpr std::uint32_t kResponseBytes = 8;
static_assert(sizeof(ICCResponse16Number) == kResponseBytes && sizeof(ICCXYZNumber) == 12,
              "responses and XYZ numbers are laid out as encoded");

std::uint64_t Responses(const std::uint32_t* counts, std::uint32_t channels, bool fileOrder) {
    std::uint64_t sum = 0;
    for (std::uint32_t c = 0; c < channels; ++c) sum += fileOrder ? FileOrder32(counts[c]) : counts[c];
    return sum;
}

std::uint64_t CurveBytes(const ICCResponseCurve& curve, std::uint32_t channels) {
    return kUnitBytes + std::uint64_t{kPerChannelBytes} * channels +
           kResponseBytes * Responses(curve.measurementCounts, channels, true);
}

KtStatus CreateCurve(const ICCResponseCurve& in, std::uint32_t channels, ICCResponseCurve* out) {
    if (!in.measurementCounts || !in.maximumColorant || !in.responses) return ERR_INVALID_PARAMETER;
    const std::uint64_t responses = Responses(in.measurementCounts, channels, false);
    out->measurementUnit = FileOrder32(in.measurementUnit);
    out->measurementCounts = static_cast<std::uint32_t*>(KT_ALLOC(std::size_t{channels} * 4));
    out->maximumColorant = static_cast<ICCXYZNumber*>(KT_ALLOC(std::size_t{channels} * sizeof(ICCXYZNumber)));
    out->responses = static_cast<ICCResponse16Number*>(KT_ALLOC(responses * kResponseBytes));
    if (!out->measurementCounts || !out->maximumColorant || !out->responses) return ERR_NO_MEMORY;
    for (std::uint32_t c = 0; c < channels; ++c) {
        out->measurementCounts[c] = FileOrder32(in.measurementCounts[c]);
        const ICCXYZNumber& xyz = in.maximumColorant[c];
        out->maximumColorant[c] = {static_cast<std::int32_t>(FileOrder32(static_cast<std::uint32_t>(xyz.X))),
                                   static_cast<std::int32_t>(FileOrder32(static_cast<std::uint32_t>(xyz.Y))),
                                   static_cast<std::int32_t>(FileOrder32(static_cast<std::uint32_t>(xyz.Z)))};
    }
    for (std::uint64_t k = 0; k < responses; ++k) {
        const ICCResponse16Number& r = in.responses[k];
        out->responses[k] = {FileOrder16(r.deviceValue), FileOrder16(r.reserved),
                             static_cast<std::int32_t>(FileOrder32(static_cast<std::uint32_t>(r.measurement)))};
    }
    return STATUS_OK;
}

// Reads the structure at `offset`; the counts are checked against what lies
// ahead before anything is allocated for them.
KtStatus ParseCurve(TagReader in, std::uint32_t offset, std::uint32_t channels, ICCResponseCurve* out) {
    in.Seek(offset);
    const std::uint32_t unit = in.U32();
    const TagReader counts = in;
    in.Skip(std::uint64_t{kPerChannelBytes} * channels);
    if (!in.ok()) return ERR_INVALID_TAG;
    const TagReader xyz = in;
    in = counts;
    std::uint64_t responses = 0;
    for (std::uint32_t c = 0; c < channels; ++c) responses += in.U32();
    in = xyz;
    if (!in.Holds(responses, kResponseBytes)) return ERR_INVALID_TAG;

    out->measurementUnit = unit;
    out->measurementCounts = static_cast<std::uint32_t*>(KT_ALLOC(std::size_t{channels} * 4));
    out->maximumColorant = static_cast<ICCXYZNumber*>(KT_ALLOC(std::size_t{channels} * sizeof(ICCXYZNumber)));
    out->responses = static_cast<ICCResponse16Number*>(KT_ALLOC(responses * kResponseBytes));
    if (!out->measurementCounts || !out->maximumColorant || !out->responses) return ERR_NO_MEMORY;
    in = counts;
    for (std::uint32_t c = 0; c < channels; ++c) out->measurementCounts[c] = in.U32();
    for (std::uint32_t c = 0; c < channels; ++c) out->maximumColorant[c] = {in.S32(), in.S32(), in.S32()};
    for (std::uint64_t k = 0; k < responses; ++k) out->responses[k] = {in.U16(), in.U16(), in.S32()};
    return in.Status();
}

}  // namespace

// Curves already made stay in the record on a failure, for the release.
KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCResponseCurveSet16Type in = *static_cast<const ICCResponseCurveSet16Type*>(host);
    auto* out = static_cast<ICCResponseCurveSet16Type*>(fileOrder);
    *out = ICCResponseCurveSet16Type{};
    if (!in.curves) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("rcs2"));
    out->channels = FileOrder16(in.channels);
    out->count = FileOrder16(in.count);
    out->curves = static_cast<ICCResponseCurve*>(KT_ALLOC_ZERO(std::size_t{in.count} * sizeof(ICCResponseCurve)));
    if (!out->curves) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < in.count; ++i) {
        const KtStatus made = CreateCurve(in.curves[i], in.channels, &out->curves[i]);
        if (made != STATUS_OK) return made;
    }
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    const auto& r = *static_cast<const ICCResponseCurveSet16Type*>(fileOrder);
    const std::uint32_t count = FileOrder16(r.count);
    std::uint64_t size = kFixedBytes + std::uint64_t{kOffsetBytes} * count;
    for (std::uint32_t i = 0; i < count; ++i) size += CurveBytes(r.curves[i], FileOrder16(r.channels));
    return size;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto& r = *static_cast<const ICCResponseCurveSet16Type*>(fileOrder);
    const std::uint32_t count = FileOrder16(r.count);
    const std::uint32_t channels = FileOrder16(r.channels);
    std::memcpy(element, &r, kFixedBytes);
    std::uint64_t offset = kFixedBytes + std::uint64_t{kOffsetBytes} * count;
    for (std::uint32_t i = 0; i < count; ++i) {
        const ICCResponseCurve& curve = r.curves[i];
        Store32(element + kFixedBytes + kOffsetBytes * i, static_cast<std::uint32_t>(offset));
        std::uint8_t* p = element + offset;
        std::memcpy(p, &curve.measurementUnit, kUnitBytes);
        p += kUnitBytes;
        if (channels) {
            std::memcpy(p, curve.measurementCounts, std::size_t{channels} * 4);
            std::memcpy(p + std::size_t{channels} * 4, curve.maximumColorant, std::size_t{channels} * 12);
        }
        p += std::size_t{channels} * kPerChannelBytes;
        const std::uint64_t responses = Responses(curve.measurementCounts, channels, true);
        if (responses) std::memcpy(p, curve.responses, responses * kResponseBytes);
        offset += CurveBytes(curve, channels);
    }
}

// Curves already read stay in the record on a failure, as in every parse.
KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCResponseCurveSet16Type*>(host);
    *out = ICCResponseCurveSet16Type{};
    TagReader in(element, size);
    const ICCResponseCurveSet16Type head{in.U32(), in.U32(), in.U16(), in.U16(), nullptr};
    if (!in.Holds(head.count, kOffsetBytes)) return ERR_INVALID_TAG;
    out->signature = head.signature;
    out->reserved = head.reserved;
    out->channels = head.channels;
    out->curves = static_cast<ICCResponseCurve*>(KT_ALLOC_ZERO(std::size_t{head.count} * sizeof(ICCResponseCurve)));
    if (!out->curves) return ERR_NO_MEMORY;
    out->count = head.count;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        const std::uint32_t offset = in.U32();
        const KtStatus parsed = ParseCurve(in, offset, head.channels, &out->curves[i]);
        if (parsed != STATUS_OK) return parsed;
    }
    return STATUS_OK;
}

}  // namespace kt::icc::rcs2
