// The kernel contract: probes over the exact extent, heights below 1,
// widths that break a pixel group, paddings left untouched; and the
// color-space table.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/space_table.h"
#include "ktclr/colorspace.h"
#include "support/support.h"

namespace kt {
namespace {

using color::Kernel;
using test::MappedPages;
using Access = MappedPages::Access;

struct KernelCase {
    const char* name;
    Kernel kernel;
    int srcBits, dstBits;
    int group;    // width multiple
    bool planar;  // width and height multiples of 4
};

const KernelCase kKernels[] = {
    {"RgbToRgbCopy", color::RgbToRgbCopy, 24, 24, 1, false}, {"RgbToCmy", color::RgbToCmy, 24, 24, 1, false},
    {"CmyToRgb", color::CmyToRgb, 24, 24, 1, false},         {"RgbToCmyk", color::RgbToCmyk, 24, 32, 1, false},
    {"CmykToRgb", color::CmykToRgb, 32, 24, 1, false},       {"RgbToHsv", color::RgbToHsv, 24, 24, 1, false},
    {"HsvToRgb", color::HsvToRgb, 24, 24, 1, false},         {"RgbToHls", color::RgbToHls, 24, 24, 1, false},
    {"HlsToRgb", color::HlsToRgb, 24, 24, 1, false},         {"RgbToHsi", color::RgbToHsi, 24, 24, 1, false},
    {"HsiToRgb", color::HsiToRgb, 24, 24, 1, false},         {"RgbToYuv", color::RgbToYuv, 24, 24, 1, false},
    {"YuvToRgb", color::YuvToRgb, 24, 24, 1, false},         {"RgbToYiq", color::RgbToYiq, 24, 24, 1, false},
    {"YiqToRgb", color::YiqToRgb, 24, 24, 1, false},         {"RgbToYcbcr", color::RgbToYcbcr, 24, 24, 1, false},
    {"YcbcrToRgb", color::YcbcrToRgb, 24, 24, 1, false},     {"RgbToRgb444", color::RgbToRgb444, 24, 16, 1, false},
    {"Rgb444ToRgb", color::Rgb444ToRgb, 16, 24, 1, false},   {"RgbToYuyv", color::RgbToYuyv, 24, 16, 2, false},
    {"YuyvToRgb", color::YuyvToRgb, 16, 24, 2, false},       {"RgbToUyvy", color::RgbToUyvy, 24, 16, 2, false},
    {"UyvyToRgb", color::UyvyToRgb, 16, 24, 2, false},       {"RgbToYuv411", color::RgbToYuv411, 24, 12, 8, false},
    {"Yuv411ToRgb", color::Yuv411ToRgb, 12, 24, 8, false},   {"RgbToYuv410", color::RgbToYuv410, 24, 9, 4, true},
    {"Yuv410ToRgb", color::Yuv410ToRgb, 9, 24, 4, true},
};

std::size_t Extent(int bits, int width, int height, int pad) {
    return static_cast<std::size_t>((bits * width + 7) / 8 + (pad < 1 ? 0 : pad)) * height;
}

// Source and destination ending exactly at an unmapped guard: the exact
// extent passes; one byte more on either side is refused with -13, as is a
// read-only destination. A padding below 1 counts as none.
TEST(RgbFamilyContract, ProbesCoverTheExactExtent) {
    const int width = 8, height = 4;
    for (const KernelCase& k : kKernels) {
        SCOPED_TRACE(k.name);
        for (int pad : {-3, 0, 5}) {
            const std::size_t se = Extent(k.srcBits, width, height, pad), de = Extent(k.dstBits, width, height, pad);
            MappedPages src(1, Access::readWrite), dst(1, Access::readWrite);
            std::memset(src.data(), 0, src.size());  // valid everywhere (HLS: S = 0 with H = 0)
            const std::uint8_t* s = src.end() - se;
            std::uint8_t* d = dst.end() - de;
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), STATUS_OK);
            EXPECT_EQ(k.kernel(s - 1, d - 1, width, height, pad, pad, 175, 1), STATUS_OK);
            EXPECT_EQ(k.kernel(s + 1, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            EXPECT_EQ(k.kernel(s, d + 1, width, height, pad, pad, 175, 0), ERR_INVALID_PARAMETER);
            src.Protect(0, Access::none);
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            src.Protect(0, Access::read);
            dst.Protect(0, Access::read);
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            EXPECT_EQ(k.kernel(nullptr, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
        }
    }
}

// Heights below 1 succeed at once, even without buffers; widths that break
// a group are refused after the probes.
TEST(RgbFamilyContract, SizesAndGroups) {
    std::vector<std::uint8_t> src(4096, 0), dst(4096, 0x5A);
    for (const KernelCase& k : kKernels) {
        SCOPED_TRACE(k.name);
        EXPECT_EQ(k.kernel(nullptr, nullptr, 8, 0, 0, 0, 175, 1), STATUS_OK);
        EXPECT_EQ(k.kernel(src.data(), dst.data(), 8, -4, 0, 0, 175, 1), STATUS_OK);
        EXPECT_EQ(k.kernel(src.data(), dst.data(), 0, 4, 0, 0, 175, 1), STATUS_OK);
        for (int w = 1; w <= 24; ++w) {
            const KtStatus want = w % k.group == 0 ? STATUS_OK : (k.planar ? ERR_BAD_PLANAR_SIZE : ERR_ODD_WIDTH);
            EXPECT_EQ(k.kernel(src.data(), dst.data(), w, 4, 0, 0, 175, 1), want) << w;
        }
        if (k.planar) {
            for (int h : {1, 2, 3, 5, 6}) EXPECT_EQ(k.kernel(src.data(), dst.data(), 8, h, 0, 0, 175, 1), ERR_BAD_PLANAR_SIZE);
        }
        // A failed group check writes nothing.
        std::vector<std::uint8_t> fresh(4096, 0x5A);
        if (k.group > 1) {
            ASSERT_NE(k.kernel(src.data(), fresh.data(), k.group + 1, 4, 0, 0, 175, 1), STATUS_OK);
            EXPECT_TRUE(fresh == std::vector<std::uint8_t>(4096, 0x5A));
        }
    }
}

// Padding bytes after each destination row stay as they were, and nothing
// is written past the last row's data.
TEST(RgbFamilyContract, PaddingUntouched) {
    const int width = 16, height = 4, pad = 7;
    for (const KernelCase& k : kKernels) {
        if (k.planar) continue;  // the planes carry no padding
        SCOPED_TRACE(k.name);
        std::vector<std::uint8_t> src(Extent(k.srcBits, width, height, pad), 0);
        const std::size_t row = (k.dstBits * width + 7) / 8;
        std::vector<std::uint8_t> dst(Extent(k.dstBits, width, height, pad) + 16, 0xC3);
        ASSERT_EQ(k.kernel(src.data(), dst.data(), width, height, pad, pad, 175, 1), STATUS_OK);
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < pad; ++i) EXPECT_EQ(dst[y * (row + pad) + row + i], 0xC3) << y;
        for (std::size_t i = height * (row + pad); i < dst.size(); ++i) EXPECT_EQ(dst[i], 0xC3);
    }
}

TEST(RgbFamilyContract, SpaceTable) {
    struct Row { int id, bits; };
    const Row rows[] = {{CS_RGB, 24}, {CS_YUV, 24}, {CS_CMYK, 32}, {CS_HSV, 24}, {CS_HLS, 24}, {CS_YIQ, 24},
                        {CS_CMY, 24}, {CS_LAB, 24}, {CS_XYZ, 24}, {CS_YUV422_YUYV, 16}, {CS_YUV410_PLANAR, 9},
                        {CS_YCCK, 32}, {CS_BGR, 24}, {CS_YUV411_PACKED, 12}, {CS_YUV422_UYVY, 16},
                        {CS_YCBCR, 24}, {CS_HSI, 24}, {CS_RGB444, 16}};
    int known = 0;
    for (int id = -300; id <= 1000; ++id) {
        const color::SpaceInfo* s = color::FindSpace(id);
        int bits = ERR_BAD_COLOR_SPACE;
        for (const Row& r : rows)
            if (r.id == id) bits = r.bits;
        EXPECT_EQ(color::BitsPerPixel(id), bits) << id;
        EXPECT_EQ(s != nullptr, bits != ERR_BAD_COLOR_SPACE) << id;
        if (s == nullptr) continue;
        ++known;
        EXPECT_EQ(s->id, id);
        EXPECT_EQ(s->bitsPerPixel, bits);
        // Every space has both kernels except YCCK, which the handle converts.
        EXPECT_EQ(s->fromRgb == nullptr, id == CS_YCCK) << id;
        EXPECT_EQ(s->toRgb == nullptr, id == CS_YCCK) << id;
    }
    EXPECT_EQ(known, 18);
    EXPECT_EQ(color::BitsPerPixel(static_cast<int>(0x80000000u)), ERR_BAD_COLOR_SPACE);
    EXPECT_EQ(color::FindSpace(CS_RGB)->fromRgb, color::RgbToRgbCopy);
    EXPECT_EQ(color::FindSpace(CS_BGR)->toRgb, color::RgbToRgbCopy);
    EXPECT_EQ(color::FindSpace(CS_LAB)->fromRgb, color::RgbToLab);
    EXPECT_EQ(color::FindSpace(CS_XYZ)->toRgb, color::XyzToRgb);
    EXPECT_EQ(color::FindSpace(CS_HSI)->toRgb, color::HsiToRgb);
    EXPECT_EQ(color::FindSpace(CS_RGB444)->fromRgb, color::RgbToRgb444);
}

// Pixels of equal size convert in place.
TEST(RgbFamilyContract, InPlace) {
    std::vector<std::uint8_t> px(3 * 64 * 3), copy(px.size()), out(px.size());
    for (std::size_t i = 0; i < px.size(); ++i) px[i] = static_cast<std::uint8_t>(i * 37 + 11);
    for (const KernelCase& k : kKernels) {
        if (k.srcBits != 24 || k.dstBits != 24 || k.kernel == color::HlsToRgb) continue;
        SCOPED_TRACE(k.name);
        copy = px;
        ASSERT_EQ(k.kernel(px.data(), out.data(), 64, 3, 0, 0, 175, 0), STATUS_OK);
        ASSERT_EQ(k.kernel(copy.data(), copy.data(), 64, 3, 0, 0, 175, 0), STATUS_OK);
        EXPECT_TRUE(copy == out);
    }
}

// A few pixels worth remembering.
TEST(RgbFamilyContract, NotablePixels) {
    std::uint8_t out[6];
    const std::uint8_t blue[3] = {0, 0, 255};
    ASSERT_EQ(color::RgbToYcbcr(blue, out, 1, 1, 0, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(out[1], 127);  // Cb clamped, not 255
    const std::uint8_t hsv255[3] = {255, 200, 100}, hsv0[3] = {0, 200, 100};
    std::uint8_t a[3], b[3];
    ASSERT_EQ(color::HsvToRgb(hsv255, a, 1, 1, 0, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(color::HsvToRgb(hsv0, b, 1, 1, 0, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(a, b, 3));  // H = 255 wraps to 0 degrees
    const std::uint8_t gray[3] = {0, 90, 0}, hued[3] = {1, 90, 0};
    ASSERT_EQ(color::HlsToRgb(gray, out, 1, 1, 0, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(out[0], 90);
    EXPECT_EQ(color::HlsToRgb(hued, out, 1, 1, 0, 0, 0, 1), ERR_INVALID_TAG);
    const std::uint8_t rgb[6] = {1, 2, 3, 4, 5, 6};
    std::uint8_t yuyv[4];
    EXPECT_EQ(color::RgbToYuyv(rgb, yuyv, 2, 1, 0, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(color::RgbToYuyv(rgb, yuyv, 3, 1, 0, 0, 0, 1), ERR_ODD_WIDTH);
}

}  // namespace
}  // namespace kt
