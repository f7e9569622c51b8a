#include "icc/tag_types.h"

#include <iterator>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"

namespace kt::icc {
namespace {

#define KT_ICC_TAG_CODEC_ROW(sig, record, name) \
    { Sig(sig), sizeof(record), name::Create, name::ElementSize, name::WriteElement, name::Parse, name::Release }

constexpr TagTypeCodec kCodecs[] = {
    KT_ICC_TAG_CODEC_ROW("XYZ ", ICCXYZType, xyz),
};

// The signature of the raw row is never looked up.
constexpr TagTypeCodec kRaw = KT_ICC_TAG_CODEC_ROW("    ", ICCRawTagType, raw);

#undef KT_ICC_TAG_CODEC_ROW

constexpr bool RecordsFit() {
    for (const TagTypeCodec& c : kCodecs)
        if (c.recordBytes > kMaxTagRecordBytes) return false;
    return kRaw.recordBytes <= kMaxTagRecordBytes;
}
static_assert(RecordsFit(), "raise kMaxTagRecordBytes");

}  // namespace

const TagTypeCodec* FindTagTypeCodec(std::uint32_t typeSignature) noexcept {
    for (const TagTypeCodec& c : kCodecs)
        if (c.typeSignature == typeSignature) return &c;
    return nullptr;
}

const TagTypeCodec& RawTagTypeCodec() noexcept { return kRaw; }

}  // namespace kt::icc
