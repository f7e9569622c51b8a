// Every 24-bit input of every 3-byte space, both directions and both RGB
// orders, against the reference formulas; 4-bit RGB exhaustively too.
#include <gtest/gtest.h>

#include <cstring>

#include "colormodels/kernels.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using RgbFamilyExhaustive = test::AtEveryLevel;

using color::Kernel;
using ref::Px3;
using test::kAllSide;

const std::vector<std::uint8_t>& Inputs() {
    static const std::vector<std::uint8_t> all = test::AllTriples();
    return all;
}

// Pixel p of an RGB-side buffer in the given order, as (R, G, B).
Px3 ReadRgb(const std::uint8_t* p, int order) {
    return order ? Px3{p[0], p[1], p[2]} : Px3{p[2], p[1], p[0]};
}

using Forward = Px3 (*)(int, int, int);

// RGB to the space: every input read as R, G, B in the flag's order.
void CheckFromRgb(const char* name, Kernel k, Forward f) {
    const std::vector<std::uint8_t>& in = Inputs();
    std::vector<std::uint8_t> out(in.size());
    for (int order : {1, 0}) {
        test::RunSplit(k, in.data(), out.data(), kAllSide, kAllSide, 3, 3, 0, order);
        test::Mismatches bad[2] = {test::Mismatches(""), test::Mismatches("")};
        test::Split2(1 << 24, [&](std::int64_t a, std::int64_t b) {
            test::Mismatches& m = bad[a == 0 ? 0 : 1];
            for (std::int64_t i = a; i < b; ++i) {
                const Px3 rgb = ReadRgb(&in[3 * i], order);
                const Px3 want = f(rgb[0], rgb[1], rgb[2]);
                const Px3 got{out[3 * i], out[3 * i + 1], out[3 * i + 2]};
                if (want != got) m.Add(i, "rgb ", test::Bytes(rgb), " want ", test::Bytes(want), " got ", test::Bytes(got));
            }
        });
        std::string what(name);
        what += " order ";
        what += std::to_string(order);
        test::Mismatches all(what);
        all.Merge(bad[0]);
        all.Merge(bad[1]);
        all.Expect();
    }
}

