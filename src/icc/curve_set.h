// Curve sets of 'mAB ' and 'mBA ': curves one after another, each padded
// to 4 bytes.
#pragma once

#include <cstdint>

#include "icc/byte_pool.h"
#include "icc/tag_reader.h"
#include "ktclr/export.h"
#include "ktclr/status.h"

namespace kt::icc {

// Reads the `count` curves that start `offset` bytes into the element of
// `in`, appends their flat host-order forms to `pool` and puts a copy of
// that part of the pool in `*copy`. A curve outside the element is
// ERR_INVALID_TAG.
KtStatus ReadCurveSet(TagReader in, std::uint32_t offset, std::uint32_t count, BytePool& pool, void** copy) noexcept;

// Encoded bytes of an array of `count` host-order curve records;
// ERR_INVALID_PARAMETER for a null array or a record that cannot be
// encoded.
KtStatus RecordSetBytes(const void* records, std::uint32_t count, std::uint64_t* bytes) noexcept;

// Writes the encoding of a checked record array.
void EncodeRecordSet(const void* records, std::uint32_t count, std::uint8_t* out) noexcept;

// Bytes of an encoded set of `count` curves that this library wrote.
std::uint64_t EncodedSetBytes(const std::uint8_t* encoded, std::uint32_t count) noexcept;

}  // namespace kt::icc
