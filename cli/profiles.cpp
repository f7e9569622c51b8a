#include "profiles.h"

#include <cstdio>

#include "image.h"

namespace ktcli {

ProfileRecord::ProfileRecord() { Vx_InitICCProfile(&r, KTCLR_SIZEOF_ICC_PROFILE_RECORD); }
ProfileRecord::~ProfileRecord() { Vx_FreeICCProfile(&r); }

void ProfileRecord::Fill(const Bytes& bytes) {
    if (bytes.empty()) throw Failure("the profile is empty", ERR_INVALID_PARAMETER);
    const KtStatus s = Vx_FillICCProfileStructure(&r, bytes.data(), static_cast<uint32_t>(bytes.size()));
    if (s != STATUS_OK) throw Failure("not a usable ICC profile", s);
}

Bytes BuiltinProfile(int selector) {
    int32_t size = 0;
    KtStatus s = Vx_ClrGetEmbeddedProfile(selector, nullptr, &size);
    Bytes bytes(static_cast<size_t>(size > 0 ? size : 0));
    if (s == STATUS_OK) s = Vx_ClrGetEmbeddedProfile(selector, bytes.data(), &size);
    if (s != STATUS_OK) throw Failure("cannot get the built-in profile", s);
    if (bytes.size() >= 4 && Vx_ClrIntIccGetBytes(bytes.data(), 4) < bytes.size())
        Vx_ClrIntIccSetBytes(bytes.data(), bytes.size(), 4);
    return bytes;
}

int BuiltinSelector(const std::string& name) {
    if (name == "rgb") return KTCLR_PROFILE_RGB_DISPLAY;
    if (name == "lab") return KTCLR_PROFILE_LAB;
    if (name == "cmyk") return KTCLR_PROFILE_CMYK_PRESS;
    if (name == "cmy") return KTCLR_PROFILE_CMY;
    return 0;
}

Bytes ReadFile(const std::string& path) {
    FILE* f = path == "-" ? stdin : fopen(path.c_str(), "rb");
    if (!f) throw Failure("cannot open the file", ERR_FILE_NOT_FOUND);
    Bytes bytes;
    uint8_t buf[1 << 16];
    for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;) bytes.insert(bytes.end(), buf, buf + n);
    const bool bad = ferror(f);
    if (f != stdin) fclose(f);
    if (bad) throw Failure("reading the file failed", ERR_FILE_READ);
    return bytes;
}

Bytes WithIntent(const Bytes& profile, uint32_t intent) {
    ProfileRecord p;
    p.Fill(profile);
    KtStatus s = Vx_SetICCRenderingIntent(&p.r, intent);
    if (s == STATUS_OK) s = Vx_SetICCProfileId(&p.r);  // the header changed: no stale ID
    if (s != STATUS_OK) throw Failure("cannot set the profile's rendering intent", s);
    return p.Image();
}

uint32_t ProfileColorSpace(const Bytes& profile) {
    return profile.size() >= 20 ? static_cast<uint32_t>(Vx_ClrIntIccGetBytes(profile.data() + 16, 4)) : 0;
}

std::u16string Wide(const std::string& utf8) {
    std::u16string out;
    for (size_t i = 0; i < utf8.size();) {
        const unsigned char c = static_cast<unsigned char>(utf8[i]);
        const int n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        uint32_t cp = n == 1 ? c : n == 2 ? c & 0x1F : n == 3 ? c & 0x0F : c & 0x07;
        for (int k = 1; k < n && i + k < utf8.size(); ++k) cp = (cp << 6) | (utf8[i + k] & 0x3F);
        i += n;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (cp >> 10));
            out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return out;
}

std::string SigText(uint32_t sig) {
    std::string s = "'";
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>((sig >> shift) & 0xFF);
        s += (c >= 32 && c < 127) ? c : '.';
    }
    return s + "'";
}

}  // namespace ktcli
