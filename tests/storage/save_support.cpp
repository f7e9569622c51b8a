#include "save_support.h"

#include <gtest/gtest.h>

#include "storage_files.h"

namespace kt::savetest {

std::string Pattern(std::size_t size, unsigned seed) {
    std::string s(size, '\0');
    uint32_t x = seed * 2654435761u + 1;
    for (auto& c : s) {
        x = x * 1664525u + 1013904223u;
        c = static_cast<char>(x >> 24);
    }
    // Like a profile, the first four bytes give the size (readers check it).
    for (std::size_t i = 0; i < 4 && i < size; ++i) s[i] = static_cast<char>(size >> (24 - 8 * i));
    return s;
}

std::string RealProfile(const char* name) {
    std::string bytes = ReadFile(std::string("/usr/share/color/icc/") + name);
    EXPECT_FALSE(bytes.empty()) << name << " missing (scripts/install-deps.sh --tests)";
    return bytes;
}

void Sh(const std::string& command) { ASSERT_EQ(test::Run(command + " >/dev/null 2>&1"), 0) << command; }

std::string ShOut(const std::string& command) {
    std::string out;
    EXPECT_EQ(test::Run(command, &out), 0) << command;
    return out;
}

KtStatus Save(const std::string& path, const std::string& profile, const Vx_SaveFileOptions* options) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    record.profileSize = static_cast<uint32_t>(profile.size());
    record.profileData = reinterpret_cast<uint8_t*>(const_cast<char*>(profile.data()));
    return Vx_SaveICCProfile(test::Wide(path).c_str(), &record, options);
}

std::string Loaded(const std::string& path) {
    const test::Bytes bytes = test::Load(path).bytes;
    return std::string(bytes.begin(), bytes.end());
}

std::string Exiftool(const std::string& path) { return ShOut("exiftool -icc_profile -b '" + path + "'"); }

std::string Pixels(const std::string& path) {
    const std::string ext = path.substr(path.rfind('.') + 1), q = "'" + path + "'";
    if (ext == "jpg") return ShOut("djpeg -pnm " + q);
    if (ext == "webp") return ShOut("dwebp -quiet -pam -o - " + q);
    return ShOut("convert " + q + " -strip ppm:-");  // ImageMagick: its own GIF reader, libtiff for TIFF
}

}  // namespace kt::savetest
