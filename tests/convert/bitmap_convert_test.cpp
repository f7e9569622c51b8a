// Conversions into and between bitmaps: the bitmap's rows against the same
// pixels converted as buffers, row by row; every status in order.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ktclr/bitmap.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Bytes;
using test::Handle;
using test::MappedPages;
using Access = MappedPages::Access;
constexpr std::uint32_t kSize = KTCLR_SIZEOF_BITMAP_HANDLE;
constexpr int kHeight = 3;

struct Bitmap {
    Bitmap() { Vx_BmpInit(&b, kSize); }
    ~Bitmap() { Vx_BmpFree(&b); }
    Bytes Row(int y, int width) const { return Bytes(b.data + y * b.bytesPerLine, b.data + y * b.bytesPerLine + 3 * width); }
    BitmapHandle b;
};

// Rows of `bits` per pixel, `stride` apart, each converted alone.
Bytes RowByRow(ClrHandle* h, const Bytes& src, int bits, std::size_t stride, int width, int y) {
    Bytes row(src.begin() + y * stride, src.begin() + y * stride + (bits * width + 7) / 8), out(4 * width);
    EXPECT_EQ(Vx_ClrConvert(h, row.data(), out.data(), width, 1, 0, 0), STATUS_OK);
    out.resize(3 * width);
    return out;
}

// Every form against the same pixels converted row by row. Into a bitmap:
// the engine's kernels take the alignments as row padding, ICC rows are
// rounded up to them; either way the rows land on the bitmap's own (padded
// to 4 bytes), and Vx_ClrConvertDirect's paddings likewise. A bitmap: in
// place or into a second, leaving the first as it was.
TEST(BitmapConvert, EachFormHoldsTheConvertedRows) {
    enum Form { handle, direct, inPlace, intoSecond };
    const struct {
        int src, dst, bits;
        std::uint32_t method;
        int srcAlign;
        Form form;
    } cases[] = {
        {CS_HSV, CS_RGB, 24, METHOD_BUILTIN, 1, handle},     {CS_YIQ, CS_BGR, 24, METHOD_BUILTIN, 5, handle},
        {CS_CMYK, CS_BGR, 32, METHOD_BUILTIN, 2, handle},    {CS_YUV422_YUYV, CS_RGB, 16, METHOD_BUILTIN, 3, handle},
        {CS_CMYK, CS_RGB, 32, METHOD_ICC, 4, handle},        {CS_HSV, CS_RGB, 24, METHOD_BUILTIN, 0, direct},
        {CS_YCBCR, CS_BGR, 24, METHOD_BUILTIN, 3, direct},   {CS_RGB444, CS_BGR, 16, METHOD_BUILTIN, 2, direct},
        {CS_RGB, CS_HSV, 24, METHOD_BUILTIN, 0, inPlace},    {CS_RGB, CS_HSV, 24, METHOD_BUILTIN, 0, intoSecond},
        {CS_BGR, CS_YIQ, 24, METHOD_BUILTIN, 0, inPlace},    {CS_BGR, CS_YIQ, 24, METHOD_BUILTIN, 0, intoSecond},
        {CS_RGB, CS_LAB, 24, METHOD_ICC, 0, inPlace},        {CS_RGB, CS_LAB, 24, METHOD_ICC, 0, intoSecond},
    };
    for (const auto& c : cases) {
        Handle h(c.src, c.dst, c.method);
        const bool iccRows = c.method == METHOD_ICC, bitmap = c.form >= inPlace;
        for (int width = c.src == CS_YUV422_YUYV ? 2 : 1; width <= 6; width += c.src == CS_YUV422_YUYV ? 2 : 1) {
            SCOPED_TRACE(testing::Message() << &c - cases << " width " << width);
            const int dstAlign = iccRows ? 4 : (4 - 3 * width % 4) % 4;
            Bitmap from, to;
            ASSERT_EQ(Vx_BmpCreate(&from.b, kSize, width, kHeight, 24, VX_BMP_ORDER_BGR), STATUS_OK);
            ASSERT_EQ(bitmap ? Vx_BmpCreate(&to.b, kSize, width, kHeight, 24, VX_BMP_ORDER_DIB) : STATUS_OK, STATUS_OK);
            const std::size_t stride =
                bitmap ? from.b.bytesPerLine : (c.bits * width + 7) / 8 + (iccRows ? 0 : c.srcAlign);
            Bytes src = test::Random(stride * kHeight + 8, width);
            if (bitmap) std::memcpy(from.b.data, src.data(), stride * kHeight);
            ASSERT_EQ(bitmap ? Vx_ClrConvertBitmap(h.h, &from.b, c.form == inPlace ? nullptr : &to.b)
                      : c.form == direct ? Vx_ClrConvertDirectToBitmap(c.src, c.dst, src.data(), &to.b, kSize, width,
                                                                       kHeight, c.srcAlign, dstAlign)
                                         : Vx_ClrConvertToBitmap(h.h, src.data(), &to.b, kSize, width, kHeight,
                                                                 c.srcAlign, dstAlign),
                      STATUS_OK);
            const Bitmap& out = c.form == inPlace ? from : to;
            ASSERT_TRUE(out.b.width == width && out.b.height == kHeight && out.b.bitsPerPixel == 24);
            EXPECT_EQ(out.b.flags, VX_BMP_HAS_DATA);  // accesses ended
            EXPECT_TRUE(c.form == inPlace || to.b.colorOrder == VX_BMP_ORDER_DIB);
            EXPECT_TRUE(c.form != intoSecond || std::equal(src.begin(), src.end() - 8, from.b.data));
            for (int y = 0; y < kHeight; ++y) EXPECT_EQ(out.Row(y, width), RowByRow(h.h, src, c.bits, stride, width, y));
        }
    }
}

