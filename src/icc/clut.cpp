// The CLUT element and its exported helpers.
#include "icc/clut.h"

#include <algorithm>
#include <cstring>

#include "icc/big_endian.h"
#include "icc/curve_encoding.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint8_t kOneBytePrecision = 1;
constexpr std::int32_t kTwoBytePrecision = 2;

std::uint64_t SaturatingProduct(std::uint64_t a, std::uint64_t b) noexcept {
    if (a != 0 && b > kClutTooLarge / a) return kClutTooLarge;
    return a * b;
}

// Copies `count` entry bytes, turning big-endian 16-bit entries native when
// asked to; an odd last byte is copied as it is.
void CopyEntries(std::uint8_t* to, const std::uint8_t* from, std::uint64_t count, bool swap) noexcept {
    if (!swap) {
        if (count) std::memcpy(to, from, static_cast<std::size_t>(count));
        return;
    }
    std::uint64_t i = 0;
    for (; i + 1 < count; i += 2) {
        const std::uint16_t v = Load16(from + i);
        std::memcpy(to + i, &v, sizeof v);
    }
    if (i < count) to[i] = from[i];
}

}  // namespace

std::uint64_t ClutUnpaddedBytes(const std::uint8_t* head, std::uint32_t inputs, std::uint32_t outputs) noexcept {
    std::uint64_t product = 1;
    for (std::uint32_t i = 0; i < std::min(inputs, kClutMaxInputs); ++i) product = SaturatingProduct(product, head[i]);
    product = SaturatingProduct(SaturatingProduct(product, head[kClutPrecisionAt]), outputs);
    return product + kClutHeadBytes > UINT32_MAX ? kClutTooLarge : product + kClutHeadBytes;
}

std::uint64_t ClutBytes(const std::uint8_t* head, std::uint32_t inputs, std::uint32_t outputs) noexcept {
    const std::uint64_t size = RoundUp4(ClutUnpaddedBytes(head, inputs, outputs));
    return size > UINT32_MAX ? kClutTooLarge : size;
}

void WriteFlatClut(const std::uint8_t* source, std::uint64_t available, std::uint64_t size, bool toNative,
                   std::uint8_t* flat) noexcept {
    std::memcpy(flat, source, kClutPrecisionAt + 1);
    for (std::uint32_t i = 0; i < 3; ++i) flat[kClutReservedAt + i] = source[kClutReservedAt + 2 - i];
    const std::uint64_t dataBytes = size - kClutHeadBytes;
    const std::uint64_t present = std::min(dataBytes, available - kClutHeadBytes);
    const bool swap = toNative && source[kClutPrecisionAt] != kOneBytePrecision;
    CopyEntries(flat + kClutHeadBytes, source + kClutHeadBytes, present, swap);
    if (present < dataBytes)
        std::memset(flat + kClutHeadBytes + present, 0, static_cast<std::size_t>(dataBytes - present));
}

}  // namespace kt::icc

using namespace kt::icc;

extern "C" KTCLR_API uint32_t Vx_ClrIntGetCLUTSize(const void* clut, int32_t inputChannels, int32_t outputChannels) {
    if (!clut) return 0;
    const std::uint64_t size = ClutBytes(static_cast<const std::uint8_t*>(clut),
                                         static_cast<std::uint32_t>(std::max(inputChannels, 0)),
                                         static_cast<std::uint32_t>(std::max(outputChannels, 0)));
    return size >= kClutTooLarge ? 0 : static_cast<std::uint32_t>(size);
}

extern "C" KTCLR_API KtStatus Vx_ConvertCLUTToBuffer(unsigned char* buffer, const ICCCLUT* clut, int32_t precision,
                                                     uint32_t dataBytes) {
    if (!buffer || !clut || (precision != kOneBytePrecision && precision != kTwoBytePrecision))
        return ERR_INVALID_PARAMETER;
    if (dataBytes && !clut->data) return ERR_INVALID_PARAMETER;
    std::memcpy(buffer, clut->gridPoints, sizeof clut->gridPoints);
    buffer[kClutPrecisionAt] = clut->precision;
    std::memcpy(buffer + kClutReservedAt, clut->reserved, sizeof clut->reserved);
    if (dataBytes) std::memcpy(buffer + kClutHeadBytes, clut->data, dataBytes);
    return STATUS_OK;
}

// The buffer switches the byte order: with one the source's entries are
// big-endian, without they are copied as they stand.
extern "C" KTCLR_API KtStatus Vx_ClrIntGetCLUTBuffer(unsigned char* buffer, const unsigned char* source,
                                                     int32_t inputChannels, int32_t outputChannels, ICCCLUT* clut) {
    if (!source) return ERR_INVALID_PARAMETER;
    const std::uint32_t size = Vx_ClrIntGetCLUTSize(source, inputChannels, outputChannels);
    if (size == 0) return ERR_INVALID_PARAMETER;
    const std::uint32_t dataBytes = size - kClutHeadBytes;
    ICCCLUT record{};
    std::memcpy(record.gridPoints, source, sizeof record.gridPoints);
    record.precision = source[kClutPrecisionAt];
    for (std::uint32_t i = 0; i < 3; ++i) record.reserved[i] = source[kClutReservedAt + 2 - i];
    record.data = static_cast<std::uint8_t*>(KT_ALLOC(dataBytes));
    if (!record.data) return ERR_NO_MEMORY;
    const bool toNative = buffer != nullptr;
    CopyEntries(record.data, source + kClutHeadBytes, dataBytes, toNative && record.precision != kOneBytePrecision);
    if (buffer) {
        const std::int32_t precision = record.precision == kOneBytePrecision ? kOneBytePrecision : kTwoBytePrecision;
        Vx_ConvertCLUTToBuffer(buffer, &record, precision, dataBytes);
    }
    if (clut)
        *clut = record;
    else
        KT_FREE(record.data);
    return STATUS_OK;
}

// Neither the record nor the pointer is checked or reset: callers free a
// record once.
extern "C" KTCLR_API void Vx_ClrIntFreeCLUT(ICCCLUT* clut) { KT_FREE(clut->data); }
