// 'data': a flag (0 ASCII, 1 binary) and the bytes. ASCII data travels with
// its terminator: the caller's record counts the characters, the encoding
// counts the terminator too.
#include <cstring>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::data {
namespace {
constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kAscii = 0;
constexpr std::uint32_t kBinary = 1;
constexpr std::uint32_t kFixedBytes = 12;  // head and flag
}  // namespace

KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCDataType in = *static_cast<const ICCDataType*>(host);
    auto* out = static_cast<ICCDataType*>(fileOrder);
    *out = ICCDataType{};
    if (!in.data || (in.flag != kAscii && in.flag != kBinary)) return ERR_INVALID_PARAMETER;
    const std::uint64_t bytes = std::uint64_t{in.size} + (in.flag == kAscii ? 1 : 0);
    if (bytes > UINT32_MAX) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("data"));
    out->flag = FileOrder32(in.flag);
    out->data = static_cast<std::uint8_t*>(KT_ALLOC(bytes));
    if (!out->data) return ERR_NO_MEMORY;
    std::memcpy(out->data, in.data, bytes);
    out->size = static_cast<std::uint32_t>(bytes);
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    return std::uint64_t{kFixedBytes} + static_cast<const ICCDataType*>(fileOrder)->size;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto* r = static_cast<const ICCDataType*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    std::memcpy(element + 8, &r->flag, 4);
    if (r->size) std::memcpy(element + kFixedBytes, r->data, r->size);
}

// An ASCII block comes back as its characters and a terminator, whether or
// not the element stored one; any other flag is kept and read as binary.
KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCDataType*>(host);
    *out = ICCDataType{};
    TagReader in(element, size);
    const ICCDataType head{in.U32(), in.U32(), in.U32(), nullptr, 0};
    if (!in.ok()) return in.Status();
    *out = head;
    auto count = static_cast<std::uint32_t>(in.Remaining());
    const std::uint8_t* bytes = in.Take(count);
    const bool ascii = out->flag == kAscii;
    if (ascii && count > 0 && bytes[count - 1] == 0) --count;
    out->data = static_cast<std::uint8_t*>(KT_ALLOC(std::size_t{count} + (ascii ? 1 : 0)));
    if (!out->data) return ERR_NO_MEMORY;
    if (count) std::memcpy(out->data, bytes, count);
    if (ascii) out->data[count] = 0;
    out->size = count;
    return STATUS_OK;
}


}  // namespace kt::icc::data
