// Every failure is one line on standard error naming the file, with the
// right exit status: 2 for usage, 1 when inputs failed; a batch still
// converts its good files.
#include <fnmatch.h>

#include <algorithm>
#include <string>

#include "tool_runner.h"

namespace ktcli::test {
namespace {

using ErrorsTest = ToolTest;

TEST_F(ErrorsTest, OneLineAndStatus) {
    Ok("printf 'not an image' > junk.png && printf 'x' > short.raw && cp \"$CHART\" c.png && cp c.png d.png && mkdir out");
    struct Row {
        const char* args;
        int status;
        const char* line;  // the one line after "ktclr: ", * standing for any text
    };
    const Row rows[] = {
        {"convert missing.png --to cmyk -o a.tif", 1, "missing.png: cannot open: No such file or directory"},
        {"convert c.png junk.png d.png --to cmyk -d out -j 2", 1, "junk.png: not a PNG, JPEG, TIFF or WebP image*"},
        {"convert c.png --to cmyk -o a.tif --src-profile none.icc", 2,
         "none.icc: no such profile file (ERR_FILE_NOT_FOUND -8: *)"},
        {"convert c.png --to cmyk -o a.tif --method custom-emulation --table none.tif", 2,
         "none.tif: no such table file (ERR_FILE_NOT_FOUND -8: *)"},
        {"convert c.png --to hsv -o a.tif --method icc", 1,
         "c.png: method icc does not convert rgb to hsv; methods that do: builtin"},
        {"convert c.png --to lab -o a.tif --method custom-emulation --table c.png", 1,
         "c.png: cannot prepare rgb to lab by custom-emulation (ERR_* -*: *)"},
        {"convert c.png --to yuyv -o a.png", 1, "c.png: png cannot hold yuyv pixels *"},
        {"convert c.png --to yuyv -o a.tif", 1, "c.png: tiff cannot hold yuyv pixels *"},
        {"convert short.raw --from rgb --size 4x4 --to hsv -o a.tif", 1,
         "short.raw: the file is shorter than 48 bytes of rgb"},
        {"convert short.raw --to hsv -o a.tif", 1, "short.raw: a .raw input needs --from and --size *"},
        {"convert c.png --to yuv410 --size 6x6 --from rgb -o a.raw", 0, ""},
        {"convert c.png --to zzz -o a.tif", 2, "--to: unknown space 'zzz'; spaces: rgb, *"},
        {"convert c.png --to cmyk", 2, "give the output: -o FILE (one input) or -d DIR"},
        {"convert c.png c.png --to cmyk -o a.tif", 2, "-o takes one input; *"},
        {"convert c.png --to cmyk -o a.tif --method builtin --src-profile c.png", 2,
         "--src-profile and --dst-profile serve --method custom-icc *"},
        {"convert c.png --to cmyk -o a.tif --intent sideways", 2, "--intent: one of *"},
        {"convert c.png --to cmyk -o a.tif --bogus", 2, "The following argument was not expected: --bogus (see --help)"},
        {"convert c.png --to cmyk -o - ", 2, "-o - needs --format"},
        {"profile info junk.png", 1, "junk.png: cannot read a profile from it (ERR_FORMAT_NOT_SUPPORTED -1154: *)"},
        {"profile embed c.png /usr/share/color/icc/sRGB.icc", 1,
         "c.png: cannot embed the profile (ERR_FORMAT_NOT_SUPPORTED -1154: *)"},
        {"profile embed short.raw junk.png", 1, "junk.png: not a valid ICC profile file (ERR_*)"},
        {"profile extract short.raw x.icc", 1, "short.raw: cannot read a profile from it (ERR_*)"},
        {"profile builtin rgb no/such/dir/x.icc", 1, "no/such/dir/x.icc: cannot create a file beside it: *"},
        {"profile builtin srgb x.icc", 2, "name: srgb not in {*} (see --help)"},
        {"frobnicate", 2, "A subcommand is required (see --help)"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.args);
        const Outcome run = Sh(std::string("$KTCLR ") + r.args);
        EXPECT_EQ(run.status, r.status) << run.err;
        ASSERT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), *r.line ? 1 : 0) << run.err;
        const std::string line = "ktclr: " + std::string(r.line) + "\n";
        EXPECT_TRUE(!*r.line || fnmatch(line.c_str(), run.err.c_str(), 0) == 0) << run.err;
    }
    EXPECT_EQ(Ok("ls -A out"), "c.tif\nd.tif\n");  // the batch's good files, no temporary left
}

TEST_F(ErrorsTest, HelpVersionAndSpaces) {
    EXPECT_NE(Ok("$KTCLR profile embed --help").find("Usage:"), std::string::npos);
    EXPECT_EQ(Ok("$KTCLR --version").rfind("ktclr ", 0), 0u);
    // spaces: 18 rows of name, id, bits and layout, then the methods.
    EXPECT_EQ(Ok("$KTCLR spaces | grep -cE '^[a-z0-9]+ +[0-9]+ +(9|12|16|24|32)  [^ ]'"), "18\n");
}

}  // namespace
}  // namespace ktcli::test
