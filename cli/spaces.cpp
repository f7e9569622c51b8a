#include "spaces.h"

#include <ktclr.h>

#include <strings.h>

namespace ktcli {
namespace {

constexpr SpaceInfo kSpaces[] = {
    {CS_RGB, "rgb", 24, "R G B"},
    {CS_BGR, "bgr", 24, "B G R"},
    {CS_CMYK, "cmyk", 32, "C M Y K"},
    {CS_CMY, "cmy", 24, "C M Y"},
    {CS_LAB, "lab", 24, "L*x255/100, a* b* as signed bytes"},
    {CS_XYZ, "xyz", 24, "X Y Z"},
    {CS_HSV, "hsv", 24, "H(0-255 a full turn) S V"},
    {CS_HLS, "hls", 24, "H L S"},
    {CS_HSI, "hsi", 24, "I H S"},
    {CS_YUV, "yuv", 24, "Y U V"},
    {CS_YIQ, "yiq", 24, "Y I Q"},
    {CS_YCBCR, "ycbcr", 24, "Y Cb Cr (Cb, Cr signed)"},
    {CS_YCCK, "ycck", 32, "Y Cb Cr K"},
    {CS_YUV422_YUYV, "yuyv", 16, "Y0 U Y1 V per 2 pixels (width even)"},
    {CS_YUV422_UYVY, "uyvy", 16, "U Y0 V Y1 per 2 pixels (width even)"},
    {CS_YUV411_PACKED, "yuv411", 12, "U Y0 V Y1 U Y2 V Y3 Y4 Y5 Y6 Y7 per 8 pixels (width a multiple of 8)"},
    {CS_YUV410_PLANAR, "yuv410", 9, "planes Y (WxH), V, U (WxH/16 each); width, height multiples of 4"},
    {CS_RGB444, "rgb444", 16, "4 bits a channel in 2 bytes"},
};

bool IsRgb(int s) { return s == CS_RGB || s == CS_BGR; }
bool HasProfile(int s) { return BuiltinProfileFor(s) != 0; }

}  // namespace

const SpaceInfo* SpaceById(int id) {
    for (const SpaceInfo& s : kSpaces)
        if (s.id == id) return &s;
    return nullptr;
}

const SpaceInfo* SpaceByName(const std::string& name) {
    for (const SpaceInfo& s : kSpaces)
        if (strcasecmp(s.name, name.c_str()) == 0) return &s;
    return nullptr;
}

const SpaceInfo* AllSpaces(int* count) {
    *count = static_cast<int>(sizeof kSpaces / sizeof kSpaces[0]);
    return kSpaces;
}

std::string SpaceNames() {
    std::string all;
    for (const SpaceInfo& s : kSpaces) all += (all.empty() ? "" : ", ") + std::string(s.name);
    return all;
}

size_t RowBytes(int space, int width) {
    return (static_cast<size_t>(SpaceById(space)->bits) * static_cast<size_t>(width) + 7) / 8;
}

const char* MethodName(Method m) {
    switch (m) {
    case Method::Builtin: return "builtin";
    case Method::Icc: return "icc";
    case Method::CustomIcc: return "custom-icc";
    case Method::Emulation: return "emulation";
    case Method::CustomEmulation: return "custom-emulation";
    }
    return "?";
}

bool MethodByName(const std::string& name, Method* m) {
    for (Method c : kMethods) {
        if (name == MethodName(c)) {
            *m = c;
            return true;
        }
    }
    return false;
}

std::string MethodNames() {
    std::string all;
    for (Method c : kMethods) all += (all.empty() ? "" : ", ") + std::string(MethodName(c));
    return all;
}

unsigned MethodBit(Method m) {
    switch (m) {
    case Method::Builtin: return METHOD_BUILTIN;
    case Method::Icc: return METHOD_ICC;
    case Method::CustomIcc: return METHOD_CUSTOM_ICC;
    case Method::Emulation: return METHOD_BUILTIN_EMULATION;
    case Method::CustomEmulation: return METHOD_CUSTOM_EMULATION;
    }
    return 0;
}

// The built-in formulas serve every pair: pairs without RGB on either side
// go through RGB in two handles (the library's one handle would write
// nothing for some of them). ICC needs a profile on both sides. The
// emulation tables hold four pairs; a custom table file is loaded for two.
bool Serves(Method m, int src, int dst) {
    switch (m) {
    case Method::Builtin: return true;
    case Method::Icc:
    case Method::CustomIcc: return HasProfile(src) && HasProfile(dst);
    case Method::Emulation:
        return (src == CS_CMYK && IsRgb(dst)) || (IsRgb(src) && (dst == CS_LAB || dst == CS_CMYK)) ||
               (src == CS_LAB && IsRgb(dst));
    case Method::CustomEmulation: return (src == CS_CMYK && IsRgb(dst)) || (src == CS_RGB && dst == CS_LAB);
    }
    return false;
}

std::string ServingMethods(int src, int dst) {
    std::string all;
    for (Method c : kMethods)
        if (Serves(c, src, dst)) all += (all.empty() ? "" : ", ") + std::string(MethodName(c));
    return all;
}

int BuiltinProfileFor(int space) {
    switch (space) {
    case CS_RGB:
    case CS_BGR: return KTCLR_PROFILE_RGB_DISPLAY;
    case CS_CMYK: return KTCLR_PROFILE_CMYK_PRESS;
    case CS_CMY: return KTCLR_PROFILE_CMY;
    case CS_LAB: return KTCLR_PROFILE_LAB;
    default: return 0;
    }
}

uint32_t IccSignatureFor(int space) {
    switch (space) {
    case CS_RGB:
    case CS_BGR: return KTCLR_ICC_SIG('R', 'G', 'B', ' ');
    case CS_CMYK: return KTCLR_ICC_SIG('C', 'M', 'Y', 'K');
    case CS_CMY: return KTCLR_ICC_SIG('C', 'M', 'Y', ' ');
    case CS_LAB: return KTCLR_ICC_SIG('L', 'a', 'b', ' ');
    default: return 0;
    }
}

}  // namespace ktcli
