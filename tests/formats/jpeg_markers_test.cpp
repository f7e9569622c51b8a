// Marker lists: what Insert puts in, Write puts out and Read takes back.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "formats/jpeg_markers.h"

namespace kt::formats::jpeg {
namespace {

int Collect(uint8_t code, uint32_t length, const uint8_t* data, void* context) {
    auto& seen = *static_cast<std::vector<std::string>*>(context);
    seen.push_back(std::to_string(code) + ":" + std::string(reinterpret_cast<const char*>(data), length));
    return code == 0xE3 ? -5 : 1;
}

TEST(JpegMarkers, InsertWriteReadEnumerate) {
    MarkerList* list = Create(mem::Module::iccsave);
    ASSERT_NE(list, nullptr);
    const uint8_t a[] = {'a', 'b'}, b[] = {'c'}, c[] = {'d', 'e', 'f'};
    EXPECT_EQ(Insert(list, -1, 0xE0, 2, a), STATUS_OK);
    EXPECT_EQ(Insert(list, 0, 0xE1, 1, b), STATUS_OK);
    EXPECT_EQ(Insert(list, 1, 0xE3, 3, c), STATUS_OK);
    EXPECT_EQ(Insert(list, 4, 0xE3, 3, c), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Insert(list, -1, 0xE2, kMaxSegmentData + 1, c), ERR_INVALID_PARAMETER);

    char path[] = "/tmp/ktclr-markers-XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    {
        file::File out;
        ASSERT_TRUE(out.OpenUtf8(path, file::Mode::write));
        const uint8_t soi[] = {0xFF, 0xD8}, scan[] = {0xFF, 0xFF, 0xDA, 0x00, 0x02, 0x12, 0xFF, 0xD9};
        ASSERT_TRUE(out.WriteAll(soi, 2) && Write(list, out) && out.WriteAll(scan, sizeof scan));
    }
    Free(list);

    file::File in;
    ASSERT_TRUE(in.OpenUtf8(path, file::Mode::read));
    ASSERT_EQ(Read(in, mem::Module::iccload, &list), STATUS_OK);
    unlink(path);
    EXPECT_EQ(Count(list), 3u);
    EXPECT_EQ(ScanOffset(list), 2 + 5 + 7 + 6);  // behind the three segments: the fill byte
    std::vector<std::string> seen;
    EXPECT_EQ(Enumerate(list, Collect, &seen), -5);
    EXPECT_EQ(seen, (std::vector<std::string>{"225:c", "227:def"}));
    Free(list);
}

}  // namespace
}  // namespace kt::formats::jpeg
