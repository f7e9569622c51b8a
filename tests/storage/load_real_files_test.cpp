// Files made by Debian's tools: the loader returns exactly the bytes that
// exiftool reads out of them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "storage/png_codec.h"
#include "storage_support.h"

namespace kt::test {
namespace {

const std::string kBuiltin = std::string(KTCLR_TEST_SOURCE_DIR) + "/data/builtin/";
const std::string kSmall = kBuiltin + "rgb_display.icc";  // 3 KB, RGB
const std::string kTwoSegments = kBuiltin + "cmy.icc";     // 65,656 bytes: two APP2 segments
const std::string kLarge = kBuiltin + "cmyk_press.icc";    // 725,560 bytes
const std::string kRgbMedium = "/usr/share/color/icc/colord/WideGamutRGB.icc";

struct Recipe {
    const char* name;
    const char* extension;  // what the tools go by
    const std::string* profile;
    // Shell command; {P} is the profile, {O} the output, {D} the folder of base.*
    const char* command;
};

const Recipe kRecipes[] = {
    {"jpeg_jpegtran_small", "jpg", &kSmall, "jpegtran -icc {P} -outfile {O} {D}/base.jpg"},
    {"jpeg_jpegtran_two_segments", "jpg", &kTwoSegments, "jpegtran -icc {P} -outfile {O} {D}/base.jpg"},
    {"jpeg_jpegtran_large", "jpg", &kLarge, "jpegtran -icc {P} -outfile {O} {D}/base.jpg"},
    {"jpeg_exiftool_large", "jpg", &kLarge, "exiftool -q -q -o {O} '-icc_profile<={P}' {D}/base.jpg"},
    {"tiff_exiftool_small", "tif", &kSmall, "exiftool -q -q -o {O} '-icc_profile<={P}' {D}/base.tif"},
    {"tiff_exiftool_large", "tif", &kLarge, "exiftool -q -q -o {O} '-icc_profile<={P}' {D}/base.tif"},
    {"tiff_big_endian", "tif", &kTwoSegments, "exiftool -q -q -o {O}.tmp.tif '-icc_profile<={P}' {D}/base.tif && tiffcp -B {O}.tmp.tif {O}"},
    {"bigtiff_big_endian", "tif", &kLarge, "exiftool -q -q -o {O}.tmp.tif '-icc_profile<={P}' {D}/base.tif && tiffcp -8 -B {O}.tmp.tif {O}"},
    {"bigtiff_little_endian_imagemagick", "tif", &kLarge, "convert {D}/base.png -profile {P} TIFF64:{O}"},
    {"webp_lossy_webpmux", "webp", &kTwoSegments, "webpmux -set icc {P} {D}/lossy.webp -o {O} >/dev/null 2>&1"},
    {"webp_lossless_webpmux", "webp", &kLarge, "webpmux -set icc {P} {D}/lossless.webp -o {O} >/dev/null 2>&1"},
    {"webp_cwebp_metadata", "webp", &kTwoSegments, "jpegtran -icc {P} -outfile {O}.jpg {D}/base.jpg && cwebp -quiet -metadata icc {O}.jpg -o {O}"},
    // A CMYK profile in an RGB PNG: exiftool reads it, so the loader must.
    {"png_exiftool", "png", &kLarge, "exiftool -q -q -o {O} '-icc_profile<={P}' {D}/base.png"},
    {"png_imagemagick", "png", &kRgbMedium, "convert {D}/base.png -profile {P} {O}"},
    {"psd_exiftool", "psd", &kLarge, "exiftool -q -q -o {O} '-icc_profile<={P}' {D}/base.psd"},
    {"psd_imagemagick", "psd", &kSmall, "convert {D}/base.png -profile {P} {O}"},
};

std::string Expand(std::string s, const std::string& p, const std::string& o, const std::string& d) {
    for (const auto& [key, value] : {std::pair<std::string, std::string>{"{P}", p}, {"{O}", o}, {"{D}", d}})
        for (std::size_t at; (at = s.find(key)) != std::string::npos;) s.replace(at, key.size(), value);
    return s;
}

// One test over every recipe: the base images are made once.
TEST(RealFiles, LoadsWhatExiftoolReads) {
    storage::testing::ResetPngCodec(KTCLR_TEST_MODULE_DIR);  // the test binary is not beside the module folder
    ScratchDir dir;
    const std::string d = dir.path();
    ASSERT_EQ(std::system(("cd " + d + " && convert -size 64x48 gradient:red-blue base.png && convert base.png base.jpg"
                           " && convert base.png base.tif && convert base.png base.psd"
                           " && cwebp -quiet base.png -o lossy.webp && cwebp -quiet -lossless base.png -o lossless.webp")
                              .c_str()),
              0)
        << "scripts/install-deps.sh --tests installs the tools";
    for (const Recipe& r : kRecipes) {
        SCOPED_TRACE(r.name);
        const std::string out = dir.File(std::string(r.name) + "." + r.extension);
        const std::string command = Expand(r.command, *r.profile, out, d);
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        ASSERT_EQ(std::system(("exiftool -b -icc_profile " + out + " > " + out + ".icc 2>/dev/null").c_str()), 0);
        const Bytes witness = ReadAll(out + ".icc");
        ASSERT_EQ(witness, ReadAll(*r.profile)) << "the tool did not embed the profile whole";
        const auto loaded = Load(out);
        EXPECT_EQ(loaded.status, STATUS_OK);
        EXPECT_TRUE(loaded.bytes == witness) << loaded.bytes.size() << " bytes loaded, " << witness.size() << " expected";
        EXPECT_EQ(Vx_HasICCProfile(Wide(out).c_str(), nullptr), 1);
    }
    storage::testing::ResetPngCodec(nullptr);
}

}  // namespace
}  // namespace kt::test
