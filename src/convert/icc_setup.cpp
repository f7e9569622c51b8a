// Placeholder of the ICC machinery: the transforms arrive with the lcms2
// integration, and until then a method that needs them is refused.
#include "convert/icc_setup.h"

namespace kt::convert {

bool IccAvailable() noexcept { return false; }

KtStatus BuildBuiltinIccTransform(ClrHandle* h, std::uint32_t) noexcept {
    h->iccTransform = nullptr;
    return ERR_BAD_METHOD;
}

KtStatus SetupCustomIcc(ClrHandle* h, const ConversionParams*) noexcept {
    h->customIccTransform = nullptr;
    return ERR_BAD_METHOD;
}

KtStatus RebuildCustomIccTransform(ClrHandle* h, std::uint32_t) noexcept {
    h->customIccTransform = nullptr;
    return ERR_BAD_METHOD;
}

void DeleteIccTransform(void*) noexcept {}

}  // namespace kt::convert
