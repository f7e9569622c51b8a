#include "icc/curve_encoding.h"

#include <cstring>
#include <iterator>

namespace kt::icc {
namespace {

// g; g a b; g a b c; g a b c d; g a b c d e f.
constexpr std::uint32_t kParametersByType[] = {1, 3, 4, 5, 7};

constexpr std::uint32_t kCountAt = 8;
constexpr std::uint32_t kFunctionTypeAt = 8;
constexpr std::uint32_t kReserved2At = 10;

}  // namespace

std::uint32_t ParameterCount(std::uint32_t functionType) noexcept {
    return functionType < std::size(kParametersByType) ? kParametersByType[functionType] : 0;
}

KtStatus InspectEncodedCurve(TagReader& in, EncodedCurve* curve) noexcept {
    EncodedCurve c{};
    c.start = in.Take(kCurveHeadBytes);
    if (!c.start) return ERR_INVALID_TAG;
    c.parametric = Load32(c.start) == Sig("para");
    if (c.parametric) {
        c.values = ParameterCount(Load16(c.start + kFunctionTypeAt));
        if (c.values == 0) return ERR_INVALID_TAG;
        c.bytes = kCurveHeadBytes + std::uint64_t{c.values} * kParameterBytes;
        c.advance = c.bytes;
    } else {
        c.values = Load32(c.start + kCountAt);
        c.bytes = kCurveHeadBytes + std::uint64_t{c.values} * kCurveEntryBytes;
        c.advance = 8 + RoundUp4(CurveSizeRule(c.values));
    }
    if (!in.Holds(c.values, c.parametric ? kParameterBytes : kCurveEntryBytes)) return ERR_INVALID_TAG;
    *curve = c;
    return STATUS_OK;
}

void WriteFlatCurve(const EncodedCurve& c, std::uint8_t* flat) noexcept {
    const std::uint8_t* p = c.start;
    const std::uint32_t head[2] = {Load32(p), Load32(p + 4)};
    std::memcpy(flat, head, sizeof head);
    std::uint8_t* out = flat + kCurveHeadBytes;
    const std::uint8_t* in = p + kCurveHeadBytes;
    if (c.parametric) {
        const std::uint16_t types[2] = {Load16(p + kFunctionTypeAt), Load16(p + kReserved2At)};
        std::memcpy(flat + kFunctionTypeAt, types, sizeof types);
        for (std::uint32_t i = 0; i < c.values; ++i, in += kParameterBytes, out += kParameterBytes) {
            const std::uint32_t v = Load32(in);
            std::memcpy(out, &v, sizeof v);
        }
    } else {
        std::memcpy(flat + kCountAt, &c.values, sizeof c.values);
        for (std::uint32_t i = 0; i < c.values; ++i, in += kCurveEntryBytes, out += kCurveEntryBytes) {
            const std::uint16_t v = Load16(in);
            std::memcpy(out, &v, sizeof v);
        }
    }
    const std::uint8_t* end = flat + FlatCurveBytes(c);
    std::memset(out, 0, static_cast<std::size_t>(end - out));
}

KtStatus EncodedRecordBytes(const void* record, std::uint64_t* bytes) noexcept {
    if (IsParametricRecord(record)) {
        const auto* r = static_cast<const ICCParametricCurveType*>(record);
        const std::uint32_t n = ParameterCount(r->functionType);
        if (n == 0 || !r->parameters) return ERR_INVALID_PARAMETER;
        *bytes = kCurveHeadBytes + std::uint64_t{n} * kParameterBytes;
    } else {
        const auto* r = static_cast<const ICCCurveType*>(record);
        if (!r->entries && r->count) return ERR_INVALID_PARAMETER;
        *bytes = RoundUp4(kCurveHeadBytes + std::uint64_t{r->count} * kCurveEntryBytes);
    }
    return STATUS_OK;
}

void EncodeCurveRecord(const void* record, std::uint8_t* out) noexcept {
    std::uint8_t* p = out + kCurveHeadBytes;
    if (IsParametricRecord(record)) {
        const auto* r = static_cast<const ICCParametricCurveType*>(record);
        const std::uint32_t n = ParameterCount(r->functionType);
        Store32(out, Sig("para"));
        Store32(out + 4, 0);
        Store16(out + kFunctionTypeAt, r->functionType);
        Store16(out + kReserved2At, 0);
        for (std::uint32_t i = 0; i < n; ++i, p += kParameterBytes) Store32(p, static_cast<std::uint32_t>(r->parameters[i]));
    } else {
        const auto* r = static_cast<const ICCCurveType*>(record);
        Store32(out, Sig("curv"));
        Store32(out + 4, 0);
        Store32(out + kCountAt, r->count);
        for (std::uint32_t i = 0; i < r->count; ++i, p += kCurveEntryBytes) Store16(p, r->entries[i]);
        const std::uint8_t* end = out + RoundUp4(kCurveHeadBytes + std::uint64_t{r->count} * kCurveEntryBytes);
        std::memset(p, 0, static_cast<std::size_t>(end - p));
    }
}

}  // namespace kt::icc
