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
#include "icc/tag_element_bounds.h"
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

bool IsFileOrder(const ICCResponseCurveSet16Type& r) { return r.signature == FileOrder32(Sig("rcs2")); }

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

// Reads the structure at `offset`; every part is checked against `size`
// before anything is allocated for it.
KtStatus ParseCurve(const std::uint8_t* element, std::uint32_t size, std::uint32_t offset, std::uint32_t channels,
                    ICCResponseCurve* out) {
    const std::uint64_t countsAt = std::uint64_t{offset} + kUnitBytes;
    const std::uint64_t xyzAt = countsAt + 4 * std::uint64_t{channels};
    const std::uint64_t responsesAt = countsAt + std::uint64_t{kPerChannelBytes} * channels;
    if (!Inside(size, offset, responsesAt - offset)) return ERR_INVALID_TAG;
    std::uint64_t responses = 0;
    for (std::uint32_t c = 0; c < channels; ++c) responses += Load32(element + countsAt + 4 * c);
    if (responses > ItemsThatFit(size, responsesAt, kResponseBytes)) return ERR_INVALID_TAG;

    out->measurementUnit = Load32(element + offset);
    out->measurementCounts = static_cast<std::uint32_t*>(KT_ALLOC(std::size_t{channels} * 4));
    out->maximumColorant = static_cast<ICCXYZNumber*>(KT_ALLOC(std::size_t{channels} * sizeof(ICCXYZNumber)));
    out->responses = static_cast<ICCResponse16Number*>(KT_ALLOC(responses * kResponseBytes));
    if (!out->measurementCounts || !out->maximumColorant || !out->responses) return ERR_NO_MEMORY;
    for (std::uint32_t c = 0; c < channels; ++c) {
        out->measurementCounts[c] = Load32(element + countsAt + 4 * c);
        const std::uint8_t* xyz = element + xyzAt + 12 * c;
        out->maximumColorant[c] = {static_cast<std::int32_t>(Load32(xyz)), static_cast<std::int32_t>(Load32(xyz + 4)),
                                   static_cast<std::int32_t>(Load32(xyz + 8))};
    }
    const std::uint8_t* p = element + responsesAt;
    for (std::uint64_t k = 0; k < responses; ++k, p += kResponseBytes)
        out->responses[k] = {Load16(p), Load16(p + 2), static_cast<std::int32_t>(Load32(p + 4))};
    return STATUS_OK;
}

}  // namespace

// Curves already made stay in the record on a failure, for Release.
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

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCResponseCurveSet16Type*>(host);
    *out = ICCResponseCurveSet16Type{};
    if (size < kFixedBytes) return ERR_INVALID_TAG;
    const std::uint16_t channels = Load16(element + 8);
    const std::uint16_t count = Load16(element + 10);
    if (count > ItemsThatFit(size, kFixedBytes, kOffsetBytes)) return ERR_INVALID_TAG;
    out->signature = Load32(element);
    out->reserved = Load32(element + 4);
    out->channels = channels;
    out->curves = static_cast<ICCResponseCurve*>(KT_ALLOC_ZERO(std::size_t{count} * sizeof(ICCResponseCurve)));
    if (!out->curves) return ERR_NO_MEMORY;
    out->count = count;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t offset = Load32(element + kFixedBytes + kOffsetBytes * i);
        const KtStatus parsed = ParseCurve(element, size, offset, channels, &out->curves[i]);
        if (parsed != STATUS_OK) {
            Release(out);
            return parsed;
        }
    }
    return STATUS_OK;
}

void Release(void* record) noexcept {
    auto* r = static_cast<ICCResponseCurveSet16Type*>(record);
    if (!r->curves) return;
    const std::uint32_t count = IsFileOrder(*r) ? FileOrder16(r->count) : r->count;
    for (std::uint32_t i = 0; i < count; ++i) {
        ICCResponseCurve& curve = r->curves[i];
        if (curve.measurementCounts) KT_FREE(curve.measurementCounts);
        if (curve.maximumColorant) KT_FREE(curve.maximumColorant);
        if (curve.responses) KT_FREE(curve.responses);
        curve = ICCResponseCurve{};
    }
    KT_FREE(r->curves);
    r->curves = nullptr;
}

}  // namespace kt::icc::rcs2
