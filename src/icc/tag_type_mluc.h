// 'mluc' as a stand-alone tag and as the descriptions embedded in 'pseq'.
#pragma once

#include <cstdint>

#include "icc/tag_reader.h"
#include "ktclr/icc.h"

namespace kt::icc::mluc {

// Parses an element that may be followed by other bytes, as inside 'pseq':
// `in` starts at the element and bounds every read, and `used` receives the
// bytes the element occupies (its name records and its last string).
KtStatus ParseEmbedded(TagReader in, ICCMultiLocalizedUnicodeType* out, std::uint32_t* used) noexcept;

}  // namespace kt::icc::mluc
