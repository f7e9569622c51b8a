#include <gtest/gtest.h>

#include <vector>

#include "storage_support.h"

namespace kt::test {
namespace {

// The marker segments of a JPEG up to its scan, and where the scan starts.
struct Segment {
    uint8_t code;
    std::string bytes;  // from the 0xFF through the segment's data
};
struct Layout {
    std::vector<Segment> segments;
    std::string scan;  // from the start-of-scan marker to the end of the file
};
Layout Parse(const std::string& f) {
    Layout l;
    std::size_t i = 2;
    while (i + 4 <= f.size() && uint8_t(f[i]) == 0xFF && uint8_t(f[i + 1]) != 0xDA) {
        const std::size_t n = 2 + (uint8_t(f[i + 2]) << 8 | uint8_t(f[i + 3]));
        l.segments.push_back({uint8_t(f[i + 1]), f.substr(i, n)});
        i += n;
    }
    l.scan = f.substr(i);
    return l;
}
bool IsIcc(const Segment& s) { return s.code == 0xE2 && s.bytes.compare(4, 11, "ICC_PROFILE") == 0; }

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
    test::ScratchDir dir;
    const std::string original = dir.File("original.jpg");
    Sh("convert -size 40x30 gradient:red-blue -quality 90 " + original);
    const Layout before = Parse(ReadFile(original));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        const std::string path = dir.File("image.jpg"), profile = Pattern(c.size, c.size);
        WriteFile(path, ReadFile(original));
        ASSERT_EQ(Save(path, profile), STATUS_OK);
        const Layout after = Parse(ReadFile(path));
        std::vector<uint32_t> lengths;
        std::string joined;
        for (const Segment& s : after.segments) {
            if (!IsIcc(s)) continue;
            lengths.push_back(static_cast<uint32_t>(s.bytes.size() - 4));
            EXPECT_EQ(s.bytes[15], '\0');
            EXPECT_EQ(uint8_t(s.bytes[16]), lengths.size());             // sequence number
            EXPECT_EQ(uint8_t(s.bytes[17]), c.lengths.size());           // segment count
            joined += s.bytes.substr(18);
        }
        EXPECT_EQ(lengths, c.lengths);
        EXPECT_TRUE(joined == profile);
        EXPECT_TRUE(after.scan == before.scan);
        EXPECT_TRUE(c.size < 4 || Exiftool(path) == profile);  // exiftool skips shorter blocks
        EXPECT_TRUE(Loaded(path) == profile);
    }
}

// A camera-like file: JFIF, Exif, an old profile from ImageMagick. The new
// profile replaces the old one right after JFIF and Exif; every other segment
// and the scan stay byte for byte; the pixels decode as before.
TEST(SaveJpeg, ReplacesEarlierProfileAndKeepsTheRest) {
    test::ScratchDir dir;
    const std::string path = dir.File("photo.jpg");
    Sh("convert -size 64x48 gradient:red-blue -profile /usr/share/color/icc/sRGB.icc " + path);
    Sh("exiftool -q -overwrite_original -Artist=ktclr -Comment=kept '" + path + "'");
    const std::string original = ReadFile(path), pixels = Pixels(path);
    const std::string profile = RealProfile("ITULab.icc");  // 431,756 bytes: seven segments
    ASSERT_EQ(Save(path, profile), STATUS_OK);

    const Layout before = Parse(original), after = Parse(ReadFile(path));
    std::vector<std::string> kept, codes;
    for (const Segment& s : before.segments)
        if (!IsIcc(s)) kept.push_back(s.bytes);
    for (const Segment& s : after.segments) codes.push_back(IsIcc(s) ? "icc" : std::to_string(s.code));
    const std::vector<std::string> expectedStart = {"224", "225", "icc", "icc", "icc", "icc", "icc", "icc", "icc"};
    ASSERT_GE(codes.size(), expectedStart.size());
    EXPECT_EQ(std::vector<std::string>(codes.begin(), codes.begin() + 9), expectedStart);
    std::vector<std::string> rest;
    for (const Segment& s : after.segments)
        if (!IsIcc(s)) rest.push_back(s.bytes);
    EXPECT_TRUE(rest == kept);
    EXPECT_TRUE(after.scan == before.scan);
    EXPECT_TRUE(Exiftool(path) == profile);
    EXPECT_TRUE(Loaded(path) == profile);
    EXPECT_EQ(ShOut("exiftool -s3 -Artist -Comment '" + path + "'"), "ktclr\nkept\n");
    EXPECT_TRUE(Pixels(path) == pixels);
}

}  // namespace
}  // namespace kt::test
