// The exported tag calls: set, get, create, type query and release of a
// typed record. The type signature picks the codec from the table in
// tag_types.cpp; any type without one travels as raw bytes.
#include <cstddef>
#include <cstdint>

#include "icc/big_endian.h"
#include "icc/header_codec.h"
#include "icc/signature_sets.h"
#include "icc/tag_directory.h"
#include "icc/tag_types.h"
#include "ktclr/icc.h"

namespace {

using namespace kt::icc;

// The status of a tag call that did its work: [unknown tag][raw type].
constexpr KtStatus kDoneStatus[2][2] = {
    {STATUS_OK, WARN_UNKNOWN_TAG_TYPE},
    {WARN_UNKNOWN_TAG, WARN_UNKNOWN_TAG_AND_TYPE},
};

KtStatus DoneStatus(std::uint32_t tagSignature, bool raw) {
    return kDoneStatus[IsUnknownTagSignature(tagSignature)][raw];
}

// A file-order record that lives for one call; its buffers go with it.
class ScratchRecord {
public:
    explicit ScratchRecord(const TagTypeCodec& codec) : codec_(codec) {}
    ScratchRecord(const ScratchRecord&) = delete;
    ScratchRecord& operator=(const ScratchRecord&) = delete;
    ~ScratchRecord() {
        ReleaseRecord(codec_, bytes_);
    }
    void* get() { return bytes_; }

private:
    const TagTypeCodec& codec_;
    alignas(std::max_align_t) unsigned char bytes_[kMaxTagRecordBytes] = {};
};

// Whether the sizes after adding an element of `length` bytes and its pad
// still fit the 32-bit fields of the header and the rows.
bool ElementFits(const ICCProfileRecord* record, std::uint64_t length, std::uint32_t pad) {
    constexpr std::uint64_t kLimit = UINT32_MAX;
    const std::uint64_t growth = std::uint64_t{kRowBytes} + pad + length;
    return record->tagCount < INT32_MAX && ImageBytesNeeded(record) + growth <= kLimit &&
           record->header->size + growth <= kLimit;
}

}  // namespace

// Setting a tag that is present adds a second row; lookups find the first.
// Warnings return before the rebuild: the image shows the profile as it was
// until the next rebuilding call.
extern "C" KTCLR_API KtStatus Vx_SetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature,
                                               uint32_t typeSignature) {
    if (!record || !typed || !record->header || record->tagCount < 0) return ERR_INVALID_PARAMETER;
    bool raw = false;
    const TagTypeCodec& codec = CodecFor(typeSignature, &raw);
    ScratchRecord encoded(codec);
    const KtStatus created = codec.create(typed, typeSignature, encoded.get());
    if (created != STATUS_OK) return created;

    const std::uint64_t length = codec.elementSize(encoded.get());
    const std::uint32_t padCount = PadCount(length);
    if (!ElementFits(record, length, padCount == 4 ? 0 : padCount)) return ERR_INVALID_PARAMETER;
    std::uint8_t* element = AppendTagElement(record, padCount, tagSignature, static_cast<std::uint32_t>(length));
    if (!element) return ERR_NO_MEMORY;
    codec.writeElement(encoded.get(), element);

    const KtStatus done = DoneStatus(tagSignature, raw);
    return done == STATUS_OK ? RebuildProfileImage(record) : done;
}

extern "C" KTCLR_API KtStatus Vx_GetICCTagData(ICCProfileRecord* record, void* typed, uint32_t tagSignature) {
    if (!record || !typed) return ERR_INVALID_PARAMETER;
    const ICCTagEntry* row = FindTag(record, tagSignature);
    if (!row) return ERR_INVALID_TAG;
    const std::uint8_t* element = LocateElement(record, *row, kTagTypeHeadBytes);
    if (!element) return ERR_INVALID_TAG;
    bool raw = false;
    const TagTypeCodec& codec = CodecFor(Load32(element), &raw);
    const KtStatus parsed = codec.parse(element, row->size, typed);
    return parsed == STATUS_OK ? DoneStatus(tagSignature, raw) : parsed;
}

extern "C" KTCLR_API KtStatus Vx_CreateICCTagData(void* out, void* typed, uint32_t typeSignature) {
    if (!out || !typed) return ERR_INVALID_PARAMETER;
    bool raw = false;
    const TagTypeCodec& codec = CodecFor(typeSignature, &raw);
    const KtStatus created = codec.create(typed, typeSignature, out);
    if (created != STATUS_OK) return created;
    return raw ? WARN_UNKNOWN_TAG_TYPE : STATUS_OK;
}

extern "C" KTCLR_API uint32_t Vx_GetICCTagTypeSig(ICCProfileRecord* record, uint32_t tagSignature) {
    constexpr std::uint32_t kSignatureBytes = 4;
    if (!record) return 0;
    const ICCTagEntry* row = FindTag(record, tagSignature);
    if (!row) return 0;
    const std::uint8_t* element = LocateElement(record, *row, kSignatureBytes);
    return element ? Load32(element) : 0;
}

extern "C" KTCLR_API void Vx_FreeICCTagType(void* typed, uint32_t typeSignature) {
    if (!typed) return;
    bool raw = false;
    const TagTypeCodec& codec = CodecFor(typeSignature, &raw);
    ReleaseRecord(codec, typed);
}
