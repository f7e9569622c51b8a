#include <gtest/gtest.h>

#include "storage_support.h"

namespace kt::test {
namespace {

// Two-page files in each byte order, classic and BigTIFF, one of them with a
// profile already; profiles that fit in the tag entry and one that does not.
// libtiff's tools read every page unchanged, exiftool and the library read
// the new profile back.
TEST(SaveTiff, EveryLayoutKeepsItsPagesAndTakesTheProfile) {
    const struct {
        const char* make;  // ImageMagick arguments for the file
        bool big;
    } layouts[] = {
        {"-endian LSB", false},
        {"-endian MSB", false},
        {"-endian LSB -profile /usr/share/color/icc/ITULab.icc", false},
        {"-endian LSB -define tiff:rows-per-strip=3", true},
        {"-endian MSB", true},
    };
    const std::string profiles[] = {Pattern(4), RealProfile("sRGB.icc")};
    for (const auto& layout : layouts) {
        SCOPED_TRACE(std::string(layout.make) + (layout.big ? " BigTIFF" : ""));
        ScratchDir dir;
        const std::string original = dir.File("original.tif"), path = dir.File("image.tif");
        Sh(std::string("convert -size 24x16 gradient:red-blue -size 20x12 plasma:fractal -seed 3 ") + layout.make +
           (layout.big ? " TIFF64:" : " ") + original);
        for (const std::string& profile : profiles) {
            SCOPED_TRACE(profile.size());
            WriteFile(path, ReadFile(original));
            ASSERT_EQ(Save(path, profile), STATUS_OK);
            const std::string info = ShOut("tiffinfo '" + path + "' 2>&1");
            EXPECT_NE(info.find("ICC Profile: <present>, " + std::to_string(profile.size()) + " bytes"),
                      std::string::npos) << info;
            EXPECT_EQ(test::Run("tiffcmp '" + original + "' '" + path + "'"), 0);  // both pages: tags and pixels
            // exiftool lists the first page's profile first; it takes none
            // shorter than a header.
            const std::string all = ShOut("exiftool -a -icc_profile -b '" + path + "'");
            EXPECT_TRUE(profile.size() < 128 || all.substr(0, profile.size()) == profile);
            EXPECT_TRUE(Loaded(path) == profile);
        }
    }
}

}  // namespace
}  // namespace kt::test
