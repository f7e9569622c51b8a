// ICC conversions against Little CMS's own tificc with the same profiles
// and intent, embedded profiles read by exiftool, and the profile commands.
#include <cstdlib>
#include <string>
#include <tuple>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using IccTest = ToolTest;

constexpr char kAdobe[] = "/usr/share/color/icc/compatibleWithAdobeRGB1998.icc";

// Both tools run lcms2 with the same profiles, intent and flags (none), so
// the pixels are equal: ImageMagick counts the differing ones.
TEST_F(IccTest, SameAsTificc) {
    Ok("$KTCLR profile builtin rgb rgb.icc && $KTCLR profile builtin cmyk cmyk.icc");
    Ok("$KTCLR convert \"$CHART\" --to rgb -o chart.tif");
    const std::tuple<std::string, std::string, const char*> rows[] = {  // our arguments, tificc's, the input
        {"--to cmyk", "-i rgb.icc -o cmyk.icc -t 0", "chart.tif"},
        {"--to cmyk --intent relative", "-i rgb.icc -o cmyk.icc -t 1", "chart.tif"},
        {"--to cmyk --intent saturation", "-i rgb.icc -o cmyk.icc -t 2", "chart.tif"},
        {"--to cmyk --src-profile " + std::string(kAdobe), "-i " + std::string(kAdobe) + " -o cmyk.icc -t 0", "chart.tif"},
        {"--to rgb", "-i cmyk.icc -o rgb.icc -t 0", "ref-cmyk.tif"},
        {"--to rgb --dst-profile " + std::string(kAdobe) + " --intent relative",
         "-i cmyk.icc -o " + std::string(kAdobe) + " -t 1", "ref-cmyk.tif"},
    };
    Ok("tificc -i rgb.icc -o cmyk.icc -t 0 chart.tif ref-cmyk.tif 2>/dev/null");
    for (const auto& [ours, tificc, input] : rows) {
        SCOPED_TRACE(ours);
        Ok("$KTCLR convert " + std::string(input) + " " + ours + " -o ours.tif");
        Ok("tificc " + tificc + " " + input + " theirs.tif 2>/dev/null");
        const Outcome diff = Sh("compare -metric AE ours.tif theirs.tif null:");
        EXPECT_EQ(diff.err, "0") << "pixels that differ";
    }
}

// Lab: tificc packs TIFF's signed a and b from 16-bit values itself, so a
// sample may differ by 1. The Lab TIFF carries no profile (tificc would
// apply the built-in Lab profile on top of its own Lab decoding).
TEST_F(IccTest, LabAsTificcWithinOne) {
    Ok("$KTCLR profile builtin rgb rgb.icc && $KTCLR profile builtin lab lab.icc && "
       "$KTCLR convert \"$CHART\" --to rgb -o chart.tif && tificc -i rgb.icc -o lab.icc chart.tif theirs.tif");
    Ok("$KTCLR convert chart.tif --to lab -o ours.tif && $KTCLR convert ours.tif --to lab -o ours.raw && "
       "$KTCLR convert theirs.tif --to lab -o theirs.raw");
    const std::string ours = Slurp(Path("ours.raw")), theirs = Slurp(Path("theirs.raw"));
    ASSERT_EQ(ours.size(), theirs.size());
    for (size_t i = 0; i < ours.size(); ++i) ASSERT_LE(std::abs(ours[i] - theirs[i]), 1) << "byte " << i;
    EXPECT_EQ(Ok("exiftool -b -icc_profile ours.tif"), "");
}

// The CMY profile the library hands out says it is shorter than its bytes;
// the written file's header covers them, so readers take every tag.
TEST_F(IccTest, BuiltinProfilesAreWholeFiles) {
    for (const char* name : {"rgb", "lab", "cmyk", "cmy"}) {
        SCOPED_TRACE(name);
        Ok(std::string("$KTCLR profile builtin ") + name + " p.icc");
        const std::string bytes = Slurp(Path("p.icc"));
        ASSERT_GE(bytes.size(), 128u);
        const uint32_t declared = (uint8_t(bytes[0]) << 24) | (uint8_t(bytes[1]) << 16) | (uint8_t(bytes[2]) << 8) | uint8_t(bytes[3]);
        EXPECT_EQ(declared, bytes.size());
        const Outcome r = Sh("exiftool -validate -warning -ProfileCopyright p.icc");
        EXPECT_NE(r.out.find("Profile Copyright"), std::string::npos) << r.out;
        EXPECT_EQ(r.out.find("Warning"), std::string::npos) << r.out;
    }
}

