// What the tool reads and writes, against independent tools: ImageMagick
// decodes the same inputs to the same pixels; libtiff's tiffinfo and
// ImageMagick's identify read format, photometric and sample layout of the
// outputs; raw sizes from the layouts; bands and threads change nothing.
#include <string>
#include <tuple>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using OutputsTest = ToolTest;

TEST_F(OutputsTest, FormatsAndLayouts) {
    const std::tuple<const char*, const char*, const char*> rows[] = {  // arguments, reader, what it prints ('|')
        {"--to cmyk -o a.tif", "tiffinfo a.tif && identify -verbose a.tif",
         "Photometric Interpretation: separated|Samples/Pixel: 4|InkSet: 1|ICC Profile: <present>|"
         "Colorspace: CMYK|Type: ColorSeparation|Depth: 8-bit|Geometry: 128x128"},
        {"--to lab -o a.tif", "tiffinfo a.tif && identify -verbose a.tif",
         "Photometric Interpretation: CIE L*a*b*|Samples/Pixel: 3|Colorspace: CIELab"},
        {"--to hsv -o a.tif", "tiffinfo a.tif", "Photometric Interpretation: RGB color|Samples/Pixel: 3|ImageDescription: ktclr color space: hsv"},
        {"--to ycck -o a.tif", "tiffinfo a.tif", "Photometric Interpretation: separated|Samples/Pixel: 4|ktclr color space: ycck"},
        {"--to rgb --method icc -o a.png", "identify -verbose a.png", "Format: PNG|Colorspace: sRGB|Profile-icc: 3160 bytes"},
        {"--to rgb -o a.jpg", "identify -verbose a.jpg", "Format: JPEG|Colorspace: sRGB|Geometry: 128x128"},
        {"--to rgb -o a.webp", "identify a.webp", "WEBP 128x128"},
    };
    for (const auto& [args, reader, expected] : rows) {
        SCOPED_TRACE(args);
        ExpectParts(Ok(std::string("$KTCLR convert \"$CHART\" ") + args + " && " + reader), expected);
    }
}

// Inputs ImageMagick wrote decode to the pixels it decodes: grey expanded,
// palette and 16-bit samples reduced, alpha dropped, Adobe's inverted CMYK
// JPEG put right.
TEST_F(OutputsTest, InputsDecodeAsImageMagickDoes) {
    const std::pair<const char*, const char*> rows[] = {  // ImageMagick options and file, space read
        {"-colorspace Gray g.png", "rgb"}, {"-colors 16 PNG8:p.png", "rgb"}, {"-depth 16 PNG48:d.png", "rgb"},
        {"-interlace PNG i.png", "rgb"}, {"-alpha set -channel A -evaluate set 50% a.png", "rgb"},
        {"j.jpg", "rgb"}, {"-colorspace Gray gj.jpg", "rgb"}, {"-colorspace CMYK cj.jpg", "cmyk"},
        {"w.webp", "rgb"}, {"-colorspace Gray -compress lzw gt.tif", "rgb"}, {"-colorspace CMYK ct.tif", "cmyk"},
    };
    for (const auto& [made, space] : rows) {
        SCOPED_TRACE(made);
        const std::string file = std::string(made).substr(std::string(made).find_last_of(" :") + 1);
        Ok("convert \"$CHART\" " + std::string(made) + " && convert " + file + " -alpha off -depth 8 " + space +
           ":theirs.raw && $KTCLR convert " + file + " --to " + space + " -o ours.raw && cmp ours.raw theirs.raw");
    }
}

// Every space goes to .raw with its own row size, printed by -v; one row a
// band and the pipe give the same bytes as the defaults; the 3- and 4-byte
// spaces come back from the tool's own TIFF to the same bytes; several
// threads write the same files as one. On a terminal (script gives a
// pseudo-terminal) a progress bar, erased, then the summary; elsewhere the
// tool is quiet (ErrorsTest).
TEST_F(OutputsTest, EverySpaceRawBandsPipesAndTiff) {
    const std::tuple<const char*, int, bool> rows[] = {  // space, row bytes, TIFF holds it
        {"rgb", 384, false},   {"bgr", 384, true},    {"cmyk", 512, true},   {"cmy", 384, true},
        {"lab", 384, true},    {"xyz", 384, true},    {"hsv", 384, true},    {"hls", 384, true},
        {"hsi", 384, true},    {"yuv", 384, true},    {"yiq", 384, true},    {"ycbcr", 384, true},
        {"ycck", 512, true},   {"yuyv", 256, false},  {"uyvy", 256, false},  {"yuv411", 192, false},
        {"yuv410", 144, false}, {"rgb444", 256, false},
    };
    for (const auto& [space, row, tiff] : rows) {
        SCOPED_TRACE(space);
        const std::string to = std::string(" --to ") + space, builtin = to + " --method builtin";
        const std::string said = Ok("$KTCLR convert \"$CHART\" -v" + to + " -o whole.raw 2>&1 && $KTCLR convert \"$CHART\"" +
                                    to + " -o band.raw --band 1 && cmp whole.raw band.raw && cat \"$CHART\" | "
                                    "$KTCLR convert -" + to + " -o - --format raw | cmp whole.raw");
        EXPECT_NE(said.find("rows of " + std::to_string(row) + " bytes"), std::string::npos) << said;
        EXPECT_EQ(Slurp("whole.raw").size(), row * 128u);
        if (tiff)
            Ok("$KTCLR convert \"$CHART\"" + builtin + " -o a.tif && $KTCLR convert \"$CHART\"" + builtin +
               " -o a.raw && $KTCLR convert a.tif" + builtin + " -o b.raw && cmp a.raw b.raw");
    }
    const std::string shown = Ok("mkdir one many && for n in a b c d; do cp \"$CHART\" $n.png; done && "
                                 "$KTCLR convert a.png b.png c.png d.png --to cmyk -d one -j 1 && script -qec "
                                 "\"$KTCLR convert a.png b.png c.png d.png --to cmyk -d many -j 4\" /dev/null && diff -r one many");
    EXPECT_NE(shown.find("] "), std::string::npos) << shown;
    EXPECT_NE(shown.find("\r\033[Kktclr: converted 4 of 4 files to cmyk in "), std::string::npos) << shown;
}

// A pipe named as the output is written into, never renamed over: the same
// rename would turn /dev/null into a plain file for a tool run as root.
TEST_F(OutputsTest, PipeTargetsAreWrittenInto) {
    Ok("mkfifo p.tif p.icc && $KTCLR convert \"$CHART\" --to cmyk -o a.tif && $KTCLR profile extract a.tif a.icc && "
       "{ timeout 20 cat p.tif > got.tif & timeout 20 cat p.icc > got.icc & $KTCLR convert \"$CHART\" --to cmyk -o p.tif"
       " && $KTCLR profile extract a.tif p.icc; wait; } && test -p p.tif && test -p p.icc && cmp a.tif got.tif && cmp a.icc got.icc");
}

}  // namespace
}  // namespace ktcli::test
