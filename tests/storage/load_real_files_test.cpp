// Files made by Debian's tools: the loader returns exactly the bytes that
// exiftool reads out of them.
#include "storage_support.h"

namespace kt::test {
namespace {

const std::string kSmall = kBuiltinDir + "rgb_display.icc";  // 3 KB, RGB
const std::string kTwoSegments = kBuiltinDir + "cmy.icc";     // 65,656 bytes: two APP2 segments
const std::string kLarge = kBuiltinDir + "cmyk_press.icc";    // 725,560 bytes
const std::string kRgbMedium = "/usr/share/color/icc/colord/WideGamutRGB.icc";

// Each command runs in a folder holding base.{png,jpg,tif,psd}, lossy.webp
// and lossless.webp, with $P the profile and $O the file to make.
const struct {
    const char* name;  // its extension is what the tools go by
    const std::string* profile;
    const char* command;
} kRecipes[] = {
    {"jpegtran_small.jpg", &kSmall, "jpegtran -icc $P -outfile $O base.jpg"},
    {"jpegtran_two_segments.jpg", &kTwoSegments, "jpegtran -icc $P -outfile $O base.jpg"},
    {"jpegtran_large.jpg", &kLarge, "jpegtran -icc $P -outfile $O base.jpg"},
    {"exiftool_large.jpg", &kLarge, "exiftool -q -q -o $O \"-icc_profile<=$P\" base.jpg"},
    {"exiftool_small.tif", &kSmall, "exiftool -q -q -o $O \"-icc_profile<=$P\" base.tif"},
    {"exiftool_large.tif", &kLarge, "exiftool -q -q -o $O \"-icc_profile<=$P\" base.tif"},
    {"big_endian.tif", &kTwoSegments, "exiftool -q -q -o t.tif \"-icc_profile<=$P\" base.tif && tiffcp -B t.tif $O"},
    {"bigtiff_big_endian.tif", &kLarge,
     "rm -f t.tif && exiftool -q -q -o t.tif \"-icc_profile<=$P\" base.tif && tiffcp -8 -B t.tif $O"},
    {"bigtiff_little_endian_imagemagick.tif", &kLarge, "convert base.png -profile $P TIFF64:$O"},
    {"lossy_webpmux.webp", &kTwoSegments, "webpmux -set icc $P lossy.webp -o $O >/dev/null 2>&1"},
    {"lossless_webpmux.webp", &kLarge, "webpmux -set icc $P lossless.webp -o $O >/dev/null 2>&1"},
    {"cwebp_metadata.webp", &kTwoSegments, "jpegtran -icc $P -outfile t.jpg base.jpg && cwebp -quiet -metadata icc t.jpg -o $O"},
    // A CMYK profile in an RGB PNG: exiftool reads it, so the loader must.
    {"exiftool.png", &kLarge, "exiftool -q -q -o $O \"-icc_profile<=$P\" base.png"},
    {"imagemagick.png", &kRgbMedium, "convert base.png -profile $P $O"},
    {"exiftool.psd", &kLarge, "exiftool -q -q -o $O \"-icc_profile<=$P\" base.psd"},
    {"imagemagick.psd", &kSmall, "convert base.png -profile $P $O"},
};

// One test over every recipe: the base images are made once.
TEST_F(WithPngCodec, LoadsWhatExiftoolReads) {
    const std::string cd = "cd " + dir_.path() + " && ";
    Sh(cd + "convert -size 64x48 gradient:red-blue base.png && convert base.png base.jpg && convert base.png base.tif"
            " && convert base.png base.psd && cwebp -quiet base.png -o lossy.webp"
            " && cwebp -quiet -lossless base.png -o lossless.webp");
    for (const auto& r : kRecipes) {
        SCOPED_TRACE(r.name);
        const std::string out = dir_.File(r.name);
        Sh(cd + "P=" + *r.profile + " O=" + r.name + " && " + r.command);
        const Bytes witness = Text(Exiftool(out));
        ASSERT_EQ(witness, ReadAll(*r.profile)) << "the tool did not embed the profile whole";
        const auto loaded = Load(out);
        EXPECT_EQ(loaded.status, STATUS_OK);
        EXPECT_TRUE(loaded.bytes == witness) << loaded.bytes.size() << " bytes loaded, " << witness.size() << " expected";
        EXPECT_EQ(Vx_HasICCProfile(Wide(out).c_str(), nullptr), 1);
    }
}

}  // namespace
}  // namespace kt::test
