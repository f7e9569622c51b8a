// Vx_ClrConvertDirect: every check in order, the equal-space copy and its
// row walk, the two-step path and its two kept quirks.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "colormodels/kernels.h"
#include "ktclr/convert.h"
#include "support/alloc_failures.h"
#include "support/mapped_memory.h"

namespace kt {
namespace {

using test::MappedPages;
using Access = MappedPages::Access;
using Bytes = std::vector<std::uint8_t>;

Bytes Random(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    Bytes b(n);
    for (auto& v : b) v = static_cast<std::uint8_t>(rng());
    return b;
}

TEST(ConvertDirect, ChecksInOrder) {
    std::uint8_t a[256] = {}, b[256] = {};
    EXPECT_EQ(Vx_ClrConvertDirect(16, CS_RGB, nullptr, b, 1, 1, 0, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvertDirect(16, CS_RGB, a, nullptr, 1, 1, 0, 0), ERR_INVALID_PARAMETER);
    // The source layout first: its space, then the sizes, then the groups.
    EXPECT_EQ(Vx_ClrConvertDirect(16, 129, a, b, 0, 0, 0, 0), ERR_BAD_COLOR_SPACE);
    EXPECT_EQ(Vx_ClrConvertDirect(-1, CS_RGB, a, b, 1, 1, 0, 0), ERR_BAD_COLOR_SPACE);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, 145, a, b, 0, 1, 0, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, 145, a, b, 1, 0, 0, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, 145, a, b, 1, 1, 0, 0), ERR_BAD_COLOR_SPACE);
    // Groups are checked before any probe: unreadable buffers do not matter.
    MappedPages none(1, Access::none);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV422_YUYV, CS_RGB, none.data(), b, 5, 1, 0, 0), ERR_ODD_WIDTH);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV422_UYVY, CS_RGB, none.data(), b, 3, 1, 0, 0), ERR_ODD_WIDTH);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_YUV411_PACKED, a, none.data(), 12, 1, 0, 0), ERR_ODD_WIDTH);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, none.data(), b, 4, 6, 0, 0), ERR_BAD_PLANAR_SIZE);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_YUV410_PLANAR, a, none.data(), 6, 4, 0, 0), ERR_BAD_PLANAR_SIZE);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, none.data(), b, 4, 4, 0, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV422_YUYV, CS_RGB, a, b, 4, 1, 0, 0), STATUS_OK);

    // Probes: (row + padding) x height on each side; a padding below 1 is 0.
    MappedPages pages(1, Access::readWrite);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, pages.end() - 2 * 7, b, 2, 2, 1, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, pages.end() - 2 * 7 + 1, b, 2, 2, 1, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, pages.end() - 12, b, 2, 2, -5, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, pages.end() - 16, 2, 2, 0, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, pages.end() - 15, 2, 2, 0, 0), ERR_BAD_POINTER);
    EXPECT_NE(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, pages.end() - 20, b, 4, 4, 0, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, pages.end() - 19, b, 4, 4, 0, 0), ERR_BAD_POINTER);
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, pages.end() - 16, 2, 2, 0, 0), ERR_BAD_POINTER);

    // In place: equal paddings are refused, different ones copy.
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_HSV, a, a, 2, 2, 4, 4), ERR_SAME_BUFFER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_HSV, a, a, 2, 2, 0, 1), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, a, a, 2, 2, 4, 4), STATUS_OK);
}

