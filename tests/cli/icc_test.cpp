// ICC conversions against Little CMS's own tificc with the same profiles
// and intent, embedded profiles read by exiftool, and the profile commands.
#include <cstdlib>
#include <string>
#include <tuple>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using IccTest = ToolTest;

const std::string kAdobe = "/usr/share/color/icc/compatibleWithAdobeRGB1998.icc";

// Both tools run lcms2 with the same profiles, intent and flags (none), so
// the pixels are equal: ImageMagick counts the differing ones.
TEST_F(IccTest, SameAsTificc) {
    Ok("$KTCLR profile builtin rgb rgb.icc && $KTCLR profile builtin cmyk cmyk.icc && "
       "$KTCLR convert \"$CHART\" --to rgb -o chart.tif && tificc -i rgb.icc -o cmyk.icc chart.tif ref-cmyk.tif 2>/dev/null");
    const std::tuple<std::string, std::string, const char*> rows[] = {  // our arguments, tificc's, the input
        {"--to cmyk", "-i rgb.icc -o cmyk.icc -t 0", "chart.tif"},
        {"--to cmyk --intent relative", "-i rgb.icc -o cmyk.icc -t 1", "chart.tif"},
        {"--to cmyk --intent saturation", "-i rgb.icc -o cmyk.icc -t 2", "chart.tif"},
        {"--to cmyk --src-profile " + kAdobe, "-i " + kAdobe + " -o cmyk.icc -t 0", "chart.tif"},
        {"--to rgb", "-i cmyk.icc -o rgb.icc -t 0", "ref-cmyk.tif"},
        {"--to rgb --dst-profile " + kAdobe + " --intent relative", "-i cmyk.icc -o " + kAdobe + " -t 1", "ref-cmyk.tif"},
    };
    for (const auto& [ours, tificc, input] : rows) {
        SCOPED_TRACE(ours);
        Ok("$KTCLR convert " + std::string(input) + " " + ours + " -o ours.tif");
        Ok("tificc " + tificc + " " + input + " theirs.tif 2>/dev/null");
        EXPECT_EQ(Sh("compare -metric AE ours.tif theirs.tif null:").err, "0") << "pixels that differ";
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
    const std::string ours = Slurp("ours.raw"), theirs = Slurp("theirs.raw");
    ASSERT_EQ(ours.size(), theirs.size());
    for (size_t i = 0; i < ours.size(); ++i) ASSERT_LE(std::abs(ours[i] - theirs[i]), 1) << "byte " << i;
    EXPECT_EQ(Ok("exiftool -b -icc_profile ours.tif"), "");
}

// Each built-in profile is a whole file (the CMY profile the library hands
// out says it is shorter than its bytes; the written header covers them)
// that exiftool reads without a warning; profile info prints its header and
// tags, as text and as JSON.
TEST_F(IccTest, BuiltinProfilesAndTheirInfo) {
    for (const char* name : {"lab", "cmyk", "cmy", "rgb"}) {
        SCOPED_TRACE(name);
        Ok(std::string("$KTCLR profile builtin ") + name + " p.icc");
        EXPECT_EQ(Ok("head -c 4 p.icc | od -An -tu4 --endian=big | tr -d ' '"), Ok("stat -c %s p.icc"));
        const Outcome r = Sh("exiftool -validate -warning -ProfileCopyright p.icc");
        EXPECT_NE(r.out.find("Profile Copyright"), std::string::npos) << r.out;
        EXPECT_EQ(r.out.find("Warning"), std::string::npos) << r.out;
    }
    ExpectParts(Ok("$KTCLR profile info p.icc"),  // the last, rgb
                "class             mntr (display device)|color space       RGB |rXYZ   XYZ |rTRC   curv|wtpt   XYZ ");
    const std::string json = Ok("$KTCLR profile info --json p.icc | python3 -c "
                                "'import json,sys; d=json.load(sys.stdin); print(d[\"header\"][\"class\"], len(d[\"tags\"]))'");
    EXPECT_EQ(json, "mntr (display device) " + Ok("$KTCLR profile info p.icc | grep -cE '^  .{4} +.{4} +[0-9]+ +[0-9]+ '"));
}

// The destination profile travels with the output, intent and all, read by
// exiftool (no ICC method, no profile); a profile the input embeds is the
// source profile (tificc does the same); extract gives its bytes back;
// embed puts one in place and keeps the pixels.
TEST_F(IccTest, ProfilesInImageFiles) {
    Ok("$KTCLR profile builtin cmyk cmyk.icc && : > none");
    const std::tuple<std::string, const char*, std::string> rows[] = {  // arguments, output, profile it holds
        {"--to cmyk", "a.tif", "cmyk.icc"}, {"--to hsv", "d.tif", "none"},
        {"--to rgb --dst-profile " + kAdobe, "c.png", kAdobe}, {"--to rgb --dst-profile " + kAdobe, "c.jpg", kAdobe},
        {"--to rgb --dst-profile " + kAdobe, "c.webp", kAdobe},
    };
    for (const auto& [args, file, profile] : rows) {
        Ok("$KTCLR convert \"$CHART\" " + args + " -o " + file);
        EXPECT_EQ(Ok(std::string("exiftool -b -icc_profile ") + file), Slurp(profile)) << file;
    }
    Ok("$KTCLR convert \"$CHART\" --to cmyk --intent absolute -o b.tif");
    EXPECT_NE(Ok("exiftool -RenderingIntent b.tif").find("ICC-Absolute Colorimetric"), std::string::npos);
    Ok("convert c.png adobe.tif");
    for (const char* image : {"c.png", "adobe.tif"})  // what the profile commands read from images
        Ok(std::string("$KTCLR profile extract ") + image + " x.icc && cmp x.icc " + kAdobe + " && $KTCLR profile info " +
           image + " | grep -q 'Compatible with Adobe RGB'");
    Ok("$KTCLR convert adobe.tif --to cmyk -o ours.tif && tificc -o cmyk.icc adobe.tif theirs.tif 2>/dev/null");
    EXPECT_EQ(Sh("compare -metric AE ours.tif theirs.tif null:").err, "0");
    Ok("$KTCLR convert \"$CHART\" --to rgb -o e.jpg && $KTCLR convert \"$CHART\" --to cmyk -o e.tif --method builtin");
    for (const char* image : {"e.jpg", "e.tif"})  // embedded, the original kept, the pixels the same
        Ok(std::string("cp ") + image + " before && $KTCLR profile embed " + image + " " + kAdobe + " --backup kept && "
           "cmp kept before && exiftool -b -icc_profile " + image + " | cmp - " + kAdobe + " && compare -metric AE before " + image + " null:");
}

}  // namespace
}  // namespace ktcli::test
