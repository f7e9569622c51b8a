// Placeholder of the grid machinery; the grids and the TIFF loader arrive
// later, and until then the emulation methods are refused.
#include "colormodels/emulation.h"

#include "platform/alloc.h"

namespace kt::color {
namespace {
constexpr auto kModule = mem::Module::ktclr;
}

bool EmulationAvailable() noexcept { return false; }

KtStatus SelectEmulationTable(ClrHandle* h, int, int, const ConversionParams*, bool) noexcept {
    if (!h) return ERR_INVALID_PARAMETER;
    return ERR_BAD_METHOD;
}

void FreeCustomEmulationTable(ClrHandle* h) noexcept {
    if (h->customEmulationTable) KT_FREE(h->customEmulationTable);
    h->customEmulationTable = nullptr;
}

// Without grids nothing is converted.
KtStatus EmulateCmykToRgb(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, int, int, int, int, int) noexcept {
    return STATUS_OK;
}
KtStatus EmulateRgbToLab(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, int, int, int, int, int) noexcept {
    return STATUS_OK;
}
KtStatus EmulateLabToRgb(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, int, int, int, int, int) noexcept {
    return STATUS_OK;
}

}  // namespace kt::color
