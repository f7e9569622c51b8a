// The color-space table. Identifiers are sparse (0-15, 128, 144); anything
// else is not a space.
#include "colormodels/space_table.h"

#include "ktclr/colorspace.h"

namespace kt::color {
namespace {
constexpr SpaceInfo kSpaces[] = {
    {CS_RGB, 24, RgbToRgbCopy, RgbToRgbCopy},
    {CS_YUV, 24, RgbToYuv, YuvToRgb},
    {CS_CMYK, 32, RgbToCmyk, CmykToRgb},
    {CS_HSV, 24, RgbToHsv, HsvToRgb},
    {CS_HLS, 24, RgbToHls, HlsToRgb},
    {CS_YIQ, 24, RgbToYiq, YiqToRgb},
    {CS_CMY, 24, RgbToCmy, CmyToRgb},
    {CS_LAB, 24, RgbToLab, LabToRgb},
    {CS_XYZ, 24, RgbToXyz, XyzToRgb},
    {CS_YUV422_YUYV, 16, RgbToYuyv, YuyvToRgb},
    {CS_YUV410_PLANAR, 9, RgbToYuv410, Yuv410ToRgb},
    {CS_YCCK, 32, nullptr, nullptr},  // the handle's own routines
    {CS_BGR, 24, RgbToRgbCopy, RgbToRgbCopy},
    {CS_YUV411_PACKED, 12, RgbToYuv411, Yuv411ToRgb},
    {CS_YUV422_UYVY, 16, RgbToUyvy, UyvyToRgb},
    {CS_YCBCR, 24, RgbToYcbcr, YcbcrToRgb},
    {CS_HSI, 24, RgbToHsi, HsiToRgb},
    {CS_RGB444, 16, RgbToRgb444, Rgb444ToRgb},
};
}  // namespace

const SpaceInfo* FindSpace(int id) noexcept {
    for (const SpaceInfo& s : kSpaces)
        if (s.id == id) return &s;
    return nullptr;
}

int BitsPerPixel(int id) noexcept {
    const SpaceInfo* s = FindSpace(id);
    return s != nullptr ? s->bitsPerPixel : ERR_BAD_COLOR_SPACE;
}

}  // namespace kt::color
