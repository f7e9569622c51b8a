// 'mluc' as a stand-alone tag and as the descriptions embedded in 'pseq'.
#pragma once

#include <cstdint>

#include "ktclr/icc.h"

namespace kt::icc::mluc {

// Parses an element that may be followed by other bytes, as inside 'pseq':
// `available` bounds every read, and `used` receives the bytes the element
// occupies (its name records and its last string).
KtStatus ParseEmbedded(const std::uint8_t* element, std::uint32_t available, ICCMultiLocalizedUnicodeType* out,
                       std::uint32_t* used) noexcept;

}  // namespace kt::icc::mluc
