// Helpers of the storage tests: files as byte vectors, the loader and the
// saver called by UTF-8 path, builders of small image files byte by byte for
// the cases no tool writes, and the independent readers' view of a file.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include <zlib.h>

#include "ktclr/storage.h"
#include "storage/png_codec.h"
#include "support/support.h"

namespace kt::test {

using Bytes = std::vector<uint8_t>;

inline void WriteAll(const std::string& path, const Bytes& b) { WriteFile(path, std::string(b.begin(), b.end())); }
inline Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }
inline std::string Str(const Bytes& b) { return std::string(b.begin(), b.end()); }

struct LoadResult {
    KtStatus status;
    Bytes bytes;
};
inline LoadResult Load(const std::string& path) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    const KtStatus status = Vx_LoadICCProfile(Wide(path).c_str(), &record, nullptr);
    LoadResult out{status, {}};
    if (record.profileData) out.bytes.assign(record.profileData, record.profileData + record.profileSize);
    Vx_FreeICCProfile(&record);
    return out;
}

inline Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}
inline Bytes Be16(uint32_t v) { return {uint8_t(v >> 8), uint8_t(v)}; }
inline Bytes Be32(uint32_t v) { return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)}; }
inline Bytes Le16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
inline Bytes Le32(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}; }
// `n` bytes counting up from `seed`.
inline Bytes Counting(std::size_t n, uint8_t seed) {
    Bytes b(n);
    for (std::size_t i = 0; i < n; ++i) b[i] = uint8_t(seed + i);
    return b;
}
// Distinct bytes shaped like a profile: the first four hold the size.
inline Bytes Profile(uint32_t n, unsigned seed) {
    Bytes b(n);
    uint32_t x = seed * 2654435761u + 1;
    for (std::size_t i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        b[i] = i < 4 ? uint8_t(n >> (24 - 8 * i)) : uint8_t(x >> 24);
    }
    return b;
}
inline std::string Pattern(std::size_t n, unsigned seed = 1) { return Str(Profile(uint32_t(n), seed)); }

// JPEG: SOI, the segments, a scan, EOI.
inline Bytes Segment(uint8_t code, const Bytes& body) {
    return Cat({{0xFF, code}, Be16(uint32_t(body.size() + 2)), body});
}
inline Bytes IccPiece(uint8_t sequence, uint8_t count, const Bytes& piece) {
    return Segment(0xE2, Cat({Text("ICC_PROFILE"), {0, sequence, count}, piece}));
}
inline Bytes Jpeg(std::initializer_list<Bytes> segments, const Bytes& afterScan = {}) {
    Bytes out = Cat({{0xFF, 0xD8}, Segment(0xE0, Cat({Text("JFIF"), Counting(10, 0)}))});
    for (const Bytes& s : segments) out = Cat({out, s});
    return Cat({out, Segment(0xDA, Counting(10, 1)), Counting(64, 0x10), afterScan, {0xFF, 0xD9}});
}

// WebP: the RIFF head (its size field given or computed) and chunks.
inline Bytes Chunk(const char* id, const Bytes& body) {
    Bytes out = Cat({Text(id), Le32(uint32_t(body.size())), body});
    if (body.size() & 1) out.push_back(0);
    return out;
}
inline Bytes Webp(std::initializer_list<Bytes> chunks, int64_t riffSize = -1) {
    Bytes body = Text("WEBP");
    for (const Bytes& c : chunks) body = Cat({body, c});
    return Cat({Text("RIFF"), Le32(uint32_t(riffSize < 0 ? body.size() : riffSize)), body});
}

// Photoshop: header, colour-mode data (its bytes left out when the size is
// 4,096 or more), image resources, empty layer section.
inline Bytes Resource(const char* signature, uint16_t id, const Bytes& data) {
    Bytes out = Cat({Text(signature), Be16(id), {0, 0}, Be32(uint32_t(data.size())), data});
    if (data.size() & 1) out.push_back(0);
    return out;
}
inline Bytes Psd(std::initializer_list<Bytes> resources, uint32_t colourModeBytes = 0, int64_t sectionSize = -1) {
    Bytes section;
    for (const Bytes& r : resources) section = Cat({section, r});
    return Cat({Text("8BPS"), {0, 1}, Counting(6, 0), {0, 3}, Be32(2), Be32(2), {0, 8}, {0, 3}, Be32(colourModeBytes),
                Counting(colourModeBytes < 4096 ? colourModeBytes : 0, 0), Be32(uint32_t(sectionSize < 0 ? section.size() : sectionSize)), section,
                Be32(0)});
}

