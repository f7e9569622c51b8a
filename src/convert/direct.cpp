// Handle-free conversion between two spaces through the built-in kernels:
// one step when a side is RGB or BGR, else two steps through a temporary
// RGB image.
#include <cstring>

#include "colormodels/kernels.h"
#include "colormodels/space_table.h"
#include "convert/builtin_dispatch.h"
#include "platform/alloc.h"
#include "platform/probe.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr int kRgbBytes = 3;

using color::rows::Padding;
using color::rows::RowBytes;

KtStatus CheckLayout(int space, int width, int height, const void* buffer) {
    const color::SpaceInfo* info = color::FindSpace(space);
    if (!info) return ERR_BAD_COLOR_SPACE;
    if (!buffer || width < 1 || height < 1) return ERR_INVALID_PARAMETER;
    if (width % info->group != 0) return ERR_ODD_WIDTH;
    if (width % info->block != 0 || height % info->block != 0) return ERR_BAD_PLANAR_SIZE;
    return STATUS_OK;
}

std::size_t Extent(int space, int width, int height, int pad) {
    return color::rows::Extent(color::BitsPerPixel(space), width, height, pad);
}

// Equal spaces: one block when both paddings are below 2, else one row
// length per row, each side advancing by its padding alone, so that rows
// overlap (ConvertChecks.EqualSpacesCopy).
void CopyRows(int space, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad, int dstPad) {
    const std::size_t row = static_cast<std::size_t>(color::BitsPerPixel(space)) * width / 8;
    if (srcPad < 2 && dstPad < 2) {
        std::memmove(dst, src, row * height);
        return;
    }
    for (int y = 0; y < height; ++y, src += Padding(srcPad), dst += Padding(dstPad)) std::memmove(dst, src, row);
}

// Neither side is RGB: source to RGB into a packed temporary, then RGB to
// the destination.
KtStatus TwoSteps(int srcSpace, int dstSpace, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                  int srcPad, int dstPad) {
    const std::size_t bytes = static_cast<std::size_t>(width) * height * kRgbBytes;
    auto* rgb = static_cast<std::uint8_t*>(KT_ALLOC(bytes));
    if (!rgb) return ERR_ALLOC;
    const BuiltinExtras plain;
    KtStatus status = ConvertOneStep(srcSpace, CS_RGB, src, rgb, width, height, srcPad, 0, plain);
    if (status == STATUS_OK) {
        if (dstSpace == CS_RGB444) {
            // The 4-bit kernel reads the caller's source and writes into the
            // temporary, leaving the destination as it was. It only runs where
            // the source rows hold a whole RGB row, so it never reads past them.
            if (RowBytes(color::BitsPerPixel(srcSpace), width) >= static_cast<std::int64_t>(width) * kRgbBytes)
                status = color::RgbToRgb444(src, rgb, width, height, srcPad, 0, KTCLR_DEFAULT_CMYK_BLACK, 1);
        } else {
            status = ConvertOneStep(CS_RGB, dstSpace, rgb, dst, width, height, 0, dstPad, plain);
        }
    }
    KT_FREE(rgb);
    return status;
}

}  // namespace
}  // namespace kt::convert

extern "C" KTCLR_API KtStatus Vx_ClrConvertDirect(int srcSpace, int dstSpace, uint8_t* src, uint8_t* dst, int width,
                                                  int height, int srcPad, int dstPad) {
    using namespace kt::convert;
    if (!src || !dst) return ERR_INVALID_PARAMETER;
    KtStatus status = CheckLayout(srcSpace, width, height, src);
    if (status != STATUS_OK) return status;
    if ((status = CheckLayout(dstSpace, width, height, dst)) != STATUS_OK) return status;
    if (kt::platform::IsBadReadPtr(src, Extent(srcSpace, width, height, srcPad))) return ERR_BAD_POINTER;
    if (kt::platform::IsBadWritePtr(dst, Extent(dstSpace, width, height, dstPad))) return ERR_BAD_POINTER;
    // In place, equal paddings are refused and different ones copied: the
    // reverse of Vx_ClrConvert's rule (ConvertDirect.ChecksInOrder).
    if (src == dst && srcSpace == dstSpace && srcPad == dstPad) return ERR_SAME_BUFFER;
    if (srcSpace == dstSpace) {
        CopyRows(srcSpace, src, dst, width, height, srcPad, dstPad);
        return STATUS_OK;
    }
    if (IsHub(srcSpace) || IsHub(dstSpace))
        return ConvertOneStep(srcSpace, dstSpace, src, dst, width, height, srcPad, dstPad, BuiltinExtras{});
    return TwoSteps(srcSpace, dstSpace, src, dst, width, height, srcPad, dstPad);
}
