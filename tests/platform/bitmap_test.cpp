// Bitmap records: creation, filling from a device-independent bitmap, row
// access and release, and the bounds each checks (guard pages for buffers).
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ktclr/bitmap.h"
#include "support/support.h"

namespace kt {
namespace {

using test::MappedPages;
using Access = MappedPages::Access;
using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kSize = KTCLR_SIZEOF_BITMAP_HANDLE;

Vx_BmpInfoHeader Header(int width, int height, int bits = 24, std::uint32_t imageSize = 0) {
    Vx_BmpInfoHeader h{};
    h.size = KTCLR_SIZEOF_BMP_INFO_HEADER;
    h.width = width;
    h.height = height;
    h.planes = 1;
    h.bitsPerPixel = static_cast<std::uint16_t>(bits);
    h.imageSize = imageSize;
    return h;
}
Vx_BmpInfoHeader With(void (*change)(Vx_BmpInfoHeader&)) {
    Vx_BmpInfoHeader h = Header(2, 2);
    change(h);
    return h;
}

// Two rows of two 24-bit pixels, 8 bytes apart, come top first whichever
// way the height runs; every status in its order, a source ending at a
// guard page included.
TEST(Bitmap, FillFromDib) {
    const std::uint8_t bits[16] = {1, 2, 3, 4, 5, 6, 0xEE, 0xEE, 7, 8, 9, 10, 11, 12, 0xEE, 0xEE};
    const Bytes top = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
    const Bytes bottom = {7, 8, 9, 10, 11, 12, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0};
    BitmapHandle b;
    Vx_BmpInit(&b, kSize);
    MappedPages pages(1, Access::readWrite);
    const struct {
        Vx_BmpInfoHeader header;
        const std::uint8_t* bits;
        KtStatus status;
        Bytes pixels = {};  // the filled bitmap's rows, when given
    } rows[] = {
        {Header(2, -2), bits, STATUS_OK, top},          {Header(2, 2), bits, STATUS_OK, bottom},
        {Header(2, 2), nullptr, ERR_INVALID_PARAMETER},
        {With([](auto& h) { h.size = 39; }), bits, ERR_BAD_STRUCT_SIZE},
        {With([](auto& h) { h.planes = 2; }), bits, ERR_INVALID_PARAMETER},
        {With([](auto& h) { h.compression = 1; }), bits, ERR_INVALID_PARAMETER},
        {With([](auto& h) { h.colorsUsed = 1; }), bits, ERR_INVALID_PARAMETER},
        {Header(2, 2, 8), bits, ERR_INVALID_PARAMETER},
        {Header(0, 2), bits, ERR_BAD_SIZE},            {Header(2, 0), bits, ERR_BAD_SIZE},
        // Rows 8 bytes apart, the last without its padding: 14 bytes.
        {Header(2, 2, 24, 13), bits, ERR_BAD_SIZE},    {Header(2, 2, 24, 14), bits, STATUS_OK},
        {Header(2, 2), pages.end() - 14, STATUS_OK}, {Header(2, 2), pages.end() - 13, ERR_BAD_POINTER},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(Vx_BmpFillFromDib(&b, kSize, &r.header, r.bits), r.status) << &r - rows;
        EXPECT_TRUE(r.pixels.empty() || (b.height == 2 && b.bytesPerLine == 8 && b.colorOrder == VX_BMP_ORDER_DIB &&
                                         Bytes(b.data, b.data + 16) == r.pixels));
        Vx_BmpFree(&b);
    }
    const Vx_BmpInfoHeader h = Header(2, 2);
    EXPECT_EQ(Vx_BmpFillFromDib(&b, kSize - 1, &h, bits), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(Vx_BmpFillFromDib(&b, kSize, reinterpret_cast<const Vx_BmpInfoHeader*>(pages.end() - 39), bits),
              ERR_BAD_POINTER);
}

// A created bitmap's rows are padded to four bytes and zeroed; rows move
// only inside an access, clamped to a row, never past a buffer's guard page.
TEST(Bitmap, CreateAndRows) {
    BitmapHandle b;
    EXPECT_EQ(Vx_BmpCreate(&b, kSize, 0x7fffffff, 1, 32, 0), ERR_BAD_SIZE);  // a row beyond 2^31 bytes
    EXPECT_EQ(Vx_BmpCreate(&b, kSize, 1, 1, 12, 0), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_BmpCreate(&b, kSize, 3, 3, 16, VX_BMP_ORDER_BGR), STATUS_OK);
    EXPECT_TRUE(b.bytesPerLine == 8 && b.flags == VX_BMP_HAS_DATA && Bytes(b.data, b.data + 24) == Bytes(24, 0));
    Vx_BmpFree(&b);
    ASSERT_EQ(Vx_BmpCreate(&b, kSize, 2, 3, 24, VX_BMP_ORDER_BGR), STATUS_OK);
    std::uint8_t row[16] = {9, 8, 7, 6, 5, 4, 3, 2}, out[16] = {};
    EXPECT_EQ(Vx_BmpGetRow(&b, out, 0, 8), ERR_INVALID_PARAMETER);  // not in access
    ASSERT_EQ(Vx_BmpAccessBegin(&b), STATUS_OK);
    EXPECT_EQ(Vx_BmpPutRow(&b, row, 2, 100), 8);
    EXPECT_EQ(Vx_BmpGetRow(&b, out, 2, 3), 3);
    EXPECT_EQ(std::memcmp(out, row, 3), 0);
    MappedPages ro(1, Access::read);
    const struct {
        int row;
        std::uint32_t bytes;
        std::uint8_t* buffer;
        KtStatus get, put;
    } cases[] = {
        {-1, 8, out, ERR_INVALID_PARAMETER, ERR_INVALID_PARAMETER},
        {3, 8, out, ERR_INVALID_PARAMETER, ERR_INVALID_PARAMETER},
        {0, 0, out, ERR_INVALID_PARAMETER, ERR_INVALID_PARAMETER},
        {0, 8, ro.end() - 7, ERR_BAD_POINTER, ERR_BAD_POINTER},
        {0, 8, ro.end() - 8, ERR_BAD_POINTER, 8},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Vx_BmpGetRow(&b, c.buffer, c.row, c.bytes), c.get) << c.row << " " << c.bytes;
        EXPECT_EQ(Vx_BmpPutRow(&b, c.buffer, c.row, c.bytes), c.put) << c.row << " " << c.bytes;
    }
    EXPECT_EQ(Vx_BmpAccessEnd(&b), STATUS_OK);
    b.bytesPerLine = 5;  // shorter than a row: no longer describes the pixels
    EXPECT_EQ(Vx_BmpAccessBegin(&b), ERR_INVALID_PARAMETER);
    b.bytesPerLine = 8;
    Vx_BmpFree(&b);
    EXPECT_TRUE(b.data == nullptr && b.flags == 0u && Vx_BmpAccessBegin(&b) == ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_BmpFree(&b), STATUS_OK);  // an empty bitmap frees nothing
}

}  // namespace
}  // namespace kt
