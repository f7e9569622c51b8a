// Finding a profile reads heads, markers and chunk heads only: on 100 MB
// files whose bulk (a hole, so the disk holds none of it) lies between the
// heads and the profile, the loader reads as many bytes as on 1 MB ones.
#include <fstream>

#include "storage_support.h"

namespace kt::test {
namespace {

// Bytes this thread has passed to read() so far (the kernel's count).
int64_t BytesRead() {
    std::ifstream io("/proc/thread-self/io");
    std::string key;
    int64_t value = 0;
    while (io >> key >> value)
        if (key == "rchar:") return value;
    return -1;
}

// `head` at the start, `tail` at `at`, a hole between.
void WriteSparse(const std::string& path, const Bytes& head, int64_t at, const Bytes& tail) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(head.data()), static_cast<std::streamsize>(head.size()));
    out.seekp(at);
    out.write(reinterpret_cast<const char*>(tail.data()), static_cast<std::streamsize>(tail.size()));
}

TEST(LargeFiles, OnlyHeadsAreRead) {
    ScratchDir dir;
    const Bytes profile = Profile(3000, 7);
    int64_t read[3] = {};  // bytes read for each file of 1 MB
    for (const int big : {0, 1}) {
        const int64_t end = 64 + (int64_t{big ? 100 : 1} << 20);  // where the tails start
        const struct {
            const char* name;
            Bytes head, tail;
        } files[] = {
            // JPEG: the profile before the scan, the scan's data the bulk.
            {"a.jpg", Cat({{0xFF, 0xD8}, IccPiece(1, 1, profile), Segment(0xDA, Counting(10, 1))}), {0xFF, 0xD9}},
            // WebP: a VP8 chunk of the bulk's size, then the profile chunk.
            {"a.webp", Cat({Text("RIFF"), Le32(uint32_t(end + 3000)), Text("WEBPVP8 "), Le32(uint32_t(end - 20))}),
             Chunk("ICCP", profile)},
            // TIFF: the directory and the profile behind the bulk.
            {"a.tif", Cat({Text("II"), Le16(42), Le32(uint32_t(end))}),
             Cat({Le16(1), Le16(34675), Le16(7), Le32(3000), Le32(uint32_t(end + 18)), Le32(0), profile})},
        };
        for (int i = 0; i < 3; ++i) {
            SCOPED_TRACE(std::string(files[i].name) + (big ? " 100 MB" : " 1 MB"));
            const std::string path = dir.File(files[i].name);
            WriteSparse(path, files[i].head, end, files[i].tail);
            const int64_t before = BytesRead();
            const auto loaded = Load(path);
            const int64_t n = BytesRead() - before;
            // The count's own text grows by a few digits from 1 MB to 100 MB.
            EXPECT_LT(n, big ? read[i] + 1024 : 64 * 1024);
            read[i] = n;
            EXPECT_EQ(loaded.status, STATUS_OK);
            EXPECT_EQ(loaded.bytes, profile);
        }
    }
}

}  // namespace
}  // namespace kt::test