// The destination profile travels with the output, intent and all, read by
// exiftool; a profile the input embeds is the source profile (tificc does
// the same); extract gives its bytes back; embed puts one in place and
// keeps the pixels.
TEST_F(IccTest, ProfilesInImageFiles) {
    const std::string adobe = kAdobe;
    Ok("$KTCLR profile builtin cmyk cmyk.icc && $KTCLR convert \"$CHART\" --to cmyk -o a.tif");
    EXPECT_EQ(Ok("exiftool -b -icc_profile a.tif"), Slurp(Path("cmyk.icc")));
    Ok("$KTCLR convert \"$CHART\" --to cmyk --intent absolute -o b.tif");
    EXPECT_NE(Ok("exiftool -RenderingIntent b.tif").find("ICC-Absolute Colorimetric"), std::string::npos);
    Ok("$KTCLR convert \"$CHART\" --to hsv -o d.tif");  // no ICC method, no profile
    EXPECT_EQ(Ok("exiftool -b -icc_profile d.tif"), "");
    for (const char* file : {"c.png", "c.jpg", "c.webp"}) {
        Ok("$KTCLR convert \"$CHART\" --to rgb --dst-profile " + adobe + " -o " + file);
        EXPECT_EQ(Ok(std::string("exiftool -b -icc_profile ") + file), Slurp(adobe)) << file;
    }
    Ok("convert c.png adobe.tif");
    for (const char* image : {"c.png", "adobe.tif"}) {
        SCOPED_TRACE(image);
        EXPECT_NE(Ok(std::string("$KTCLR profile info ") + image).find("Compatible with Adobe RGB"), std::string::npos);
        EXPECT_EQ(Ok(std::string("$KTCLR profile extract ") + image + " x.icc && cat x.icc"), Slurp(adobe));
    }
    Ok("$KTCLR convert adobe.tif --to cmyk -o ours.tif && tificc -o cmyk.icc adobe.tif theirs.tif 2>/dev/null");
    EXPECT_EQ(Sh("compare -metric AE ours.tif theirs.tif null:").err, "0");
    Ok("$KTCLR convert \"$CHART\" --to rgb -o e.jpg && $KTCLR convert \"$CHART\" --to cmyk -o e.tif --method builtin");
    for (const char* image : {"e.jpg", "e.tif"}) {
        SCOPED_TRACE(image);
        Ok(std::string("cp ") + image + " before && $KTCLR profile embed " + image + " " + adobe + " --backup kept");
        EXPECT_EQ(Ok(std::string("exiftool -b -icc_profile ") + image), Slurp(adobe));
        EXPECT_EQ(Slurp(Path("kept")), Slurp(Path("before")));
        EXPECT_EQ(Sh(std::string("compare -metric AE before ") + image + " null:").err, "0");
    }
}

TEST_F(IccTest, ProfileInfoTextAndJson) {
    Ok("$KTCLR profile builtin rgb rgb.icc");
    const std::string text = Ok("$KTCLR profile info rgb.icc");
    ExpectParts(text, "class             mntr (display device)|color space       RGB |rXYZ   XYZ |rTRC   curv|wtpt   XYZ ");
    const std::string json = Ok("$KTCLR profile info --json rgb.icc | python3 -c "
                                "'import json,sys; d=json.load(sys.stdin); print(d[\"header\"][\"class\"], len(d[\"tags\"]))'");
    EXPECT_EQ(json, "mntr (display device) " + Ok("$KTCLR profile info rgb.icc | grep -cE '^  .{4} +.{4} +[0-9]+ +[0-9]+ '"));
}

}  // namespace
}  // namespace ktcli::test
