// 'pseq': a count, then per profile its manufacturer and model signatures,
// its 64-bit attributes, its technology and two embedded 'mluc' tags (the
// manufacturer's and the model's description). Creating copies the
// attributes as they stand in memory while parsing reads them big-endian,
// so they come back with their bytes swapped (the 'pseq' sample of
// tests/icc/tag_samples.h pins the bytes).
#include <cstring>
#include <initializer_list>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_type_mluc.h"
#include "icc/tag_types.h"
#include "platform/alloc.h"

namespace kt::icc::pseq {
namespace {

constexpr auto kModule = mem::Module::iccprofile;
constexpr std::uint32_t kFixedBytes = 12;        // head and count
constexpr std::uint32_t kDescriptionBytes = 20;  // signatures, attributes, technology
constexpr std::uint32_t kSmallestMluc = 16;

KtStatus CreateDescription(const ICCProfileDescription& in, ICCProfileDescription* out) {
    out->deviceManufacturer = FileOrder32(in.deviceManufacturer);
    out->deviceModel = FileOrder32(in.deviceModel);
    out->deviceAttributes = in.deviceAttributes;
    out->technology = FileOrder32(in.technology);
    const KtStatus made = mluc::Create(&in.manufacturer, Sig("mluc"), &out->manufacturer);
    return made == STATUS_OK ? mluc::Create(&in.model, Sig("mluc"), &out->model) : made;
}

// Reads one description and its two 'mluc' tags, which follow each other
// without padding.
KtStatus ParseDescription(TagReader& in, ICCProfileDescription* out) {
    out->deviceManufacturer = in.U32();
    out->deviceModel = in.U32();
    out->deviceAttributes = in.U64();
    out->technology = in.U32();
    for (ICCMultiLocalizedUnicodeType* text : {&out->manufacturer, &out->model}) {
        TagReader embedded = in.Rest();
        if (embedded.U32() != Sig("mluc") || !embedded.ok()) return ERR_INVALID_TAG;
        std::uint32_t used = 0;
        const KtStatus parsed = mluc::ParseEmbedded(in.Rest(), text, &used);
        if (parsed != STATUS_OK) return parsed;
        in.Skip(used);
    }
    return in.Status();
}

}  // namespace

// Descriptions already made stay in the record on a failure, for the release.
KtStatus Create(const void* host, std::uint32_t, void* fileOrder) noexcept {
    const ICCProfileSequenceDescType in = *static_cast<const ICCProfileSequenceDescType*>(host);
    auto* out = static_cast<ICCProfileSequenceDescType*>(fileOrder);
    *out = ICCProfileSequenceDescType{};
    if (!in.descriptions) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(Sig("pseq"));
    out->count = FileOrder32(in.count);
    out->descriptions =
        static_cast<ICCProfileDescription*>(KT_ALLOC_ZERO(std::size_t{in.count} * sizeof(ICCProfileDescription)));
    if (!out->descriptions) return ERR_NO_MEMORY;
    for (std::uint32_t i = 0; i < in.count; ++i) {
        const KtStatus made = CreateDescription(in.descriptions[i], &out->descriptions[i]);
        if (made != STATUS_OK) return made;
    }
    return STATUS_OK;
}

std::uint64_t ElementSize(const void* fileOrder) noexcept {
    const auto& r = *static_cast<const ICCProfileSequenceDescType*>(fileOrder);
    std::uint64_t size = kFixedBytes;
    for (std::uint32_t i = 0; i < FileOrder32(r.count); ++i)
        size += kDescriptionBytes + mluc::ElementSize(&r.descriptions[i].manufacturer) +
                mluc::ElementSize(&r.descriptions[i].model);
    return size;
}

void WriteElement(const void* fileOrder, std::uint8_t* element) noexcept {
    const auto& r = *static_cast<const ICCProfileSequenceDescType*>(fileOrder);
    std::memcpy(element, &r, kFixedBytes);
    std::uint8_t* p = element + kFixedBytes;
    for (std::uint32_t i = 0; i < FileOrder32(r.count); ++i) {
        const ICCProfileDescription& d = r.descriptions[i];
        std::memcpy(p, &d.deviceManufacturer, 4);
        std::memcpy(p + 4, &d.deviceModel, 4);
        std::memcpy(p + 8, &d.deviceAttributes, 8);
        std::memcpy(p + 16, &d.technology, 4);
        p += kDescriptionBytes;
        for (const ICCMultiLocalizedUnicodeType* text : {&d.manufacturer, &d.model}) {
            mluc::WriteElement(text, p);
            p += mluc::ElementSize(text);
        }
    }
}

KtStatus Parse(const std::uint8_t* element, std::uint32_t size, void* host) noexcept {
    auto* out = static_cast<ICCProfileSequenceDescType*>(host);
    *out = ICCProfileSequenceDescType{};
    TagReader in(element, size);
    const ICCProfileSequenceDescType head{in.U32(), in.U32(), in.U32(), nullptr};
    if (!in.Holds(head.count, kDescriptionBytes + 2 * kSmallestMluc)) return in.Status();
    out->signature = head.signature;
    out->reserved = head.reserved;
    out->descriptions =
        static_cast<ICCProfileDescription*>(KT_ALLOC_ZERO(std::size_t{head.count} * sizeof(ICCProfileDescription)));
    if (!out->descriptions) return ERR_NO_MEMORY;
    out->count = head.count;
    for (std::uint32_t i = 0; i < head.count; ++i) {
        const KtStatus parsed = ParseDescription(in, &out->descriptions[i]);
        if (parsed != STATUS_OK) return parsed;
    }
    return STATUS_OK;
}

}  // namespace kt::icc::pseq