TEST(ConvertDirect, EqualSpacesCopy) {
    const Bytes src = Random(64, 1);
    Bytes dst(128, 0xEE);
    // Paddings below 2: one block of (bits x width) / 8 x height bytes.
    ASSERT_EQ(Vx_ClrConvertDirect(CS_YUV411_PACKED, CS_YUV411_PACKED, const_cast<std::uint8_t*>(src.data()),
                                  dst.data(), 8, 3, 1, 0),
              STATUS_OK);
    EXPECT_EQ(std::memcmp(dst.data(), src.data(), 36), 0);
    EXPECT_EQ(dst[36], 0xEE);
    // Paddings 0 and 4: the first source row lands at 0, 4, 8, each copy
    // overwriting most of the one before.
    std::fill(dst.begin(), dst.end(), 0xEE);
    ASSERT_EQ(
        Vx_ClrConvertDirect(CS_RGB, CS_RGB, const_cast<std::uint8_t*>(src.data()), dst.data(), 3, 3, 0, 4),
        STATUS_OK);
    EXPECT_EQ(std::memcmp(dst.data(), src.data(), 4), 0);
    EXPECT_EQ(std::memcmp(dst.data() + 4, src.data(), 4), 0);
    EXPECT_EQ(std::memcmp(dst.data() + 8, src.data(), 9), 0);
    EXPECT_EQ(dst[17], 0xEE);
    // Paddings 6 and 2: the source steps by 6, the destination by 2.
    std::fill(dst.begin(), dst.end(), 0xEE);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_CMY, CS_CMY, const_cast<std::uint8_t*>(src.data()), dst.data(), 1, 3, 6, 2),
              STATUS_OK);
    EXPECT_EQ(dst[0], src[0]);
    EXPECT_EQ(dst[2], src[6]);
    EXPECT_EQ(std::memcmp(dst.data() + 4, src.data() + 12, 3), 0);
    EXPECT_EQ(dst[7], 0xEE);
}

TEST(ConvertDirect, TwoStepsThroughRgb) {
    constexpr int kWidth = 16, kHeight = 4;
    const Bytes hsv = Random(3 * kWidth * kHeight, 2);
    Bytes rgb(hsv.size()), want(4 * kWidth * kHeight), got(4 * kWidth * kHeight + 8, 0xEE);
    ASSERT_EQ(color::HsvToRgb(hsv.data(), rgb.data(), kWidth, kHeight, 0, 0, 175, 1), STATUS_OK);
    ASSERT_EQ(color::RgbToCmyk(rgb.data(), want.data(), kWidth, kHeight, 0, 0, 175, 1), STATUS_OK);
    // Padded source and destination; the temporary is packed.
    Bytes padded(hsv.size() + 2 * kHeight);
    for (int y = 0; y < kHeight; ++y) std::memcpy(&padded[(3 * kWidth + 2) * y], &hsv[3 * kWidth * y], 3 * kWidth);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_CMYK, padded.data(), got.data(), kWidth, kHeight, 2, 2), STATUS_OK);
    for (int y = 0; y < kHeight; ++y)
        EXPECT_EQ(std::memcmp(&got[(4 * kWidth + 2) * y], &want[4 * kWidth * y], 4 * kWidth), 0) << y;

    // A YCCK destination: the YCCK routine with the global tables.
    Bytes ycck(4 * kWidth * kHeight);
    ASSERT_EQ(color::RgbToYcck(rgb.data(), want.data(), kWidth, kHeight, 0, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_YCCK, const_cast<std::uint8_t*>(hsv.data()), ycck.data(), kWidth,
                                  kHeight, 0, 0),
              STATUS_OK);
    EXPECT_EQ(ycck, want);

    // A 4-bit RGB destination is left as it was, with success.
    Bytes untouched(2 * kWidth * kHeight, 0x5A);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_RGB444, const_cast<std::uint8_t*>(hsv.data()), untouched.data(),
                                  kWidth, kHeight, 0, 0),
              STATUS_OK);
    EXPECT_EQ(untouched, Bytes(2 * kWidth * kHeight, 0x5A));
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV422_YUYV, CS_RGB444, const_cast<std::uint8_t*>(hsv.data()),
                                  untouched.data(), kWidth, kHeight, 0, 0),
              STATUS_OK);
    EXPECT_EQ(untouched, Bytes(2 * kWidth * kHeight, 0x5A));

    // The first kernel's failure is returned.
    const std::uint8_t badHls[3] = {3, 50, 0};
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HLS, CS_XYZ, const_cast<std::uint8_t*>(badHls), got.data(), 1, 1, 0, 0),
              ERR_INVALID_TAG);

    // The temporary cannot be had: ERR_ALLOC, nothing left behind.
    const int allocations = test::ForEachAllocationFailure(
        [&] {
            return Vx_ClrConvertDirect(CS_HSV, CS_CMYK, const_cast<std::uint8_t*>(hsv.data()), got.data(), kWidth,
                                       kHeight, 0, 0);
        },
        [](int, int status) { EXPECT_EQ(status, ERR_ALLOC); });
    EXPECT_EQ(allocations, 1);
}

}  // namespace
}  // namespace kt
