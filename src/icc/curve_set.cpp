#include "icc/curve_set.h"

#include <cstring>

#include "icc/big_endian.h"
#include "icc/curve_encoding.h"
#include "ktclr/icc_luts.h"

namespace kt::icc {
namespace {

constexpr std::size_t kRecordStride = sizeof(ICCCurveType);
static_assert(sizeof(ICCParametricCurveType) == kRecordStride, "curve records share one stride");

const void* RecordAt(const void* records, std::uint32_t i) noexcept {
    return static_cast<const std::uint8_t*>(records) + kRecordStride * i;
}

}  // namespace

KtStatus ReadCurveSet(TagReader in, std::uint32_t offset, std::uint32_t count, BytePool& pool, void** copy) noexcept {
    const std::uint64_t start = pool.size();
    std::uint64_t at = offset;
    for (std::uint32_t i = 0; i < count; ++i) {
        in.Seek(at);
        EncodedCurve curve{};
        const KtStatus st = InspectEncodedCurve(in, &curve);
        if (st != STATUS_OK) return st;
        std::uint8_t* flat = pool.Grow(FlatCurveBytes(curve));
        if (!flat) return ERR_NO_MEMORY;
        WriteFlatCurve(curve, flat);
        at += curve.advance;
    }
    *copy = pool.CopyOut(start, pool.size() - start);
    return *copy ? STATUS_OK : ERR_NO_MEMORY;
}

KtStatus RecordSetBytes(const void* records, std::uint32_t count, std::uint64_t* bytes) noexcept {
    if (!records) return ERR_INVALID_PARAMETER;
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint64_t one = 0;
        const KtStatus st = EncodedRecordBytes(RecordAt(records, i), &one);
        if (st != STATUS_OK) return st;
        total += one;
    }
    *bytes = total;
    return STATUS_OK;
}

void EncodeRecordSet(const void* records, std::uint32_t count, std::uint8_t* out) noexcept {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint64_t one = 0;
        EncodedRecordBytes(RecordAt(records, i), &one);
        EncodeCurveRecord(RecordAt(records, i), out);
        out += one;
    }
}

std::uint64_t EncodedSetBytes(const std::uint8_t* encoded, std::uint32_t count) noexcept {
    // The sets this library encoded fit 32 bits.
    TagReader in(encoded, UINT32_MAX);
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        in.Seek(total);
        EncodedCurve curve{};
        InspectEncodedCurve(in, &curve);
        total += curve.advance;
    }
    return total;
}

}  // namespace kt::icc

using namespace kt::icc;

// Sizes by the rule of the LUT elements: after the 8-byte type head a
// 'para' curve counts its parameters and 4, with the function type read
// natively; any other curve counts 5 for one entry, else its entries and 4.
extern "C" KTCLR_API uint32_t Vx_ClrIntGetLutCurveSize(const void* curves, uint32_t count, int32_t fileOrder,
                                                       int32_t recordArray) {
    constexpr std::int32_t kFileOrder = 1;
    constexpr std::uint64_t kTypeHeadBytes = 8;
    if (!curves || count == 0) return 0;
    const auto* p = static_cast<const std::uint8_t*>(curves);
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        auto native32 = [](const std::uint8_t* q) {
            std::uint32_t v;
            std::memcpy(&v, q, sizeof v);
            return v;
        };
        const bool bigEndian = fileOrder == kFileOrder;
        const std::uint32_t signature = bigEndian ? Load32(p) : native32(p);
        std::uint64_t part = 0;
        if (signature == Sig("para")) {
            std::uint16_t functionType;
            std::memcpy(&functionType, p + 8, sizeof functionType);
            part = std::uint64_t{ParameterCount(functionType)} * kParameterBytes + 4;
        } else {
            part = CurveSizeRule(bigEndian ? Load32(p + 8) : native32(p + 8));
        }
        const std::uint64_t step = RoundUp4(part) + kTypeHeadBytes;
        total += step;
        if (total > UINT32_MAX) return 0;
        p += recordArray ? kRecordStride : step;
    }
    return static_cast<std::uint32_t>(total);
}
