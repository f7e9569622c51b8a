// Signature sets shared by the header and the tag calls.
#pragma once

#include <cstdint>

namespace kt::icc {

// One of the 25 data color spaces ('XYZ ', 'Lab ', ... 'FCLR').
bool IsDataColorSpace(std::uint32_t signature) noexcept;

// True for every tag signature outside the 38 this library knows; only the
// status of a tag call depends on it.
bool IsUnknownTagSignature(std::uint32_t signature) noexcept;

}  // namespace kt::icc
