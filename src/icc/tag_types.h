// Tag types by signature. Each row of one table names the codec of a type:
// how a host-order record becomes a file-order record (create), how that
// record is laid out as a tag element (elementSize, writeElement), how an
// element becomes a host-order record (parse) and how a record's buffers are
// released (release). A type without a row takes the raw path.
//
// Adding a type: write its functions (tag_type_<name>.cpp), declare them in
// tag_codecs.h and add one row to the table in tag_types.cpp.
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
    // host-order record. Reads nothing past `size`: a body too short for
    // what it declares is ERR_INVALID_TAG.
    KtStatus (*parse)(const std::uint8_t* element, std::uint32_t size, void* host) noexcept;
    // Releases what a record of either order owns and nulls the pointers;
    // null for types that own nothing.
    void (*release)(void* record) noexcept;
};

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
