// The color-space table: one row per identifier holding every fact about the
// space. Sizing, layout checks, kernel shapes, both dispatches, the Little
// CMS set-up, the built-in profiles and the emulation grids read it.
#pragma once

#include <lcms2.h>

#include <cstdint>

#include "colormodels/builtin_profiles.h"
#include "colormodels/kernel_rows.h"
#include "colormodels/kernels.h"
#include "ktclr/colorspace.h"

namespace kt::color {

// A built-in emulation grid: its slot in data::EmulationGrids() (-1: none)
// and the samples per pixel of a caller's grid file standing in for it.
struct GridRef {
    int slot = -1;
    int samples = 0;
};

struct SpaceInfo {
    int id;
    const char* name;
    int bitsPerPixel;
    int group;                    // the width must be a multiple (ERR_ODD_WIDTH)
    int block;                    // width and height must be multiples (ERR_BAD_PLANAR_SIZE)
    std::uint32_t iccFormat;      // Little CMS pixel format; 0: no ICC transform
    int iccPixelBytes;            // bytes of a pixel going through the transform
    std::int32_t profile;         // built-in profile selector for the format, 0: none
    bool profileFallback;         // it also stands in for a caller's missing profile
    GridRef gridToRgb, gridFromRgb;
    Kernel fromRgb, toRgb;
};

// Identifiers are sparse (0-15, 128, 144); anything else is not a space.
// YCCK goes through Little CMS as CMYK, converted around the transform.
inline constexpr SpaceInfo kSpaces[] = {
    {CS_RGB, "RGB", 24, 1, 1, TYPE_RGB_8, 3, kProfileRgbDisplay, true, {}, {}, RgbToRgbCopy, RgbToRgbCopy},
    {CS_YUV, "YUV", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToYuv, YuvToRgb},
    {CS_CMYK, "CMYK", 32, 1, 1, TYPE_CMYK_8, 4, kProfileCmykPress, true, {2, 4}, {}, RgbToCmyk, CmykToRgb},
    {CS_HSV, "HSV", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToHsv, HsvToRgb},
    {CS_HLS, "HLS", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToHls, HlsToRgb},
    {CS_YIQ, "YIQ", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToYiq, YiqToRgb},
    {CS_CMY, "CMY", 24, 1, 1, TYPE_CMY_8, 3, kProfileCmy, true, {}, {}, RgbToCmy, CmyToRgb},
    {CS_LAB, "Lab", 24, 1, 1, TYPE_Lab_8, 3, kProfileLab, false, {0, 3}, {1, 3}, RgbToLab, LabToRgb},
    {CS_XYZ, "XYZ", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToXyz, XyzToRgb},
    {CS_YUV422_YUYV, "YUYV", 16, 2, 1, 0, 3, 0, false, {}, {}, RgbToYuyv, YuyvToRgb},
    {CS_YUV410_PLANAR, "YUV410", 9, 1, 4, 0, 3, 0, false, {}, {}, RgbToYuv410, Yuv410ToRgb},
    {CS_YCCK, "YCCK", 32, 1, 1, TYPE_CMYK_8, 4, kProfileCmykPress, true, {}, {}, RgbToYcck, YcckToRgb},
    {CS_BGR, "BGR", 24, 1, 1, TYPE_BGR_8, 3, kProfileRgbDisplay, true, {}, {}, RgbToRgbCopy, RgbToRgbCopy},
    {CS_YUV411_PACKED, "YUV411", 12, 8, 1, 0, 3, 0, false, {}, {}, RgbToYuv411, Yuv411ToRgb},
    {CS_YUV422_UYVY, "UYVY", 16, 2, 1, 0, 3, 0, false, {}, {}, RgbToUyvy, UyvyToRgb},
    {CS_YCBCR, "YCbCr", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToYcbcr, YcbcrToRgb},
    {CS_HSI, "HSI", 24, 1, 1, 0, 3, 0, false, {}, {}, RgbToHsi, HsiToRgb},
    {CS_RGB444, "RGB444", 16, 1, 1, 0, 3, 0, false, {}, {}, RgbToRgb444, Rgb444ToRgb},
};

// Null for identifiers in the gaps or negative.
constexpr const SpaceInfo* FindSpace(int id) noexcept {
    for (const SpaceInfo& s : kSpaces)
        if (s.id == id) return &s;
    return nullptr;
}

// Bits per pixel, or ERR_BAD_COLOR_SPACE for an unknown identifier.
constexpr int BitsPerPixel(int id) noexcept {
    const SpaceInfo* s = FindSpace(id);
    return s != nullptr ? s->bitsPerPixel : ERR_BAD_COLOR_SPACE;
}

// The shapes of a space's two kernels (the planar block is the kernel's own
// check).
constexpr rows::Shape FromRgbShape(int id) { return {rows::kBits24, FindSpace(id)->bitsPerPixel, FindSpace(id)->group}; }
constexpr rows::Shape ToRgbShape(int id) { return {FindSpace(id)->bitsPerPixel, rows::kBits24, FindSpace(id)->group}; }

}  // namespace kt::color