// Both forms' statuses in order, on a 1 x 1 bitmap that a failure before
// the fill leaves as it was. The fill releases the bitmap's pixels first;
// the handle form drops the fill's status, the direct form returns it: rows 3 bytes apart
// are too short for the bitmap's 4-byte rows at width 1, and a wrong record
// size fails the fill too.
TEST(BitmapConvert, ToBitmapStatusesInOrder) {
    Handle hsv(CS_HSV, CS_RGB, METHOD_BUILTIN), cmyk(CS_RGB, CS_CMYK, METHOD_BUILTIN);
    MappedPages pages(1, Access::readWrite), none(1, Access::none);
    auto* unreadable = reinterpret_cast<ClrHandle*>(none.data());
    Bytes src(64), block(KTCLR_SIZEOF_CLR_HANDLE + 64);
    auto* stranger = reinterpret_cast<ClrHandle*>(block.data());
    stranger->structSize = KTCLR_SIZEOF_CLR_HANDLE;
    auto* direct = reinterpret_cast<ClrHandle*>(&block);  // the row is the direct form's
    std::uint8_t* s = src.data();
    const struct {
        ClrHandle* handle;
        int srcSpace, dstSpace;  // the direct form's
        std::uint8_t* src;
        bool bitmap;
        std::uint32_t size;
        int width, srcAlign, dstAlign;
        KtStatus status;
        bool released = false;
    } rows[] = {
        {hsv.h, 0, 0, nullptr, true, kSize, 2, 1, 0, ERR_INVALID_PARAMETER},
        {hsv.h, 0, 0, s, false, kSize, 2, 1, 0, ERR_INVALID_PARAMETER},
        {nullptr, 0, 0, s, true, kSize, 2, 1, 0, ERR_BAD_POINTER}, {unreadable, 0, 0, s, true, kSize, 2, 1, 0, ERR_BAD_POINTER},
        // (6 + 1) x 2 source bytes are probed.
        {hsv.h, 0, 0, pages.end() - 13, true, kSize, 2, 1, 4, ERR_BAD_POINTER},
        {hsv.h, 0, 0, pages.end() - 14, true, kSize, 2, 1, 4, STATUS_OK},
        {stranger, 0, 0, s, true, kSize, 2, 1, 0, ERR_INVALID_COLOR_HANDLE},
        {cmyk.h, 0, 0, s, true, kSize, 2, 1, 0, ERR_BAD_COLOR_SPACE},
        {hsv.h, 0, 0, s, true, kSize, 0, 1, 0, ERR_BAD_SIZE}, {hsv.h, 0, 0, s, true, kSize, 2, -1, 0, ERR_INVALID_PARAMETER},
        {hsv.h, 0, 0, s, true, kSize, 1, 1, 0, STATUS_OK, true}, {hsv.h, 0, 0, s, true, kSize + 8, 1, 1, 1, STATUS_OK, true},
        {direct, CS_HSV, CS_RGB, nullptr, true, kSize, 2, 0, 0, ERR_INVALID_PARAMETER},
        {direct, CS_HSV, CS_RGB, s, false, kSize, 2, 0, 0, ERR_INVALID_PARAMETER},
        // The handle form answers ERR_BAD_COLOR_SPACE for these destinations.
        {direct, CS_HSV, CS_CMYK, s, true, kSize, 2, 0, 0, ERR_INVALID_PARAMETER},
        {direct, CS_RGB, CS_HSV, s, true, kSize, 2, 0, 0, ERR_INVALID_PARAMETER},
        {direct, 16, CS_RGB, s, true, kSize, 2, 0, 0, ERR_BAD_COLOR_SPACE},
        {direct, CS_YUV422_YUYV, CS_RGB, s, true, kSize, 5, 0, 0, ERR_ODD_WIDTH},
        {direct, CS_HSV, CS_BGR, s, true, kSize, 0, 0, 0, ERR_INVALID_PARAMETER},
        {direct, CS_HSV, CS_BGR, s, true, kSize, 4, 0, 0, STATUS_OK},
        {direct, CS_HSV, CS_RGB, s, true, kSize, 1, 0, 0, ERR_BAD_SIZE, true},
        {direct, CS_HSV, CS_RGB, s, true, kSize + 8, 1, 0, 1, ERR_BAD_STRUCT_SIZE, true},
    };
    for (const auto& r : rows) {
        Bitmap bmp;
        ASSERT_EQ(Vx_BmpCreate(&bmp.b, kSize, 1, 1, 24, 0), STATUS_OK);
        const std::uint8_t* held = bmp.b.data;
        BitmapHandle* b = r.bitmap ? &bmp.b : nullptr;
        EXPECT_EQ(r.handle == direct
                      ? Vx_ClrConvertDirectToBitmap(r.srcSpace, r.dstSpace, r.src, b, r.size, r.width, 2, r.srcAlign,
                                                    r.dstAlign)
                      : Vx_ClrConvertToBitmap(r.handle, r.src, b, r.size, r.width, 2, r.srcAlign, r.dstAlign),
                  r.status)
            << &r - rows;
        if (r.released)
            EXPECT_TRUE(bmp.b.flags == 0u && bmp.b.data == nullptr) << &r - rows;
        else
            EXPECT_TRUE(r.status == STATUS_OK || bmp.b.data == held) << "bitmap touched, row " << &r - rows;
    }
}

