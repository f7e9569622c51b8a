// Files Debian's tools made, one table over the formats: the loader reads
// the profile exiftool reads; after a save exiftool and the loader read the
// new profile, the format's own decoder (djpeg, dwebp, ImageMagick; tiffcmp
// for every page of a TIFF) sees the same pixels, and the bytes land where
// each container puts them.
#include <vector>

#include "storage_support.h"

namespace kt::test {
namespace {

uint32_t Le32At(const std::string& s, std::size_t at) {
    return uint8_t(s[at]) | uint8_t(s[at + 1]) << 8 | uint8_t(s[at + 2]) << 16 | uint32_t(uint8_t(s[at + 3])) << 24;
}

// Each check sees the file before the save, the saved file's path, the
// profile saved and the row's argument.
using Check = void (*)(const std::string& before, const std::string& path, const std::string& profile, int arg);

// A JPEG's segments up to the scan (from the 0xFF), the ICC ones apart, the
// codes of all in order (0 for an ICC one) and the rest from the scan on.
struct Layout {
    std::vector<std::string> icc, other;
    std::vector<int> codes;
    std::string scan;
};
Layout Parse(const std::string& f) {
    Layout l;
    std::size_t i = 2;
    while (i + 4 <= f.size() && uint8_t(f[i]) == 0xFF && uint8_t(f[i + 1]) != 0xDA) {
        const std::string s = f.substr(i, 2 + (uint8_t(f[i + 2]) << 8 | uint8_t(f[i + 3])));
        const bool icc = uint8_t(s[1]) == 0xE2 && s.compare(4, 12, std::string("ICC_PROFILE", 12)) == 0;
        (icc ? l.icc : l.other).push_back(s);
        l.codes.push_back(icc ? 0 : uint8_t(s[1]));
        i += s.size();
    }
    l.scan = f.substr(i);
    return l;
}

// The profile replaces the old one right after JFIF and Exif, in segments of
// 65,533 bytes after the length field and a shorter last one, numbered; all
// else byte for byte.
void JpegBytes(const std::string& before, const std::string& path, const std::string& profile, int segments) {
    const Layout b = Parse(before), a = Parse(ReadFile(path));
    EXPECT_TRUE(a.other == b.other && a.scan == b.scan);
    ASSERT_EQ(a.icc.size(), std::size_t(segments));
    EXPECT_EQ(std::vector<int>(a.codes.begin(), a.codes.begin() + 2), (std::vector<int>{0xE0, 0xE1}));
    std::string joined;
    for (std::size_t i = 0; i < a.icc.size(); ++i) {
        EXPECT_TRUE(a.codes[2 + i] == 0 && uint8_t(a.icc[i][16]) == i + 1 && uint8_t(a.icc[i][17]) == segments);
        EXPECT_TRUE(i + 1 == a.icc.size() || a.icc[i].size() == 65537) << i;
        joined += a.icc[i].substr(18);
    }
    EXPECT_TRUE(joined == profile);
}

// The extension takes the trailer's place: head, 255-byte sub-blocks, the
// rest, terminator, trailer.
void GifBytes(const std::string& before, const std::string& path, const std::string& profile, int) {
    std::string blocks;
    for (std::size_t at = 0; at < profile.size(); at += 255)
        blocks += char(std::min<std::size_t>(255, profile.size() - at)) + profile.substr(at, 255);
    EXPECT_TRUE(ReadFile(path) == before.substr(0, before.size() - 1) + std::string("!\xff\x0bICCRGBG1\0\1\2", 14) + blocks +
                             std::string("\0;", 2));
}

// The ICCP chunk replaced in place or appended (no pad byte), the RIFF size
// following.
void WebpBytes(const std::string& before, const std::string& path, const std::string& profile, int) {
    const std::size_t at = before.find("ICCP");
    const std::string chunk = "ICCP" + Str(Le32(uint32_t(profile.size()))) + profile;
    std::string expected = before + chunk;
    if (at != std::string::npos) {
        const uint32_t old = Le32At(before, at + 4);
        expected = before.substr(0, at) + chunk + before.substr(at + 8 + old + (old & 1));
    }
    expected.replace(4, 4, Str(Le32(uint32_t(expected.size() - 8))));
    EXPECT_TRUE(ReadFile(path) == expected);
}

// With the container rules VP8X leads with its ICC bit (and ALPH's when the
// image has one), ICCP follows it padded, and a second save replaces it.
void WebpContainerBytes(const std::string&, const std::string& path, const std::string& profile, int flags) {
    const std::string after = ReadFile(path);
    EXPECT_EQ(after.substr(12, 8), std::string("VP8X\x0a\0\0\0", 8));
    EXPECT_EQ(uint8_t(after[20]), flags);
    EXPECT_TRUE(after.substr(30, 8 + profile.size() + 1) == "ICCP" + Str(Le32(uint32_t(profile.size()))) + profile + '\0');
    EXPECT_EQ(Le32At(after, 4), after.size() - 8);
    EXPECT_EQ(after.find("ICCP", 38), std::string::npos);
}

// Two pages in each byte order, classic and BigTIFF: libtiff's tools see
// the new profile and both pages unchanged.
void TiffPages(const std::string& before, const std::string& path, const std::string& profile, int) {
    WriteFile(path + ".before.tif", before);
    const std::string info = ShOut("tiffinfo '" + path + "' 2>&1");
    EXPECT_NE(info.find("ICC Profile: <present>, " + std::to_string(profile.size()) + " bytes"), std::string::npos);
    EXPECT_EQ(Run("tiffcmp '" + path + ".before.tif' '" + path + "'"), 0);
}

const std::string kSmall = kBuiltinDir + "rgb_display.icc";  // 3 KB, RGB
const std::string kTwo = kBuiltinDir + "cmy.icc";             // 65,656 bytes: two APP2 segments
const std::string kLarge = kBuiltinDir + "cmyk_press.icc";    // 725,560 bytes
const std::string kRgbMedium = "/usr/share/color/icc/colord/WideGamutRGB.icc";

// Each file is made in a folder holding base.{png,jpg,tif,psd}, lossy.webp,
// lossless.webp and alpha.png ($P the embedded profile, $O the file). The
// loader reads what exiftool reads of it; then each profile is saved into
// a fresh copy and read back by the witnesses.
TEST_F(WithPngCodec, WitnessesReadWhatIsLoadedAndSaved) {
    const Vx_SaveFileOptions rules{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, VX_SAVE_WEBP_CONTAINER_RULES, nullptr};
    const Check jpeg = JpegBytes, gif = GifBytes, webp = WebpBytes, container = WebpContainerBytes, tiff = TiffPages;
    const std::string exif = "exiftool -q -q -o $O \"-icc_profile<=$P\" ", camera = " && exiftool -q -overwrite_original -Artist=k $O";
    const std::string pages = "convert -size 24x16 gradient:red-blue -size 20x12 plasma:fractal -seed 3 ";
    const std::string itu = RealProfile("ITULab.icc"), srgb = RealProfile("sRGB.icc");  // 431,756 and 3,144 bytes
    const struct {
        const char* name;
        const std::string* embedded;  // $P, or none
        std::string make;
        std::vector<std::string> profiles = {};
        Check check = nullptr;
        int arg = 0;  // the check's: APP2 segments, or VP8X flags
        const Vx_SaveFileOptions* options = nullptr;
    } rows[] = {
        // Profile sizes around the 65,519-byte JPEG piece.
        {"small.jpg", &kSmall, "jpegtran -icc $P -outfile $O base.jpg" + camera, {Pattern(1), Pattern(65519), srgb}, jpeg, 1},
        {"two.jpg", &kTwo, "jpegtran -icc $P -outfile $O base.jpg" + camera, {Pattern(65520), Pattern(131038)}, jpeg, 2},
        {"large.jpg", &kLarge, "jpegtran -icc $P -outfile $O base.jpg" + camera, {Pattern(131039)}, jpeg, 3},
        {"exiftool.jpg", &kLarge, exif + "base.jpg" + camera, {itu}, jpeg, 7},
        {"a.gif", nullptr, "convert base.png $O", {Pattern(600), Pattern(255), Pattern(0)}, gif},
        // Shorter, longer, same size, odd; an odd chunk without its pad
        // byte makes the readers lose step, so they are not asked.
        {"webpmux.webp", &kTwo, "webpmux -set icc $P lossy.webp -o $O", {Pattern(3000), Pattern(65656, 2), Pattern(7001)}, webp},
        {"webpmux_lossless.webp", &kLarge, "webpmux -set icc $P lossless.webp -o $O", {Pattern(8000)}, webp},
        {"plain.webp", nullptr, "cp lossy.webp $O", {Pattern(3000)}, webp},
        {"odd.webp", nullptr, "head -c 3001 " + kSrgb + " >odd.icc && webpmux -set icc odd.icc lossy.webp -o $O", {Pattern(3000)}, webp},
        {"cwebp.webp", &kTwo, "jpegtran -icc $P -outfile t.jpg base.jpg && cwebp -quiet -metadata icc t.jpg -o $O"},
        {"rules.webp", nullptr, "cwebp -quiet -q 80 -noalpha alpha.png -o $O", {Pattern(6921)}, container, 0x20, &rules},
        {"rules_lossless.webp", nullptr, "cwebp -quiet -lossless alpha.png -o $O", {Pattern(6921)}, container, 0x30, &rules},
        {"rules_alpha.webp", nullptr, "cwebp -quiet -q 80 alpha.png -o $O", {Pattern(6921)}, container, 0x30, &rules},
        {"exiftool.tif", &kSmall, exif + "base.tif"},
        {"le.tif", nullptr, pages + "-endian LSB $O", {Pattern(4), srgb}, tiff},
        {"be.tif", &kTwo, pages + "-endian MSB $O && exiftool -q -q -overwrite_original \"-icc_profile<=$P\" $O", {srgb}, tiff},
        {"old.tif", &kSrgb, pages + "-endian LSB -profile $P $O", {itu}, tiff},
        {"big_le.tif", &kLarge, pages + "-profile $P -endian LSB -define tiff:rows-per-strip=3 TIFF64:$O", {srgb}, tiff},
        {"big_be.tif", nullptr, pages + "-endian MSB TIFF64:$O", {Pattern(4)}, tiff},
        {"bigtiff_tiffcp.tif", &kLarge, exif + "base.tif && tiffcp -8 -B $O t.tif && mv t.tif $O"},
        // A CMYK profile in an RGB PNG: exiftool reads it, so the loader must.
        {"exiftool.png", &kLarge, exif + "base.png"},
        {"imagemagick.png", &kRgbMedium, "convert base.png -profile $P $O"},
        {"exiftool.psd", &kLarge, exif + "base.psd"},
        {"imagemagick.psd", &kSmall, "convert base.png -profile $P $O"},
    };
    const std::string cd = "cd " + dir_.path() + " && ";
    Sh(cd + "convert -size 30x20 gradient:red-blue base.png && convert base.png base.jpg && convert base.png base.tif"
            " && convert base.png base.psd && cwebp -quiet base.png -o lossy.webp"
            " && cwebp -quiet -lossless base.png -o lossless.webp"
            " && convert base.png -alpha set -channel A -evaluate set 50% alpha.png");
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        const std::string path = dir_.File(r.name), ext = path.substr(path.rfind('.') + 1);
        Sh(cd + "P=" + (r.embedded ? *r.embedded : "") + " O=" + r.name + " && " + r.make);
        if (r.embedded) {
            const std::string embedded = ReadFile(*r.embedded);
            ASSERT_TRUE(Exiftool(path).substr(0, embedded.size()) == embedded) << "the tool did not embed it whole";
            EXPECT_TRUE(Loaded(path) == embedded);
            EXPECT_EQ(Vx_HasICCProfile(Wide(path).c_str(), nullptr), 1);
        }
        const std::string original = ReadFile(path), pixels = r.profiles.empty() ? "" : Pixels(path);
        for (const std::string& profile : r.profiles) {
            SCOPED_TRACE(profile.size());
            WriteFile(path, original);
            for (int saves = r.options ? 2 : 1; saves > 0; --saves)  // a second save replaces, never adds
                ASSERT_EQ(Save(path, profile, r.options), STATUS_OK);
            r.check(original, path, profile, r.arg);
            if (ext == "webp" && !r.options && profile.size() % 2) continue;
            EXPECT_TRUE(Pixels(path) == pixels);
            if (ext == "gif") continue;  // neither reader takes a GIF's profile
            EXPECT_TRUE(Loaded(path) == profile + std::string(r.options ? 1 : 0, '\0'));
            // exiftool takes none shorter than a header and lists every page's.
            EXPECT_TRUE(profile.size() < 128 || Exiftool(path).substr(0, profile.size()) == profile);
        }
    }
}

}  // namespace
}  // namespace kt::test
