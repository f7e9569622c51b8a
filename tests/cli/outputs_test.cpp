// What the tool writes, read back by independent readers: libtiff's
// tiffinfo and ImageMagick's identify for format, photometric and sample
// layout; raw sizes from the layouts; bands and threads change nothing.
#include <string>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using OutputsTest = ToolTest;

TEST_F(OutputsTest, FormatsAndLayouts) {
    struct Row {
        const char* args;
        const char* file;
        const char* reader;    // command printing what is checked
        const char* expected;  // substrings of its output, '|' between them
    };
    const Row rows[] = {
        {"--to cmyk", "a.tif", "tiffinfo a.tif", "Photometric Interpretation: separated|Samples/Pixel: 4|InkSet: 1|ICC Profile: <present>"},
        {"--to lab", "a.tif", "tiffinfo a.tif", "Photometric Interpretation: CIE L*a*b*|Samples/Pixel: 3"},
        {"--to hsv", "a.tif", "tiffinfo a.tif", "Photometric Interpretation: RGB color|Samples/Pixel: 3|ImageDescription: ktclr color space: hsv"},
        {"--to ycck", "a.tif", "tiffinfo a.tif", "Photometric Interpretation: separated|Samples/Pixel: 4|ktclr color space: ycck"},
        {"--to cmyk", "a.tif", "identify -verbose a.tif", "Colorspace: CMYK|Type: ColorSeparation|Depth: 8-bit|Geometry: 128x128"},
        {"--to lab", "a.tif", "identify -verbose a.tif", "Colorspace: CIELab"},
        {"--to rgb --method icc", "a.png", "identify -verbose a.png", "Format: PNG|Colorspace: sRGB|Profile-icc: 3160 bytes"},
        {"--to rgb", "a.jpg", "identify -verbose a.jpg", "Format: JPEG|Colorspace: sRGB|Geometry: 128x128"},
        {"--to rgb", "a.webp", "identify a.webp", "WEBP 128x128"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.args + std::string(" -> ") + r.file);
        Ok(std::string("$KTCLR convert \"$CHART\" ") + r.args + " -o " + r.file);
        const std::string seen = Ok(r.reader);
        std::string want = r.expected;
        for (size_t at = 0, bar; at <= want.size(); at = bar + 1) {
            bar = want.find('|', at);
            if (bar == std::string::npos) bar = want.size();
            EXPECT_NE(seen.find(want.substr(at, bar - at)), std::string::npos) << want.substr(at, bar - at) << "\n" << seen;
        }
    }
}

// Every space goes to .raw with its own row size, printed by -v.
TEST_F(OutputsTest, RawSizesOfEverySpace) {
    const std::pair<const char*, int> rows[] = {
        {"rgb", 384}, {"bgr", 384}, {"cmyk", 512}, {"cmy", 384}, {"lab", 384}, {"xyz", 384},
        {"hsv", 384}, {"hls", 384}, {"hsi", 384}, {"yuv", 384}, {"yiq", 384}, {"ycbcr", 384},
        {"ycck", 512}, {"yuyv", 256}, {"uyvy", 256}, {"yuv411", 192}, {"yuv410", 144}, {"rgb444", 256},
    };
    for (const auto& [space, row] : rows) {
        SCOPED_TRACE(space);
        const Outcome r = Sh(std::string("$KTCLR convert \"$CHART\" -v --to ") + space + " -o out.raw");
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_NE(r.err.find("rows of " + std::to_string(row) + " bytes"), std::string::npos) << r.err;
        EXPECT_EQ(std::filesystem::file_size(Path("out.raw")), static_cast<uintmax_t>(row) * 128);
    }
}

// One row a band, several threads and the pipe give the same bytes as the
// defaults; the planar layout goes in bands of 4 rows to three places.
TEST_F(OutputsTest, BandsThreadsAndPipesChangeNothing) {
    for (const char* space : {"cmyk", "lab", "hsv", "yuv410", "yuv411", "ycck"}) {
        SCOPED_TRACE(space);
        const std::string to = std::string(" --to ") + space;
        Ok("$KTCLR convert \"$CHART\"" + to + " -o whole.raw");
        Ok("$KTCLR convert \"$CHART\"" + to + " -o band.raw --band 1");
        Ok("cat \"$CHART\" | $KTCLR convert -" + to + " -o - --format raw > piped.raw");
        EXPECT_EQ(Slurp(Path("whole.raw")), Slurp(Path("band.raw")));
        EXPECT_EQ(Slurp(Path("whole.raw")), Slurp(Path("piped.raw")));
    }
    Ok("mkdir one many && for n in a b c d; do cp \"$CHART\" $n.png; done");
    Ok("$KTCLR convert a.png b.png c.png d.png --to cmyk -d one -j 1");
    Ok("$KTCLR convert a.png b.png c.png d.png --to cmyk -d many -j 4");
    for (const char* n : {"a", "b", "c", "d"})
        EXPECT_EQ(Slurp(Path("one") / (std::string(n) + ".tif")), Slurp(Path("many") / (std::string(n) + ".tif")));
}

// Output the tool wrote is input it reads: every 3- and 4-byte space comes
// back from its TIFF to the same raw bytes.
TEST_F(OutputsTest, TiffOfEverySampleSpaceReadsBack) {
    for (const char* space : {"cmyk", "cmy", "lab", "xyz", "hsv", "hls", "hsi", "yuv", "yiq", "ycbcr", "ycck", "bgr"}) {
        SCOPED_TRACE(space);
        const std::string to = std::string(" --to ") + space + " --method builtin";
        Ok("$KTCLR convert \"$CHART\"" + to + " -o a.tif && $KTCLR convert \"$CHART\"" + to + " -o a.raw");
        Ok("$KTCLR convert a.tif" + to + " -o b.raw");
        EXPECT_EQ(Slurp(Path("a.raw")), Slurp(Path("b.raw")));
    }
}

}  // namespace
}  // namespace ktcli::test
