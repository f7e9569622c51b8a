// The ICC machinery a handle uses: transforms between built-in or caller
// profiles. Every function returns a status; a failure leaves the transform
// field it was building null.
#pragma once

#include <cstdint>

#include "ktclr/convert.h"

namespace kt::convert {

// Adds to the caller's ICC flags to select the caller's profiles.
inline constexpr std::uint32_t kIccFlagCustom = 65536;

// Builds h->iccTransform between the built-in profiles of the two formats.
KtStatus BuildBuiltinIccTransform(ClrHandle* h, std::uint32_t iccFlags) noexcept;

// The custom setup for the pair src -> dst: copies the caller's profiles
// into the handle and builds h->customIccTransform.
KtStatus SetupCustomIcc(ClrHandle* h, int src, int dst, const ConversionParams* p) noexcept;

// Rebuilds h->customIccTransform from what the handle holds; flags already
// include kIccFlagCustom.
KtStatus RebuildCustomIccTransform(ClrHandle* h, std::uint32_t iccFlags) noexcept;

// Accepts null.
void DeleteIccTransform(void* transform) noexcept;

}  // namespace kt::convert