// The space to RGB: every input read as the space's three bytes.
void CheckToRgb(const char* name, Kernel k, Forward f) {
    const std::vector<std::uint8_t>& in = Inputs();
    std::vector<std::uint8_t> out(in.size());
    for (int order : {1, 0}) {
        test::RunSplit(k, in.data(), out.data(), kAllSide, kAllSide, 3, 3, 0, order);
        test::Mismatches bad[2] = {test::Mismatches(""), test::Mismatches("")};
        test::Split2(1 << 24, [&](std::int64_t a, std::int64_t b) {
            test::Mismatches& m = bad[a == 0 ? 0 : 1];
            for (std::int64_t i = a; i < b; ++i) {
                const Px3 want = f(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
                const Px3 got = ReadRgb(&out[3 * i], order);
                if (want != got) m.Add(i, "want rgb ", test::Bytes(want), " got ", test::Bytes(got));
            }
        });
        std::string what(name);
        what += " order ";
        what += std::to_string(order);
        test::Mismatches all(what);
        all.Merge(bad[0]);
        all.Merge(bad[1]);
        all.Expect();
    }
}

// The copy kernel runs only between the two orders, so it swaps bytes 0 and 2
// under either flag.
TEST_P(RgbFamilyExhaustive, RgbBgrSwap) {
    const std::vector<std::uint8_t>& in = Inputs();
    std::vector<std::uint8_t> out(in.size());
    for (int order : {1, 0}) {
        test::RunSplit(color::RgbToRgbCopy, in.data(), out.data(), kAllSide, kAllSide, 3, 3, 0, order);
        std::int64_t bad = 0;
        for (std::size_t i = 0; i < in.size(); i += 3)
            bad += out[i] != in[i + 2] || out[i + 1] != in[i + 1] || out[i + 2] != in[i];
        EXPECT_EQ(bad, 0) << "order " << order;
    }
}

TEST_P(RgbFamilyExhaustive, Cmy) {
    CheckFromRgb("rgb->cmy", color::RgbToCmy, ref::RgbToCmy);
    CheckToRgb("cmy->rgb", color::CmyToRgb, ref::CmyToRgb);
}

TEST_P(RgbFamilyExhaustive, Hsv) {
    CheckFromRgb("rgb->hsv", color::RgbToHsv, ref::RgbToHsv);
    CheckToRgb("hsv->rgb", color::HsvToRgb, ref::HsvToRgb);
}

TEST_P(RgbFamilyExhaustive, HlsFromRgb) { CheckFromRgb("rgb->hls", color::RgbToHls, ref::RgbToHls); }

// Every (H, L, S) the kernel accepts, in one call; the rejected pixels
// (S = 0 with a hue) are left out of the buffer and checked one by one.
TEST_P(RgbFamilyExhaustive, HlsToRgb) {
    std::vector<std::uint8_t> in;
    in.reserve(3u << 24);
    for (int h = 0; h < 256; ++h)
        for (int l = 0; l < 256; ++l)
            for (int s = 0; s < 256; ++s)
                if (s != 0 || h == 0) in.insert(in.end(), {std::uint8_t(h), std::uint8_t(l), std::uint8_t(s)});
    const int pixels = static_cast<int>(in.size() / 3);
    std::vector<std::uint8_t> out(in.size());
    for (int order : {1, 0}) {
        ASSERT_EQ(color::HlsToRgb(in.data(), out.data(), pixels, 1, 0, 0, 0, order), STATUS_OK);
        std::string what = "hls->rgb order ";
        what += std::to_string(order);
        test::Mismatches m(what);
        for (int i = 0; i < pixels; ++i) {
            Px3 want{};
            ASSERT_TRUE(ref::HlsToRgb(in[3 * i], in[3 * i + 1], in[3 * i + 2], &want));
            const Px3 got = ReadRgb(&out[3 * i], order);
            if (want != got) m.Add(i, "want ", test::Bytes(want), " got ", test::Bytes(got));
        }
        m.Expect();
    }
    // A hue without saturation stops the row there: earlier pixels written,
    // the rest untouched.
    for (int h = 1; h < 256; ++h) {
        for (int l : {0, 77, 255}) {
            const std::uint8_t src[9] = {10, 20, 30, std::uint8_t(h), std::uint8_t(l), 0, 0, 40, 0};
            std::uint8_t dst[9];
            std::memset(dst, 0xAB, sizeof dst);
            ASSERT_EQ(color::HlsToRgb(src, dst, 3, 1, 0, 0, 0, 1), ERR_INVALID_TAG) << h << " " << l;
            Px3 first{};
            ASSERT_TRUE(ref::HlsToRgb(10, 20, 30, &first));
            EXPECT_EQ((Px3{dst[0], dst[1], dst[2]}), first);
            for (int i = 3; i < 9; ++i) EXPECT_EQ(dst[i], 0xAB);
        }
    }
}

TEST_P(RgbFamilyExhaustive, Hsi) {
    CheckFromRgb("rgb->hsi", color::RgbToHsi, ref::RgbToHsi);
    CheckToRgb("hsi->rgb", color::HsiToRgb, ref::HsiToRgb);
}

TEST_P(RgbFamilyExhaustive, Yuv) {
    CheckFromRgb("rgb->yuv", color::RgbToYuv, ref::RgbToYuv);
    CheckToRgb("yuv->rgb", color::YuvToRgb, ref::YuvToRgb);
}

TEST_P(RgbFamilyExhaustive, Yiq) {
    CheckFromRgb("rgb->yiq", color::RgbToYiq, ref::RgbToYiq);
    CheckToRgb("yiq->rgb", color::YiqToRgb, ref::YiqToRgb);
}

TEST_P(RgbFamilyExhaustive, Ycbcr) {
    CheckFromRgb("rgb->ycbcr", color::RgbToYcbcr, ref::RgbToYcbcr);
    CheckToRgb("ycbcr->rgb", color::YcbcrToRgb, ref::YcbcrToRgb);
}

TEST_P(RgbFamilyExhaustive, Rgb444) {
    const std::vector<std::uint8_t>& in = Inputs();
    std::vector<std::uint8_t> out(2u << 24);
    for (int order : {1, 0}) {
        test::RunSplit(color::RgbToRgb444, in.data(), out.data(), kAllSide, kAllSide, 3, 2, 0, order);
        std::int64_t bad = 0;
        for (std::int64_t i = 0; i < (1 << 24); ++i) {
            const Px3 rgb = ReadRgb(&in[3 * i], order);
            const auto want = ref::RgbToRgb444(rgb[0], rgb[1], rgb[2]);
            bad += want[0] != out[2 * i] || want[1] != out[2 * i + 1];
        }
        EXPECT_EQ(bad, 0) << "rgb->rgb444 order " << order;
    }
    std::vector<std::uint8_t> codes(2u << 16), rgb(3u << 16);
    for (int i = 0; i < (1 << 16); ++i) {
        codes[2 * i] = static_cast<std::uint8_t>(i >> 8);
        codes[2 * i + 1] = static_cast<std::uint8_t>(i);
    }
    for (int order : {1, 0}) {
        ASSERT_EQ(color::Rgb444ToRgb(codes.data(), rgb.data(), 256, 256, 0, 0, 0, order), STATUS_OK);
        for (int i = 0; i < (1 << 16); ++i)
            ASSERT_EQ(ReadRgb(&rgb[3 * i], order), ref::Rgb444ToRgb(i >> 8, i & 255)) << i << " order " << order;
    }
}

KT_AT_EVERY_LEVEL(RgbFamilyExhaustive);

}  // namespace
}  // namespace kt
