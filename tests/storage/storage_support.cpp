#include "storage_support.h"

namespace kt::test {

std::string RealProfile(const char* name) {
    std::string bytes = ReadFile(std::string("/usr/share/color/icc/") + name);
    EXPECT_FALSE(bytes.empty()) << name << " missing (scripts/install-deps.sh --tests)";
    return bytes;
}

void Sh(const std::string& command) { ASSERT_EQ(Run(command + " >/dev/null 2>&1"), 0) << command; }

std::string ShOut(const std::string& command) {
    std::string out;
    EXPECT_EQ(Run(command, &out), 0) << command;
    return out;
}

KtStatus Save(const std::string& path, const std::string& profile, const Vx_SaveFileOptions* options) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    record.profileSize = static_cast<uint32_t>(profile.size());
    record.profileData = reinterpret_cast<uint8_t*>(const_cast<char*>(profile.data()));
    return Vx_SaveICCProfile(Wide(path).c_str(), &record, options);
}

std::string Loaded(const std::string& path) {
    const Bytes bytes = Load(path).bytes;
    return std::string(bytes.begin(), bytes.end());
}

std::string Exiftool(const std::string& path) { return ShOut("exiftool -a -icc_profile -b '" + path + "'"); }

std::string Pixels(const std::string& path) {
    const std::string ext = path.substr(path.rfind('.') + 1), q = "'" + path + "'";
    if (ext == "jpg") return ShOut("djpeg -pnm " + q);
    if (ext == "webp") return ShOut("dwebp -quiet -pam -o - " + q);
    return ShOut("convert " + q + " -strip ppm:-");  // ImageMagick: its own GIF reader, libtiff for TIFF
}

}  // namespace kt::test
