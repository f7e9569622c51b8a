// The tag directory of a record: appending an element, finding a row and
// finding a row's element inside tagData without trusting the row.
#pragma once

#include <cstdint>

#include "ktclr/icc.h"

namespace kt::icc {

// The padding that follows an element of `length` bytes, as the tag calls
// compute it: 4 - length % 4, where 4 stands for none.
inline std::uint32_t PadCount(std::uint64_t length) noexcept { return 4 - static_cast<std::uint32_t>(length % 4); }

// Adds a row for a `length`-byte element at the end of tagData, followed by
// `padCount` pad bytes (none when padCount is 4), moves every other element
// 12 bytes further into the file and grows the header's size. Returns where
// the element goes (the pad bytes after it are zeroed), or null when an
// allocation fails; the record is then as it was before the call.
// The caller has checked that the header exists and that the sizes fit.
std::uint8_t* AppendTagElement(ICCProfileRecord* record, std::uint32_t padCount, std::uint32_t tagSignature,
                               std::uint32_t length) noexcept;

// The first row with `tagSignature`, or null.
const ICCTagEntry* FindTag(const ICCProfileRecord* record, std::uint32_t tagSignature) noexcept;

// The row's element when it lies inside tagData and has at least `minSize`
// bytes; null otherwise.
const std::uint8_t* LocateElement(const ICCProfileRecord* record, const ICCTagEntry& row,
                                  std::uint32_t minSize) noexcept;

}  // namespace kt::icc
