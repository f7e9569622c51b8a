#include "convert/builtin_dispatch.h"

#include "colormodels/kernels.h"
#include "colormodels/lab_tables.h"
#include "colormodels/space_table.h"

namespace kt::convert {
namespace {

KtStatus FromRgb(int dstSpace, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                 int dstPad, int order, const BuiltinExtras& x) noexcept {
    const color::SpaceInfo* info = color::FindSpace(dstSpace);
    if (!info) return STATUS_OK;
    if (dstSpace == CS_LAB && x.rgbToLab)
        return color::RgbToLabThroughTable(x.rgbToLab, src, dst, width, height, srcPad, dstPad, order);
    const color::Kernel kernel = IsHub(dstSpace) ? color::RgbToRgbCopy : info->fromRgb;
    if (!kernel) return STATUS_OK;
    return kernel(src, dst, width, height, srcPad, dstPad, x.black, order);
}

KtStatus ToRgb(int srcSpace, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
               int dstPad, int order, const BuiltinExtras& x) noexcept {
    const color::SpaceInfo* info = color::FindSpace(srcSpace);
    if (!info) return STATUS_OK;
    if (srcSpace == CS_LAB && x.labTable)
        return color::LabToRgbThroughTable(x.labTable, src, dst, width, height, srcPad, dstPad, order);
    const color::Kernel kernel = info->toRgb;
    if (!kernel) return STATUS_OK;
    return kernel(src, dst, width, height, srcPad, dstPad, x.black, order);
}

}  // namespace

KtStatus ConvertOneStep(int srcSpace, int dstSpace, const std::uint8_t* src, std::uint8_t* dst, int width,
                        int height, int srcPad, int dstPad, const BuiltinExtras& extras) noexcept {
    if (IsHub(srcSpace))
        return FromRgb(dstSpace, src, dst, width, height, srcPad, dstPad, srcSpace == CS_RGB ? 1 : 0, extras);
    if (IsHub(dstSpace))
        return ToRgb(srcSpace, src, dst, width, height, srcPad, dstPad, dstSpace == CS_RGB ? 1 : 0, extras);
    return STATUS_OK;
}

}  // namespace kt::convert
