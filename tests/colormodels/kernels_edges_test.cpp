// What the case table does not reach: the kernel contract (probes over the
// exact extent, sizes and groups), HLS's refusal of a hue without
// saturation and planar 4:1:0.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "colormodels/kernel_cases.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Case;
using test::kCases;
using test::Px3;
using test::Bytes;
using test::Random;
using Edges = test::AtEveryLevel;

std::size_t Extent(int bytes, int group, int width, int height, int pad) {
    return static_cast<std::size_t>(bytes * width / group + (pad < 1 ? 0 : pad)) * height;
}

// Source and destination ending exactly at an unmapped guard: the exact
// extent passes; one byte more on either side is refused with -13, as is a
// read-only destination. A padding below 1 counts as none.
TEST_P(Edges, ProbesCoverTheExactExtent) {
    const int width = 8, height = 4;
    for (const Case& k : kCases) {
        SCOPED_TRACE(k.name);
        for (int pad : {-3, 0, 5}) {
            const std::size_t se = Extent(k.srcBytes, k.group, width, height, pad);
            const std::size_t de = Extent(k.dstBytes, k.group, width, height, pad);
            test::MappedPages src(1, test::MappedPages::Access::readWrite), dst(1, test::MappedPages::Access::readWrite);
            std::memset(src.data(), 0, src.size());  // valid everywhere (HLS: S = 0 with H = 0)
            const std::uint8_t* s = src.end() - se;
            std::uint8_t* d = dst.end() - de;
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), STATUS_OK);
            EXPECT_EQ(k.kernel(s - 1, d - 1, width, height, pad, pad, 175, 1), STATUS_OK);
            EXPECT_EQ(k.kernel(s + 1, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            EXPECT_EQ(k.kernel(s, d + 1, width, height, pad, pad, 175, 0), ERR_INVALID_PARAMETER);
            src.Protect(0, test::MappedPages::Access::none);
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            src.Protect(0, test::MappedPages::Access::read);
            dst.Protect(0, test::MappedPages::Access::read);
            EXPECT_EQ(k.kernel(s, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
            EXPECT_EQ(k.kernel(nullptr, d, width, height, pad, pad, 175, 1), ERR_INVALID_PARAMETER);
        }
    }
    // A grid lookup without a grid is refused too.
    std::uint8_t px[3] = {1, 2, 3};
    EXPECT_EQ(color::EmulateLabToRgb(nullptr, px, px, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
}

// Heights below 1 succeed at once, even without buffers; widths that break
// a group (4:2:2 pairs, 4:1:1 octets, 4:1:0 blocks) are refused after the
// probes, and nothing is written.
TEST_P(Edges, SizesAndGroups) {
    struct Sized {
        color::Kernel kernel;
        int group;
        KtStatus broken;
    };
    std::vector<Sized> all;
    for (const Case& k : kCases) all.push_back({k.kernel, k.group, ERR_ODD_WIDTH});
    all.push_back({color::RgbToYuv410, 4, ERR_BAD_PLANAR_SIZE});
    all.push_back({color::Yuv410ToRgb, 4, ERR_BAD_PLANAR_SIZE});
    Bytes src(4096, 0);
    for (const Sized& k : all) {
        EXPECT_EQ(k.kernel(nullptr, nullptr, 8, 0, 0, 0, 175, 1), STATUS_OK);
        EXPECT_EQ(k.kernel(src.data(), Bytes(4096).data(), 8, -4, 0, 0, 175, 1), STATUS_OK);
        EXPECT_EQ(k.kernel(src.data(), Bytes(4096).data(), 0, 4, 0, 0, 175, 1), STATUS_OK);
        for (int w = 1; w <= 24; ++w) {
            Bytes dst(4096, 0x5A);
            const KtStatus status = k.kernel(src.data(), dst.data(), w, 4, 0, 0, 175, 1);
            EXPECT_EQ(status, w % k.group == 0 ? STATUS_OK : k.broken) << w;
            EXPECT_TRUE(status == STATUS_OK || dst == Bytes(4096, 0x5A)) << w;
        }
        if (k.broken == ERR_BAD_PLANAR_SIZE) {
            for (int h : {1, 2, 3, 5, 6})
                EXPECT_EQ(k.kernel(src.data(), Bytes(4096).data(), 8, h, 0, 0, 175, 1), ERR_BAD_PLANAR_SIZE);
        }
    }
}

// A hue without saturation stops HLS to RGB at that pixel in any row
// position: the pixels before it converted, everything after untouched.
TEST_P(Edges, HlsRefusesAHueWithoutSaturationAnywhere) {
    std::mt19937 rng(777);
    for (int width = 1; width <= 70; ++width)
        for (int at = 0; at < width; ++at) {
            Bytes src(3 * width);
            for (auto& b : src) b = static_cast<std::uint8_t>(rng() | 1);
            src[3 * at] = static_cast<std::uint8_t>(1 + rng() % 255);
            src[3 * at + 2] = 0;
            Bytes got(src.size(), 0xA5), want(src.size(), 0xA5);
            for (int x = 0; x < at; ++x) ASSERT_TRUE(test::HlsToRgb(&src[3 * x], &want[3 * x], 1, 0));
            ASSERT_EQ(color::HlsToRgb(src.data(), got.data(), width, 1, 0, 0, 0, 1), ERR_INVALID_TAG);
            ASSERT_EQ(got, want) << "width " << width << " at " << at;
        }
}

// Planar 4:1:0: the Y plane, then V, then U, each chroma sample the average
// of its block's four row averages; back, with noise in the planes.
TEST_P(Edges, Planar) {
    struct Size {
        int w, h;
    };
    for (Size s : {Size{4, 4}, Size{4, 8}, Size{20, 12}, Size{256, 64}, Size{4096, 4096}}) {
        for (int pad : {0, 1, 5}) {
            if (s.w == 4096 && pad != 0) continue;
            const int stride = 3 * s.w + pad, blocks = s.w / 4;
            const std::size_t planar = static_cast<std::size_t>(s.w) * s.h * 9 / 8;
            Bytes rgb = test::Random(static_cast<std::size_t>(stride) * s.h, s.w + pad);
            for (std::uint32_t i = 0; s.w == 4096 && i < (1u << 24); ++i) {
                rgb[3 * i] = std::uint8_t(i >> 16), rgb[3 * i + 1] = std::uint8_t(i >> 8), rgb[3 * i + 2] = std::uint8_t(i);
            }
            for (int order : {1, 0}) {
                Bytes got(planar + 16, 0xA5), want(planar + 16, 0xA5);
                ASSERT_EQ(color::RgbToYuv410(rgb.data(), got.data(), s.w, s.h, pad, 3, 0, order), STATUS_OK);
                std::uint8_t* v = want.data() + s.w * s.h;
                std::uint8_t* u = v + s.w * s.h / 16;
                for (int by = 0; by < s.h / 4; ++by)
                    for (int bx = 0; bx < blocks; ++bx) {
                        int su = 0, sv = 0;
                        for (int r = 0; r < 4; ++r) {
                            int ru = 0, rv = 0;
                            for (int k = 0; k < 4; ++k) {
                                const int x = bx * 4 + k, y = by * 4 + r;
                                const Px3 c = test::ReadRgb(&rgb[y * stride + 3 * x], order);
                                const ref::YuvSample p = ref::PackedFromRgb(c[0], c[1], c[2]);
                                want[y * s.w + x] = static_cast<std::uint8_t>(p.y);
                                ru += p.u & 255;
                                rv += p.v & 255;
                            }
                            su += ru >> 2;
                            sv += rv >> 2;
                        }
                        u[by * blocks + bx] = static_cast<std::uint8_t>(su >> 2);
                        v[by * blocks + bx] = static_cast<std::uint8_t>(sv >> 2);
                    }
                EXPECT_TRUE(got == want) << s.w << "x" << s.h << " pad " << pad << " order " << order;
                std::mt19937 rng(pad);
                for (std::size_t i = 0; i < planar; i += 5) got[i] = static_cast<std::uint8_t>(rng());
                Bytes back(static_cast<std::size_t>(stride) * s.h, 0xA5), wantBack = back;
                ASSERT_EQ(color::Yuv410ToRgb(got.data(), back.data(), s.w, s.h, 2, pad, 0, order), STATUS_OK);
                const std::uint8_t* gv = got.data() + s.w * s.h;
                const std::uint8_t* gu = gv + s.w * s.h / 16;
                for (int y = 0; y < s.h; ++y)
                    for (int x = 0; x < s.w; ++x) {
                        const int at = (y / 4) * blocks + x / 4;
                        test::PutRgb(ref::PackedToRgb(got[y * s.w + x], gu[at], gv[at]), &wantBack[y * stride + 3 * x], order);
                    }
                EXPECT_TRUE(back == wantBack) << s.w << "x" << s.h << " pad " << pad << " order " << order;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Isa, Edges, ::testing::ValuesIn(test::Levels()),
                         [](const auto& info) { return std::string(test::Name(info.param)); });


}  // namespace
}  // namespace kt
