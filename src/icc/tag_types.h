// Tag types by signature. Each row of one table names the codec of a type:
// how a host-order record becomes a file-order record (create), how that
// record is laid out as a tag element (elementSize, writeElement), how an
// element becomes a host-order record (parse) and which pointer fields of
// the record own memory (owned), from which ReleaseRecord frees a record of
// either order. A type without a row takes the raw path.
//
// Adding a type: write its four functions (tag_type_<name>.cpp), declare
// them in tag_codecs.h and add one row to the table in tag_types.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/icc.h"

namespace kt::icc {

// Bytes of the tag type head: type signature and reserved word.
inline constexpr std::uint32_t kTagTypeHeadBytes = 8;

// Largest typed record any codec uses; the tag calls keep temporaries of
// this size.
inline constexpr std::size_t kMaxTagRecordBytes = 256;

// A pointer field that a record owns. When the array it points to holds
// structures that own pointers themselves, `inner` lists their offsets and
// `countAt` names the record's element count (`countBytes` 2 or 4, native
// in a host-order record, big-endian in a file-order one).
struct OwnedField {
    std::uint16_t at;
    std::uint16_t countAt = 0;
    std::uint8_t countBytes = 0;
    std::uint16_t stride = 0;
    std::uint8_t innerCount = 0;
    std::uint16_t inner[4] = {};
};

struct OwnedFields {
    OwnedField fields[5];
    std::uint8_t count;
};

template <class... F>
constexpr OwnedFields Owns(F... fields) {
    return OwnedFields{{fields...}, sizeof...(F)};
}

struct TagTypeCodec {
    std::uint32_t typeSignature;
    // Bytes of the record, at most kMaxTagRecordBytes.
    std::size_t recordBytes;
    // Host-order `host` to a file-order record in `fileOrder` (a different
    // record), with buffers of its own. `typeSignature` is what the caller
    // named; only the raw path stores it. On failure `fileOrder` may own
    // buffers: the caller releases it either way.
    KtStatus (*create)(const void* host, std::uint32_t typeSignature, void* fileOrder) noexcept;
    // Length of the element a file-order record encodes to: the 8-byte head
    // and the data, without padding.
    std::uint64_t (*elementSize)(const void* fileOrder) noexcept;
    // Writes exactly elementSize bytes.
    void (*writeElement)(const void* fileOrder, std::uint8_t* element) noexcept;
    // The `size` bytes of an element (at least the 8-byte head) to a
    // host-order record, through a TagReader: a body too short for what
    // it declares is ERR_INVALID_TAG. Whatever it allocated before a
    // failure stays in the record for ReleaseRecord.
    KtStatus (*parse)(const std::uint8_t* element, std::uint32_t size, void* host) noexcept;
    OwnedFields owned;
};

// Frees what a record of `codec`'s type owns, in either byte order (its
// signature field tells which), and nulls the pointers.
void ReleaseRecord(const TagTypeCodec& codec, void* record) noexcept;

// The codec of a type signature, or null for the raw path.
const TagTypeCodec* FindTagTypeCodec(std::uint32_t typeSignature) noexcept;

// The raw path: ICCRawTagType records, any type signature.
const TagTypeCodec& RawTagTypeCodec() noexcept;

// The codec to use for a type: its own, else the raw one.
inline const TagTypeCodec& CodecFor(std::uint32_t typeSignature, bool* raw) noexcept {
    const TagTypeCodec* codec = FindTagTypeCodec(typeSignature);
    *raw = codec == nullptr;
    return codec ? *codec : RawTagTypeCodec();
}

}  // namespace kt::icc
