// Placeholder: the Lab and XYZ kernels are not written yet; they convert
// nothing.
#include "colormodels/kernels.h"

namespace kt::color {
namespace {
KtStatus Nothing() { return STATUS_OK; }
}  // namespace
#define KT_STUB(name) \
    KtStatus name(const std::uint8_t*, std::uint8_t*, int, int, int, int, int, int) noexcept { return Nothing(); }
KT_STUB(RgbToLab)
KT_STUB(LabToRgb)
KT_STUB(RgbToXyz)
KT_STUB(XyzToRgb)
}  // namespace kt::color
