// The exported curve helpers: flat buffers to records and back, sizes, the
// parametric test and the release calls.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/curve_encoding.h"
#include "ktclr/icc_curves.h"
#include "platform/alloc.h"

namespace {

using namespace kt::icc;
constexpr auto kModule = kt::mem::Module::iccprofile;

// A file-order record keeps its signature's file bytes.
constexpr std::int32_t kFileOrderFlag = 1;
constexpr std::uint32_t kOneEntryCurveSize = 5;

template <class T>
T ReadNative(const unsigned char* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_ClrIntGetCurveTypeLittleIndian(const unsigned char* buffer, ICCCurveType* curve) {
    if (!buffer || !curve) return ERR_INVALID_PARAMETER;
    std::memcpy(curve, buffer, kCurveHeadBytes);
    const std::size_t bytes = std::size_t{curve->count} * kCurveEntryBytes;
    curve->entries = static_cast<std::uint16_t*>(KT_ALLOC(bytes));
    if (!curve->entries) return ERR_NO_MEMORY;
    if (bytes) std::memcpy(curve->entries, buffer + kCurveHeadBytes, bytes);
    return STATUS_OK;
}

extern "C" KTCLR_API uint32_t Vx_ClrIntGetCurveTypeSize(const ICCCurveType* curve, uint32_t count) {
    if (!curve) return 0;
    return count == 1 ? kOneEntryCurveSize : count * kCurveEntryBytes + 4;
}

extern "C" KTCLR_API void Vx_ClrIntIccFreeCurveType(ICCCurveType* curve) {
    if (!curve || !curve->entries) return;
    KT_FREE(curve->entries);
    curve->entries = nullptr;
}

extern "C" KTCLR_API int32_t Vx_ClrIntIsParametricCurveType(const void* record, int32_t fileOrder) {
    if (!record) return 0;
    const auto* bytes = static_cast<const unsigned char*>(record);
    const std::uint32_t signature = fileOrder == kFileOrderFlag ? Load32(bytes) : ReadNative<std::uint32_t>(bytes);
    return signature == Sig("para") ? 1 : 0;
}

extern "C" KTCLR_API int32_t Vx_GetParametricCurveNumberOfParameters(uint32_t functionType) {
    return static_cast<int32_t>(ParameterCount(functionType));
}

extern "C" KTCLR_API KtStatus Vx_ClrIntGetParametricCurveTypeLittleIndian(const unsigned char* buffer,
                                                                          ICCParametricCurveType* curve) {
    if (!buffer || !curve) return ERR_INVALID_PARAMETER;
    std::memcpy(curve, buffer, kCurveHeadBytes);
    curve->parameters = nullptr;
    const std::uint32_t n = ParameterCount(curve->functionType);
    if (n == 0) return ERR_INVALID_TAG;
    curve->parameters = static_cast<std::int32_t*>(KT_ALLOC(std::size_t{n} * kParameterBytes));
    if (!curve->parameters) return ERR_NO_MEMORY;
    std::memcpy(curve->parameters, buffer + kCurveHeadBytes, std::size_t{n} * kParameterBytes);
    return STATUS_OK;
}

extern "C" KTCLR_API uint32_t Vx_ClrIntGetParametricCurveTypeSize(const ICCParametricCurveType* curve) {
    if (!curve) return 0;
    return ParameterCount(curve->functionType) * kParameterBytes + 4;
}

extern "C" KTCLR_API void Vx_ClrIntIccFreeParametricCurveType(ICCParametricCurveType* curve) {
    if (!curve || !curve->parameters) return;
    KT_FREE(curve->parameters);
    curve->parameters = nullptr;
}

extern "C" KTCLR_API KtStatus Vx_ConvertCurveTypeToBuffer(unsigned char* buffer, const ICCCurveType* curve) {
    if (!buffer || !curve) return ERR_INVALID_PARAMETER;
    const bool hostOrder = curve->signature == Sig("curv");
    const std::uint32_t count =
        hostOrder ? curve->count : Load32(reinterpret_cast<const std::uint8_t*>(&curve->count));
    if (count && !curve->entries) return ERR_INVALID_PARAMETER;
    std::memcpy(buffer, curve, kCurveHeadBytes);
    if (count) std::memcpy(buffer + kCurveHeadBytes, curve->entries, std::size_t{count} * kCurveEntryBytes);
    return STATUS_OK;
}

// The function type is read natively whatever the record's order: a
// file-order record of type 1 to 4 reads as 256 to 1024 and gets its fixed
// bytes only.
extern "C" KTCLR_API KtStatus Vx_ConvertParametricCurveTypeToBuffer(unsigned char* buffer,
                                                                    const ICCParametricCurveType* curve) {
    if (!buffer || !curve) return ERR_INVALID_PARAMETER;
    const std::uint32_t n = ParameterCount(curve->functionType);
    if (n && !curve->parameters) return ERR_INVALID_PARAMETER;
    std::memcpy(buffer, curve, kCurveHeadBytes);
    if (n) std::memcpy(buffer + kCurveHeadBytes, curve->parameters, std::size_t{n} * kParameterBytes);
    return STATUS_OK;
}