TEST(BitmapConvert, ConvertBitmapStatusesInOrder) {
    Handle hsv(CS_RGB, CS_HSV, METHOD_BUILTIN);
    MappedPages none(1, Access::none);
    Bitmap a, tall, deep, rgb, dib, gray, gray2, empty;
    const struct {
        Bitmap* b;
        int height, bits, order;
    } made[] = {{&a, 2, 24, VX_BMP_ORDER_BGR},   {&tall, 3, 24, VX_BMP_ORDER_BGR},  {&deep, 2, 32, VX_BMP_ORDER_BGR},
                {&rgb, 2, 24, VX_BMP_ORDER_RGB}, {&dib, 2, 24, VX_BMP_ORDER_DIB},   {&gray, 2, 24, VX_BMP_ORDER_GRAY},
                {&gray2, 2, 24, VX_BMP_ORDER_GRAY}};
    for (const auto& m : made) ASSERT_EQ(Vx_BmpCreate(&m.b->b, kSize, 2, m.height, m.bits, m.order), STATUS_OK);
    const struct {
        ClrHandle* handle;
        BitmapHandle *src, *dst;
        KtStatus status;
    } rows[] = {
        {hsv.h, nullptr, &a.b, ERR_NULL_ARGUMENT},
        {hsv.h, &a.b, reinterpret_cast<BitmapHandle*>(none.data()), ERR_BAD_POINTER},
        {hsv.h, &a.b, &tall.b, ERR_BAD_SIZE}, {hsv.h, &deep.b, nullptr, ERR_BAD_SIZE},
        {hsv.h, &a.b, &deep.b, ERR_BAD_SIZE}, {hsv.h, &a.b, &rgb.b, ERR_INVALID_PARAMETER},
        {hsv.h, &gray.b, &dib.b, ERR_INVALID_PARAMETER}, {hsv.h, &a.b, &dib.b, STATUS_OK},
        {hsv.h, &dib.b, &a.b, STATUS_OK}, {hsv.h, &gray.b, &gray2.b, STATUS_OK},
        {hsv.h, &empty.b, nullptr, ERR_BAD_SIZE},  // an empty record has no 24 bits
        {nullptr, &a.b, nullptr, ERR_NULL_ARGUMENT},        // the first row's conversion
    };
    for (const auto& r : rows) EXPECT_EQ(Vx_ClrConvertBitmap(r.handle, r.src, r.dst), r.status) << &r - rows;
    empty.b.width = empty.b.height = 2, empty.b.bitsPerPixel = 24, empty.b.colorOrder = VX_BMP_ORDER_BGR;
    EXPECT_EQ(Vx_ClrConvertBitmap(hsv.h, &a.b, &empty.b), ERR_INVALID_PARAMETER);  // no pixels to access
    EXPECT_EQ(a.b.flags, VX_BMP_HAS_DATA);  // the source's access was ended
}

// An achromatic HLS pixel with a hue stops the loop at its row.
TEST(BitmapConvert, ConvertBitmapStopsAtTheFirstFailingRow) {
    Handle hls(CS_HLS, CS_RGB, METHOD_BUILTIN);
    Bitmap b;
    ASSERT_EQ(Vx_BmpCreate(&b.b, kSize, 1, 3, 24, VX_BMP_ORDER_BGR), STATUS_OK);
    const std::uint8_t rows[3][3] = {{0, 128, 0}, {10, 100, 0}, {0, 60, 0}};
    for (int y = 0; y < 3; ++y) std::memcpy(b.b.data + y * b.b.bytesPerLine, rows[y], 3);
    EXPECT_EQ(Vx_ClrConvertBitmap(hls.h, &b.b, nullptr), ERR_INVALID_TAG);
    EXPECT_EQ(b.Row(0, 1), (Bytes{128, 128, 128}));
    EXPECT_EQ(b.Row(2, 1), (Bytes{0, 60, 0}));
}

}  // namespace
}  // namespace kt
