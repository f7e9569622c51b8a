// The raw path: a tag of a type without a codec travels as its bytes after
// the 8-byte type head.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::raw {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
}

// The file-order record keeps the caller's type signature as its file
// bytes; the caller's reserved word is not carried over.
KtStatus Create(const void* host, std::uint32_t typeSignature, void* fileOrder) noexcept {
    const auto* in = static_cast<const ICCRawTagType*>(host);
    const std::uint8_t* bytes = in->bytes;
    const std::uint32_t count = in->byteCount;
    auto* out = static_cast<ICCRawTagType*>(fileOrder);
    *out = ICCRawTagType{};
    if (!bytes) return ERR_INVALID_PARAMETER;
    out->typeSignature = FileOrder32(typeSignature);
    out->bytes = static_cast<std::uint8_t*>(KT_ALLOC(count));
    if (!out->bytes) return ERR_NO_MEMORY;
    if (count) std::memcpy(out->bytes, bytes, count);
    out->byteCount = count;
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return std::uint64_t{kTagTypeHeadBytes} + static_cast<const ICCRawTagType*>(fileOrder)->byteCount;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCRawTagType*>(fileOrder);
    std::memcpy(element, &r->typeSignature, 4);
    std::memset(element + 4, 0, 4);
    if (r->byteCount) std::memcpy(element + kTagTypeHeadBytes, r->bytes, r->byteCount);
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCRawTagType*>(host);
    TagReader in(element, size);
    out->typeSignature = in.U32();
    out->reservedWord = in.U32();
    const auto count = static_cast<std::uint32_t>(in.Remaining());
    out->byteCount = 0;
    out->bytes = static_cast<std::uint8_t*>(KT_ALLOC(count));
    if (!out->bytes) return ERR_NO_MEMORY;
    in.Copy(out->bytes, count);
    out->byteCount = count;
    return in.Status();
}


}  // namespace kt::icc::raw
