// CMYK against the reference: every RGB input for the usual black values,
// large random and structured samples for the rest and for CMYK input.
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "colormodels/kernels.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"
#include "colormodels/squared_ramp.h"

namespace kt {
namespace {

using RgbFamilyCmyk = test::AtEveryLevel;

using ref::Px3;
using ref::Px4;

Px3 ReadRgb(const std::uint8_t* p, int order) { return order ? Px3{p[0], p[1], p[2]} : Px3{p[2], p[1], p[0]}; }

std::string What(const char* direction, int p, int order) {
    std::string s(direction);
    s += " p ";
    s += std::to_string(p);
    s += " order ";
    s += std::to_string(order);
    return s;
}

// Black values around every behaviour change: no removal and no restoration
// (up to about 250), restoration starting at 251, removal starting near 329,
// full strength at 1000, beyond it, negative, and the extremes.
constexpr int kBlacks[] = {175, 0, 1, 249, 250, 251, 252, 328, 329, 330, 400, 500, 600, 750, 999, 1000,
                           1001, 1250, 2000, 5000, 32767, 65536, -1, -175, -330, -1000, -5000, INT_MAX, INT_MIN};

void CheckRgbToCmyk(const std::vector<std::uint8_t>& in, int width, int height, int p) {
    std::vector<std::uint8_t> out(in.size() / 3 * 4);
    for (int order : {1, 0}) {
        test::RunSplit(color::RgbToCmyk, in.data(), out.data(), width, height, 3, 4, p, order);
        const std::string what = What("rgb->cmyk", p, order);
        test::CheckAll(what, static_cast<std::int64_t>(in.size() / 3), [&](std::int64_t i, test::Mismatches& m) {
            const Px3 rgb = ReadRgb(&in[3 * i], order);
            const Px4 want = ref::RgbToCmyk(rgb[0], rgb[1], rgb[2], p);
            const Px4 got{out[4 * i], out[4 * i + 1], out[4 * i + 2], out[4 * i + 3]};
            if (want != got) m.Add(i, test::Bytes(rgb), " want ", test::Bytes(want), " got ", test::Bytes(got));
        });
    }
}

void CheckCmykToRgb(const std::vector<std::uint8_t>& in, int width, int height, int p) {
    std::vector<std::uint8_t> out(in.size() / 4 * 3);
    for (int order : {1, 0}) {
        test::RunSplit(color::CmykToRgb, in.data(), out.data(), width, height, 4, 3, p, order);
        const std::string what = What("cmyk->rgb", p, order);
        test::CheckAll(what, static_cast<std::int64_t>(in.size() / 4), [&](std::int64_t i, test::Mismatches& m) {
            const Px3 want = ref::CmykToRgb(in[4 * i], in[4 * i + 1], in[4 * i + 2], in[4 * i + 3], p);
            const Px3 got = ReadRgb(&out[3 * i], order);
            if (want != got) m.Add(i, "want ", test::Bytes(want), " got ", test::Bytes(got));
        });
    }
}

TEST_P(RgbFamilyCmyk, SquaredRampIsTheFormula) {
    for (int i = 0; i < 256; ++i) EXPECT_EQ(color::SquaredRamp()[i], ref::RampEntry(i)) << i;
    EXPECT_EQ(color::SquaredRamp()[255], 256);
}

TEST_P(RgbFamilyCmyk, EveryRgbInput) {
    const std::vector<std::uint8_t> all = test::AllTriples();
    for (int p : {175, 1000, 500}) CheckRgbToCmyk(all, test::kAllSide, test::kAllSide, p);
}

TEST_P(RgbFamilyCmyk, RandomRgbForEveryBlackValue) {
    std::mt19937 rng(7);
    std::vector<std::uint8_t> in(3 * 256 * 256);
    for (auto& b : in) b = static_cast<std::uint8_t>(rng());
    for (int p : kBlacks) CheckRgbToCmyk(in, 256, 256, p);
}

// Every (C, M, Y) with a key that runs through all 256 values along the
// buffer, then every (C, M, K) with a few fixed Y, then random pixels.
TEST_P(RgbFamilyCmyk, CmykInputs) {
    std::vector<std::uint8_t> cmyk(4u << 24);
    for (std::uint32_t i = 0; i < (1u << 24); ++i) {
        cmyk[4 * i] = static_cast<std::uint8_t>(i >> 16);
        cmyk[4 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        cmyk[4 * i + 2] = static_cast<std::uint8_t>(i);
        cmyk[4 * i + 3] = static_cast<std::uint8_t>(i * 2654435761u >> 24);
    }
    for (int p : {175, 600, 1000}) CheckCmykToRgb(cmyk, test::kAllSide, test::kAllSide, p);
    for (std::uint8_t y : {0, 255}) {
        for (std::uint32_t i = 0; i < (1u << 24); ++i) {
            cmyk[4 * i + 2] = y;
            cmyk[4 * i + 3] = static_cast<std::uint8_t>(i);
        }
        CheckCmykToRgb(cmyk, test::kAllSide, test::kAllSide, 800);
    }
    std::mt19937 rng(11);
    std::vector<std::uint8_t> random(4 * 256 * 256);
    for (auto& b : random) b = static_cast<std::uint8_t>(rng());
    for (int p : kBlacks) CheckCmykToRgb(random, 256, 256, p);
}

TEST_P(RgbFamilyCmyk, DocumentedPixels) {
    std::uint8_t rgb[3] = {0, 0, 0}, cmyk[4];
    ASSERT_EQ(color::RgbToCmyk(rgb, cmyk, 1, 1, 0, 0, 1000, 1), STATUS_OK);
    EXPECT_EQ((Px4{cmyk[0], cmyk[1], cmyk[2], cmyk[3]}), (Px4{0, 0, 0, 255}));
    ASSERT_EQ(color::RgbToCmyk(rgb, cmyk, 1, 1, 0, 0, 175, 1), STATUS_OK);
    EXPECT_EQ((Px4{cmyk[0], cmyk[1], cmyk[2], cmyk[3]}), (Px4{255, 255, 255, 44}));
    const std::uint8_t key[4] = {0, 0, 0, 255};
    ASSERT_EQ(color::CmykToRgb(key, rgb, 1, 1, 0, 0, 175, 1), STATUS_OK);
    EXPECT_EQ((Px3{rgb[0], rgb[1], rgb[2]}), (Px3{255, 255, 255}));
}

KT_AT_EVERY_LEVEL(RgbFamilyCmyk);

}  // namespace
}  // namespace kt
