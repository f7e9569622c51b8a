// The transform builder: opens the profiles for both sides (the caller's,
// or the built-in ones) and asks lcms2 for an 8-bit transform between them.
#pragma once

#include <cstdint>

#include "ktclr/convert.h"

namespace kt::convert {

// One side's profile as the caller gave it: bytes win over a file name;
// neither means no profile for that side.
struct IccProfileSource {
    const void* bytes = nullptr;
    std::uint32_t length = 0;
    const char16_t* path = nullptr;  // zero-terminated; null or empty: none
};

// Returns an lcms2 transform or null, and sets *status. Bit 16 of `flags`
// (kIccFlagCustom) selects the caller's profiles; without it both sides
// use the built-in profile of their format. Bit 0 turns off lcms2's
// white-on-white fix-up.
void* BuildIccTransform(std::uint32_t srcFormat, std::uint32_t dstFormat, std::uint32_t flags,
                        const IccProfileSource& src, const IccProfileSource& dst, KtStatus* status) noexcept;

}  // namespace kt::convert
