// 'para': one of five closed-form tone functions.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/curve_encoding.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "ktclr/icc_curves.h"
#include "platform/alloc.h"

namespace kt::icc::para {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
}

// The parameters are s15Fixed16 numbers already; nothing is converted.
KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const auto* in = static_cast<const ICCParametricCurveType*>(host);
    const std::int32_t* parameters = in->parameters;
    const std::uint16_t functionType = in->functionType;
    auto* out = static_cast<ICCParametricCurveType*>(fileOrder);
    *out = ICCParametricCurveType{};
    const std::uint32_t n = ParameterCount(functionType);
    if (!parameters || n == 0) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("para"));
    out->functionType = __builtin_bswap16(functionType);
    out->parameters = static_cast<std::int32_t*>(KT_ALLOC(std::size_t{n} * kParameterBytes));
    if (!out->parameters) return ERR_NO_MEMORY;
    auto* bytes = reinterpret_cast<std::uint8_t*>(out->parameters);
    for (std::uint32_t i = 0; i < n; ++i) Store32(bytes + kParameterBytes * i, static_cast<std::uint32_t>(parameters[i]));
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    const auto* r = static_cast<const ICCParametricCurveType*>(fileOrder);
    return kCurveHeadBytes + std::uint64_t{ParameterCount(__builtin_bswap16(r->functionType))} * kParameterBytes;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCParametricCurveType*>(fileOrder);
    std::memcpy(element, r, kCurveHeadBytes);
    std::memcpy(element + kCurveHeadBytes, r->parameters, static_cast<std::size_t>(ElementSize(r) - kCurveHeadBytes));
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCParametricCurveType*>(host);
    *out = ICCParametricCurveType{};
    TagReader in(element, size);
    const ICCParametricCurveType head{in.U32(), in.U32(), in.U16(), in.U16(), nullptr};
    if (!in.ok()) return in.Status();
    *out = head;
    const std::uint32_t n = ParameterCount(head.functionType);
    if (n == 0 || !in.Holds(n, kParameterBytes)) return ERR_INVALID_TAG;
    out->parameters = static_cast<std::int32_t*>(KT_ALLOC(std::size_t{n} * kParameterBytes));
    if (!out->parameters) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < n; ++i) out->parameters[i] = in.S32();
    return in.Status();
}


}  // namespace kt::icc::para
