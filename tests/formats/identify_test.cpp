// Identification by content: every kind the readers and writers know, and
// near misses that must stay unknown.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/identify.h"

namespace kt::formats {
namespace {

std::vector<uint8_t> B(const std::string& s) { return std::vector<uint8_t>(s.begin(), s.end()); }

TEST(Identify, ByFirstBytes) {
    const struct {
        std::string head;
        int32_t format;
    } cases[] = {
        {"\xFF\xD8\xFF\xE0", kFormatJpeg}, {"\xFF\xD8\xFF\xE1", kFormatJpeg},
        {std::string("II*\0\x08\0\0\0", 8), kFormatTiff}, {std::string("MM\0*\0\0\0\x08", 8), kFormatTiff},
        {std::string("II+\0\x08\0\0\0", 8), kFormatBigTiff}, {std::string("MM\0+\0\x08\0\0", 8), kFormatBigTiff},
        {std::string("MM\0+\0\x04\0\0", 8), kFormatUnknown},  // offsets of 4 bytes are no BigTIFF
        {"%!PS-Adobe-3.0\n%%Pages: 1\n", kFormatPostScript}, {"%!PS-Adobe-3.0 EPSF-3.0\n", kFormatEps},
        {"%!PS-Adobe-2.0\r EPSF-3.0\n", kFormatPostScript},  // EPSF only counts on the first line
        {"%!\n", kFormatPostScript}, {"\xC5\xD0\xD3\xC6\x1e\0\0\0", kFormatEpsBinary},
        {"\x89PNG\r\n\x1a\n", kFormatPng}, {"\x89PNG\r\n\x1a", kFormatUnknown},
        {std::string("8BPS\0\x01", 6), kFormatPhotoshop}, {std::string("8BPS\0\x02", 6), kFormatPhotoshop},
        {std::string("8BPS\0\x03", 6), kFormatUnknown}, {std::string("RIFF\x10\0\0\0WEBPVP8 ", 16), kFormatWebpLossy},
        {std::string("RIFF\x10\0\0\0WEBPVP8X", 16), kFormatWebpLossy},
        {std::string("RIFF\x10\0\0\0WEBPVP8L", 16), kFormatWebpLossless},
        {std::string("RIFF\x10\0\0\0WAVEfmt ", 16), kFormatUnknown}, {"GIF87a", kFormatGif},
        {"GIF89a", kFormatGif}, {"GIF90a", kFormatUnknown},
        {std::string("\xE0\0\x08\0\0\0\x01", 7), kFormatMarker56},
        {std::string("\xE0\0\x04\0\0\0\x02", 7), kFormatMarker56},
        {std::string("\xE0\0\x03\0\0\0\x01", 7), kFormatUnknown},
        {std::string("\xE0\0\x08\0\0\0\x03", 7), kFormatUnknown},
        {"BM", kFormatUnknown}, {"", kFormatUnknown},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.head);
        const std::vector<uint8_t> bytes = B(c.head);
        EXPECT_EQ(IdentifyBytes(bytes.data(), bytes.size()), c.format);
    }
}

TEST(Identify, ReaderTableNumbers) {
    const int32_t jpeg[] = {10, 21, 23, 98, 101, 171, 172, 173};
    const int32_t tiff[] = {3, 17, 22, 24, 85, 86, 87, 88, 93, 94, 95, 96, 97, 138, 139, 140, 141, 155, 166, 167,
                            174, 175, 176, 177, 269, 270, 271, 272, 273, 274, 275, 276, 315};
    const int32_t others[] = {16, 63, 64, 300, 56, 75, 76, 404, 405};
    int readers = 0;
    for (int32_t f = -1; f < 1000; ++f) readers += HasReader(f);
    EXPECT_EQ(readers, 8 + 33 + 9);
    for (int32_t f : jpeg) EXPECT_TRUE(IsJpegFamily(f) && !IsTiffFamily(f)) << f;
    for (int32_t f : tiff) EXPECT_TRUE(IsTiffFamily(f) && !IsJpegFamily(f)) << f;
    for (int32_t f : others) EXPECT_TRUE(HasReader(f)) << f;
    EXPECT_FALSE(HasReader(kFormatGif));
    EXPECT_FALSE(HasReader(kFormatUnknown));
}

}  // namespace
}  // namespace kt::formats
