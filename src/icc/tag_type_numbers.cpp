// The number-array types: 'sf32', 'uf32', 'ui08', 'ui16', 'ui32' and 'ui64'.
// One shape each: values and count; the element holds the values big-endian
// after the 8-byte head and the count follows from the element's size.
#include <cstring>
#include <type_traits>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;

template <class T>
void StoreBig(std::uint8_t* p, T v) noexcept {
    if constexpr (sizeof(T) == 1) *p = static_cast<std::uint8_t>(v);
    if constexpr (sizeof(T) == 2) Store16(p, static_cast<std::uint16_t>(v));
    if constexpr (sizeof(T) == 4) Store32(p, static_cast<std::uint32_t>(v));
    if constexpr (sizeof(T) == 8) Store64(p, static_cast<std::uint64_t>(v));
}

template <class T>
T ReadBig(TagReader& in) noexcept {
    if constexpr (sizeof(T) == 1) return static_cast<T>(in.U8());
    if constexpr (sizeof(T) == 2) return static_cast<T>(in.U16());
    if constexpr (sizeof(T) == 4) return static_cast<T>(in.U32());
    if constexpr (sizeof(T) == 8) return static_cast<T>(in.U64());
}

template <class Record, std::uint32_t kType>
struct NumberArray {
    using Value = std::remove_pointer_t<decltype(Record::values)>;
    static constexpr std::uint32_t kBytes = sizeof(Value);

    static KtStatus Create(const void* host, void* fileOrder) noexcept {
        const Record in = *static_cast<const Record*>(host);
        auto* out = static_cast<Record*>(fileOrder);
        *out = Record{};
        if (!in.values) return ERR_INVALID_PARAMETER;
        out->signature = FileOrder32(kType);
        out->values = static_cast<Value*>(KT_ALLOC(std::size_t{in.count} * kBytes));
        if (!out->values) return ERR_NO_MEMORY;
        for (std::uint32_t i = 0; i < in.count; ++i)
            StoreBig(reinterpret_cast<std::uint8_t*>(out->values + i), in.values[i]);
        out->count = in.count;
        return STATUS_OK;
    }

    static std::uint64_t ElementSize(const void* fileOrder) noexcept {
        return kTagTypeHeadBytes + std::uint64_t{kBytes} * static_cast<const Record*>(fileOrder)->count;
    }

    static void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
        const auto* r = static_cast<const Record*>(fileOrder);
        std::memcpy(element, &r->signature, 4);
        std::memcpy(element + 4, &r->reserved, 4);
        if (r->count) std::memcpy(element + kTagTypeHeadBytes, r->values, std::size_t{r->count} * kBytes);
    }

    static KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
        auto* out = static_cast<Record*>(host);
        *out = Record{};
        TagReader in(element, size);
        out->signature = in.U32();
        out->reserved = in.U32();
        const auto count = static_cast<std::uint32_t>(in.Remaining() / kBytes);
        out->values = static_cast<Value*>(KT_ALLOC(std::size_t{count} * kBytes));
        if (!out->values) return ERR_NO_MEMORY;
        for (std::uint32_t i = 0; i < count; ++i) out->values[i] = ReadBig<Value>(in);
        out->count = count;
        return in.Status();
    }

};

}  // namespace

#define KT_ICC_NUMBER_ARRAY_CODEC(name, Record, type)                                               \
    namespace name {                                                                                \
    using Codec = NumberArray<Record, Sig(type)>;                                                   \
    KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {                    \
        return Codec::Create(host, fileOrder);                                                      \
    }                                                                                               \
    std::uint64_t ElementSize(const void* fileOrder) noexcept { return Codec::ElementSize(fileOrder); } \
    void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {                      \
        Codec::WriteElement(fileOrder, element);                                                    \
    }                                                                                               \
    KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {          \
        return Codec::Parse(element, size, host);                                                   \
    }                                                                                               \
    }

KT_ICC_NUMBER_ARRAY_CODEC(sf32, ICCS15Fixed16ArrayType, "sf32")
KT_ICC_NUMBER_ARRAY_CODEC(uf32, ICCU16Fixed16ArrayType, "uf32")
KT_ICC_NUMBER_ARRAY_CODEC(ui08, ICCUInt8ArrayType, "ui08")
KT_ICC_NUMBER_ARRAY_CODEC(ui16, ICCUInt16ArrayType, "ui16")
KT_ICC_NUMBER_ARRAY_CODEC(ui32, ICCUInt32ArrayType, "ui32")
KT_ICC_NUMBER_ARRAY_CODEC(ui64, ICCUInt64ArrayType, "ui64")

#undef KT_ICC_NUMBER_ARRAY_CODEC

}  // namespace kt::icc
