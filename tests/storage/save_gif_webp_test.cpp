#include <gtest/gtest.h>

#include "storage_support.h"

namespace kt::test {
namespace {

uint32_t Le32(const std::string& s, std::size_t at) {
    return uint8_t(s[at]) | uint8_t(s[at + 1]) << 8 | uint8_t(s[at + 2]) << 16 | uint32_t(uint8_t(s[at + 3])) << 24;
}
std::string Le32s(uint32_t v) { return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)}; }
std::string ChunkS(const char* id, const std::string& body) { return std::string(id, 4) + Le32s(uint32_t(body.size())) + body; }

// The extension takes the trailer's place: head, 255-byte sub-blocks, the
// rest, terminator, trailer. ImageMagick still decodes the same pixels.
TEST(SaveGif, ExtensionInPlaceOfTheTrailer) {
    ScratchDir dir;
    const std::string path = dir.File("image.gif");
    Sh("convert -size 30x20 gradient:red-blue " + path);
    const std::string original = ReadFile(path), pixels = Pixels(path);
    for (const uint32_t size : {600u, 255u, 0u}) {
        const std::string profile = Pattern(size);
        WriteFile(path, original);
        ASSERT_EQ(Save(path, profile), STATUS_OK);
        std::string blocks;
        if (size == 600) blocks = '\xff' + profile.substr(0, 255) + '\xff' + profile.substr(255, 255) + 'Z' + profile.substr(510);
        if (size == 255) blocks = '\xff' + profile;
        const std::string expected = original.substr(0, original.size() - 1) + std::string("!\xff\x0bICCRGBG1\0\1\2", 14) +
                                     blocks + std::string("\0;", 2);
        EXPECT_TRUE(ReadFile(path) == expected) << size;
        EXPECT_TRUE(Pixels(path) == pixels) << size;
    }
}

// Lossy and lossless files with and without a profile (cwebp, webpmux): the
// chunk replaced in place (shorter, longer, same size, odd) or appended, the RIFF size
// following; dwebp decodes the same pixels, exiftool and the loader read the
// new profile.
TEST(SaveWebp, ChunkReplacedOrAppended) {
    ScratchDir dir;
    const std::string png = dir.File("source.png"), plain = dir.File("plain.webp"), lossless = dir.File("lossless.webp"),
                      withIcc = dir.File("icc.webp"), path = dir.File("image.webp");
    Sh("convert -size 30x20 gradient:red-blue " + png);
    Sh("cwebp -quiet " + png + " -o " + plain);
    Sh("cwebp -quiet -lossless " + png + " -o " + lossless);
    Sh("webpmux -set icc " + kSrgb + " " + plain + " -o " + withIcc);
    for (const std::string& source : {plain, lossless, withIcc}) {
        const std::string original = ReadFile(source), pixels = Pixels(source);
        const std::size_t at = original.find("ICCP");
        for (const uint32_t size : {3000u, 7001u, 6922u, 8000u}) {
            SCOPED_TRACE(source + " " + std::to_string(size));
            const std::string profile = Pattern(size);
            WriteFile(path, original);
            ASSERT_EQ(Save(path, profile), STATUS_OK);
            std::string expected;
            if (at == std::string::npos) {
                expected = original + ChunkS("ICCP", profile);
            } else {
                const uint32_t old = Le32(original, at + 4);
                expected = original.substr(0, at) + ChunkS("ICCP", profile) + original.substr(at + 8 + old + (old & 1));
            }
            expected.replace(4, 4, Le32s(uint32_t(expected.size() - 8)));
            EXPECT_TRUE(ReadFile(path) == expected);
            // An odd chunk gets no pad byte, so the readers lose step after
            // it (the container rules pad it); they are asked about even ones.
            if (size & 1) continue;
            EXPECT_TRUE(Pixels(path) == pixels);
            EXPECT_TRUE(Exiftool(path) == profile);
            EXPECT_TRUE(Loaded(path) == profile);
        }
    }
}

// With the container rules, VP8X (made for a simple file) leads with its ICC
// bit and ICCP follows it, padded; webpmux sees the profile, dwebp decodes
// the same pixels.
TEST(SaveWebp, ContainerRules) {
    ScratchDir dir;
    const std::string png = dir.File("source.png"), path = dir.File("image.webp");
    Sh("convert -size 30x20 gradient:red-blue -alpha set -channel A -evaluate set 50% " + png);
    const Vx_SaveFileOptions options{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, VX_SAVE_WEBP_CONTAINER_RULES, nullptr};
    const struct {
        const char* cwebp;
        uint8_t flags;  // of the VP8X chunk afterwards
    } cases[] = {{"-q 80 -noalpha", 0x20}, {"-lossless", 0x30}, {"-q 80", 0x30}};  // the last has VP8X and ALPH already
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cwebp);
        Sh(std::string("cwebp -quiet ") + c.cwebp + " " + png + " -o " + path);
        const std::string pixels = Pixels(path), profile = Pattern(6921);
        ASSERT_EQ(Save(path, profile, &options), STATUS_OK);
        ASSERT_EQ(Save(path, profile, &options), STATUS_OK);  // a second save replaces, never adds
        const std::string after = ReadFile(path);
        EXPECT_EQ(after.substr(12, 8), std::string("VP8X\x0a\0\0\0", 8));
        EXPECT_EQ(uint8_t(after[20]), c.flags);
        EXPECT_EQ(after.substr(30, 8), "ICCP" + Le32s(6921));
        EXPECT_TRUE(after.substr(38, 6922) == profile + '\0');
        EXPECT_EQ(Le32(after, 4), after.size() - 8);
        EXPECT_EQ(after.find("ICCP", 38), std::string::npos);
        EXPECT_EQ(ShOut("webpmux -get icc " + path + " -o -"), profile);
        EXPECT_TRUE(Pixels(path) == pixels);
        EXPECT_TRUE(Loaded(path) == profile + '\0');
    }
}

}  // namespace
}  // namespace kt::test
