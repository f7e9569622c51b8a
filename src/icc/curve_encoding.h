// The byte forms of a curve ('curv' or 'para'): the encoding inside tag
// bytes, the flat host-order form of the LUT pools, and the encoding of a
// host-order curve record. Shared by the curve codecs and the curve sets of
// 'mAB ' and 'mBA '.
#pragma once

#include <cstdint>

#include "icc/big_endian.h"
#include "icc/tag_reader.h"
#include "ktclr/icc_curves.h"

namespace kt::icc {

// Signature, reserved word and count (or function type and reserved2).
inline constexpr std::uint32_t kCurveHeadBytes = 12;
inline constexpr std::uint32_t kCurveEntryBytes = 2;
inline constexpr std::uint32_t kParameterBytes = 4;

inline constexpr std::uint64_t RoundUp4(std::uint64_t n) noexcept { return (n + 3) & ~std::uint64_t{3}; }

// Parameters of a 'para' function type; 0 for an unknown one.
std::uint32_t ParameterCount(std::uint32_t functionType) noexcept;

// The size rule of the LUT curve sets, after the 8-byte type head: a curve
// of one entry counts 5 bytes, others the count word and their entries.
inline constexpr std::uint64_t CurveSizeRule(std::uint64_t count) noexcept {
    return count == 1 ? 5 : count * kCurveEntryBytes + 4;
}

// A curve found inside tag bytes.
struct EncodedCurve {
    const std::uint8_t* start;
    bool parametric;
    std::uint32_t values;  // entries, or parameters
    std::uint64_t bytes;   // of the encoding, without padding
    std::uint64_t advance; // to the next curve of a set
};

// Reads the head of the curve at the reader's position and checks that its
// values follow: a 'para' signature makes it parametric, anything else a
// curveType. A curve that does not fit, or an unknown function type, is
// ERR_INVALID_TAG.
KtStatus InspectEncodedCurve(TagReader& in, EncodedCurve* curve) noexcept;

// Bytes of a curve's flat host-order form, padded to 4.
inline std::uint64_t FlatCurveBytes(const EncodedCurve& c) noexcept {
    return RoundUp4(kCurveHeadBytes + std::uint64_t{c.values} * (c.parametric ? kParameterBytes : kCurveEntryBytes));
}

// Writes the flat host-order form of an inspected curve, pad bytes zeroed.
void WriteFlatCurve(const EncodedCurve& c, std::uint8_t* flat) noexcept;

// A host-order curve record (ICCCurveType, or ICCParametricCurveType when
// its native signature is 'para'): the bytes of its encoding padded to 4,
// or ERR_INVALID_PARAMETER when it has no array or no known function type.
KtStatus EncodedRecordBytes(const void* record, std::uint64_t* bytes) noexcept;

// Writes a checked record's encoding, padded to 4 with zeros.
void EncodeCurveRecord(const void* record, std::uint8_t* out) noexcept;

inline bool IsParametricRecord(const void* record) noexcept {
    return static_cast<const ICCCurveType*>(record)->signature == Sig("para");
}

}  // namespace kt::icc
