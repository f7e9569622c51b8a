// Profiles saved into JPEG files: the segments written, and everything else
// kept; exiftool and djpeg are the witnesses.
#include <vector>

#include "storage_support.h"

namespace kt::test {
namespace {

// The marker segments up to the scan (from the 0xFF through the data), the
// ICC ones apart, and the rest of the file from the start-of-scan marker.
struct Layout {
    std::vector<std::string> icc, other;
    std::vector<int> codes;  // of every segment, in order; 0 for an ICC one
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

// Segment data lengths (after the length field) for profile sizes around the
// 65,519-byte piece; every segment carries 14 head bytes.
TEST(SaveJpeg, SegmentsPerProfileSize) {
    const struct {
        uint32_t size;
        std::vector<uint32_t> lengths;
    } cases[] = {
        {1, {15}},
        {3144, {3158}},
        {65519, {65533}},
        {65520, {65533, 15}},
        {65525, {65533, 20}},  // 6 bytes beyond one piece: a short second segment
        {65532, {65533, 27}},
        {65533, {65533, 28}},
        {131038, {65533, 65533}},
        {131039, {65533, 65533, 15}},
    };
    ScratchDir dir;
    const std::string original = dir.File("original.jpg"), path = dir.File("image.jpg");
    Sh("convert -size 40x30 gradient:red-blue -quality 90 " + original);
    const Layout before = Parse(ReadFile(original));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        const std::string profile = Pattern(c.size, c.size);
        WriteFile(path, ReadFile(original));
        ASSERT_EQ(Save(path, profile), STATUS_OK);
        const Layout after = Parse(ReadFile(path));
        std::vector<uint32_t> lengths;
        std::string joined;
        for (const std::string& s : after.icc) {
            lengths.push_back(static_cast<uint32_t>(s.size() - 4));
            EXPECT_EQ(uint8_t(s[16]), lengths.size());    // sequence number
            EXPECT_EQ(uint8_t(s[17]), c.lengths.size());  // segment count
            joined += s.substr(18);
        }
        EXPECT_EQ(lengths, c.lengths);
        EXPECT_TRUE(joined == profile);
        EXPECT_TRUE(after.other == before.other && after.scan == before.scan);
        EXPECT_TRUE(c.size < 4 || Exiftool(path) == profile);  // exiftool skips shorter blocks
        EXPECT_TRUE(Loaded(path) == profile);
    }
}

// A camera-like file: JFIF, Exif, an old profile from ImageMagick. The new
// profile replaces the old one right after JFIF and Exif; every other segment
// and the scan stay byte for byte; the pixels decode as before.
TEST(SaveJpeg, ReplacesEarlierProfileAndKeepsTheRest) {
    ScratchDir dir;
    const std::string path = dir.File("photo.jpg");
    Sh("convert -size 64x48 gradient:red-blue -profile " + kSrgb + " " + path);
    Sh("exiftool -q -overwrite_original -Artist=ktclr -Comment=kept '" + path + "'");
    const std::string original = ReadFile(path), pixels = Pixels(path);
    const std::string profile = RealProfile("ITULab.icc");  // 431,756 bytes: seven segments
    ASSERT_EQ(Save(path, profile), STATUS_OK);
    const Layout before = Parse(original), after = Parse(ReadFile(path));
    ASSERT_GE(after.codes.size(), 9u);
    EXPECT_EQ(std::vector<int>(after.codes.begin(), after.codes.begin() + 9), (std::vector<int>{0xE0, 0xE1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(after.other == before.other && after.scan == before.scan);
    EXPECT_TRUE(Exiftool(path) == profile);
    EXPECT_TRUE(Loaded(path) == profile);
    EXPECT_EQ(ShOut("exiftool -s3 -Artist -Comment '" + path + "'"), "ktclr\nkept\n");
    EXPECT_TRUE(Pixels(path) == pixels);
}

}  // namespace
}  // namespace kt::test