// PNG: a 1x1 grey image with an iCCP chunk of the given body (none when
// empty) before its image data.
inline Bytes Deflate(const Bytes& b) {
    uLongf n = compressBound(b.size());
    Bytes out(n);
    compress(out.data(), &n, b.data(), b.size());
    out.resize(n);
    return out;
}
inline Bytes PngChunk(const char* type, const Bytes& data) {
    const Bytes typed = Cat({Text(type), data});
    return Cat({Be32(uint32_t(data.size())), typed, Be32(uint32_t(crc32(0, typed.data(), uInt(typed.size()))))});
}
inline Bytes Png(const Bytes& iccp) {
    return Cat({{0x89}, Text("PNG\r\n\x1a\n"), PngChunk("IHDR", Cat({Be32(1), Be32(1), {8, 0, 0, 0, 0}})),
                iccp.empty() ? Bytes{} : PngChunk("iCCP", iccp), PngChunk("IDAT", Deflate({0, 0})), PngChunk("IEND", {})});
}

// Classic little-endian TIFF whose first directory holds one tag 34675 entry
// of type 7: its count and its value field as given (offset or inline bytes).
inline Bytes Tiff(uint32_t count, const Bytes& valueField, const Bytes& tail = {}, uint32_t ifd = 8) {
    return Cat({Text("II"), Le16(42), Le32(ifd), Le16(1), Le16(34675), Le16(7), Le32(count), valueField, Le32(0), tail});
}

// A test with the PNG codec module of the build tree (the test binary is not
// beside the module folder).
class WithPngCodec : public ::testing::Test {
protected:
    void SetUp() override { storage::testing::ResetPngCodec(KTCLR_TEST_MODULE_DIR); }
    void TearDown() override { storage::testing::ResetPngCodec(nullptr); }
    ScratchDir dir_;
};

// The built-in profiles' folder in the source tree.
inline const std::string kBuiltinDir = std::string(KTCLR_TEST_SOURCE_DIR) + "/data/builtin/";
inline const std::string kSrgb = "/usr/share/color/icc/sRGB.icc";

// A profile file of Debian's colour packages.
inline std::string RealProfile(const char* name) {
    std::string bytes = ReadFile(std::string("/usr/share/color/icc/") + name);
    EXPECT_FALSE(bytes.empty()) << name << " missing (scripts/install-deps.sh --tests)";
    return bytes;
}

// Runs a shell command and expects success (quietly), or its output.
inline void Sh(const std::string& command) { ASSERT_EQ(Run(command + " >/dev/null 2>&1"), 0) << command; }
inline std::string ShOut(const std::string& command) {
    std::string out;
    EXPECT_EQ(Run(command, &out), 0) << command;
    return out;
}

inline KtStatus Save(const std::string& path, const std::string& profile, const Vx_SaveFileOptions* options = nullptr) {
    const ICCProfileRecord record{KTCLR_SIZEOF_ICC_PROFILE_RECORD, static_cast<uint32_t>(profile.size()), 0, nullptr, 0,
                                  nullptr, nullptr, reinterpret_cast<uint8_t*>(const_cast<char*>(profile.data()))};
    return Vx_SaveICCProfile(Wide(path).c_str(), &record, options);
}
// Vx_LoadICCProfile's bytes ("" when it finds none) and exiftool's (every
// page's, the first page's first).
inline std::string Loaded(const std::string& path) { return Str(Load(path).bytes); }
inline std::string Exiftool(const std::string& path) { return ShOut("exiftool -a -icc_profile -b '" + path + "'"); }
// The pixels as the format's own library decodes them (PPM/PAM text).
inline std::string Pixels(const std::string& path) {
    const std::string ext = path.substr(path.rfind('.') + 1), q = "'" + path + "'";
    if (ext == "jpg") return ShOut("djpeg -pnm " + q);
    if (ext == "webp") return ShOut("dwebp -quiet -pam -o - " + q);
    return ShOut("convert " + q + " -strip ppm:-");  // ImageMagick: its own GIF reader, libtiff for TIFF
}

}  // namespace kt::test
