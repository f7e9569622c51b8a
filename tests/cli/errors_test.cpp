// Every failure is one line on standard error naming the file, with the
// right exit status: 2 for usage, 1 when inputs failed.
#include <regex>
#include <string>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using ErrorsTest = ToolTest;

TEST_F(ErrorsTest, OneLineAndStatus) {
    Ok("printf 'not an image' > junk.png && printf 'x' > short.raw && cp \"$CHART\" c.png");
    struct Row {
        const char* args;
        int status;
        const char* line;  // regular expression for the one line
    };
    const Row rows[] = {
        {"convert missing.png --to cmyk -o a.tif", 1, "ktclr: missing.png: cannot open: No such file or directory"},
        {"convert junk.png --to cmyk -o a.tif", 1, "ktclr: junk.png: not a PNG, JPEG, TIFF or WebP image.*"},
        {"convert \"$CHART\" --to cmyk -o a.tif --src-profile none.icc", 2,
         "ktclr: none.icc: no such profile file \\(ERR_FILE_NOT_FOUND -8: .*\\)"},
        {"convert \"$CHART\" --to cmyk -o a.tif --method custom-emulation --table none.tif", 2,
         "ktclr: none.tif: no such table file \\(ERR_FILE_NOT_FOUND -8: .*\\)"},
        {"convert \"$CHART\" --to hsv -o a.tif --method icc", 1,
         "ktclr: .*chart.png: method icc does not convert rgb to hsv; methods that do: builtin"},
        {"convert \"$CHART\" --to lab -o a.tif --method custom-emulation --table \"$CHART\"", 1,
         "ktclr: .*chart.png: cannot prepare rgb to lab by custom-emulation \\(ERR_.* -[0-9]+: .*\\)"},
        {"convert \"$CHART\" --to yuyv -o a.png", 1, "ktclr: .*chart.png: png cannot hold yuyv pixels .*"},
        {"convert \"$CHART\" --to yuyv -o a.tif", 1, "ktclr: .*chart.png: tiff cannot hold yuyv pixels .*"},
        {"convert short.raw --from rgb --size 4x4 --to hsv -o a.tif", 1,
         "ktclr: short.raw: the file is shorter than 48 bytes of rgb"},
        {"convert short.raw --to hsv -o a.tif", 1, "ktclr: short.raw: a .raw input needs --from and --size .*"},
        {"convert \"$CHART\" --to yuv410 --size 6x6 --from rgb -o a.raw", 0, ""},
        {"convert \"$CHART\" --to zzz -o a.tif", 2, "ktclr: --to: unknown space 'zzz'; spaces: rgb, .*"},
        {"convert \"$CHART\" --to cmyk", 2, "ktclr: give the output: -o FILE \\(one input\\) or -d DIR"},
        {"convert \"$CHART\" \"$CHART\" --to cmyk -o a.tif", 2, "ktclr: -o takes one input; .*"},
        {"convert \"$CHART\" --to cmyk -o a.tif --method builtin --src-profile \"$CHART\"", 2,
         "ktclr: --src-profile and --dst-profile serve --method custom-icc .*"},
        {"convert \"$CHART\" --to cmyk -o a.tif --intent sideways", 2, "ktclr: --intent: one of .*"},
        {"convert \"$CHART\" --to cmyk -o a.tif --bogus", 2, "ktclr: The following argument was not expected: --bogus \\(see --help\\)"},
        {"convert \"$CHART\" --to cmyk -o - ", 2, "ktclr: -o - needs --format"},
        {"profile info junk.png", 1, "ktclr: junk.png: cannot read a profile from it \\(ERR_FORMAT_NOT_SUPPORTED -1154: .*\\)"},
        {"profile embed c.png /usr/share/color/icc/sRGB.icc", 1,
         "ktclr: c.png: cannot embed the profile \\(ERR_FORMAT_NOT_SUPPORTED -1154: .*\\)"},
        {"profile embed short.raw junk.png", 1, "ktclr: junk.png: not a valid ICC profile file \\(ERR_.*\\)"},
        {"profile extract short.raw x.icc", 1, "ktclr: short.raw: cannot read a profile from it \\(ERR_.*\\)"},
        {"profile builtin rgb no/such/dir/x.icc", 1, "ktclr: no/such/dir/x.icc: cannot create a file beside it: .*"},
        {"profile builtin srgb x.icc", 2, "ktclr: name: srgb not in \\{.*\\} \\(see --help\\)"},
        {"frobnicate", 2, "ktclr: A subcommand is required \\(see --help\\)"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.args);
        const Outcome run = Sh(std::string("$KTCLR ") + r.args);
        EXPECT_EQ(run.status, r.status) << run.err;
        const std::vector<std::string> lines = Lines(run.err);
        if (*r.line == 0) {
            EXPECT_TRUE(lines.empty()) << run.err;
            continue;
        }
        ASSERT_EQ(lines.size(), 1u) << run.err;
        EXPECT_TRUE(std::regex_match(lines[0], std::regex(r.line))) << lines[0];
    }
}

TEST_F(ErrorsTest, HelpEverywhereAndVersion) {
    for (const char* sub : {"", "convert", "spaces", "profile", "profile info", "profile extract", "profile embed",
                            "profile builtin"}) {
        const Outcome r = Sh(std::string("$KTCLR ") + sub + " --help");
        EXPECT_EQ(r.status, 0) << sub;
        EXPECT_NE(r.out.find("Usage:"), std::string::npos) << sub;
    }
    EXPECT_EQ(Ok("$KTCLR --version").rfind("ktclr ", 0), 0u);
}

// A bad file among good ones: the others are converted, the status is 1.
TEST_F(ErrorsTest, BatchWithOneUnreadableFile) {
    Ok("mkdir out && cp \"$CHART\" a.png && cp \"$CHART\" c.png && printf 'broken' > b.png");
    const Outcome r = Sh("$KTCLR convert a.png b.png c.png --to cmyk -d out -j 2");
    EXPECT_EQ(r.status, 1);
    const std::vector<std::string> lines = Lines(r.err);
    ASSERT_EQ(lines.size(), 1u) << r.err;
    EXPECT_EQ(lines[0].rfind("ktclr: b.png: ", 0), 0u) << lines[0];
    EXPECT_TRUE(std::filesystem::exists(Path("out/a.tif")));
    EXPECT_TRUE(std::filesystem::exists(Path("out/c.tif")));
    EXPECT_FALSE(std::filesystem::exists(Path("out/b.tif")));
    EXPECT_EQ(Ok("ls -A out | wc -l"), "2\n");  // no temporary left behind
}

}  // namespace
}  // namespace ktcli::test
